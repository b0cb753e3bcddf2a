"""Vantrel installed like a desktop program: `cmake --install` under a prefix and DESTDIR gives a
launcher, metainfo and icons that the desktop's own validators accept, and bin/vantrel starts the
installed bundle. The Debian package builds and lintian finds no error in it."""

import glob
import os
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from harness import E2ETestCase, main, wait_for  # noqa: E402

PREFIX, APP = "/opt/vantrel test", "com.Morlane.Vantrel"


class InstallTest(E2ETestCase):
    def test_installed_files_validate_and_bin_vantrel_starts_the_installed_bundle(self):
        top = tempfile.mkdtemp(prefix="vantrel-destdir-") + PREFIX
        subprocess.run(["cmake", "--install", os.path.dirname(harness.BUNDLE), "--prefix", PREFIX],
                       env=dict(os.environ, DESTDIR=top[:-len(PREFIX)]), check=True, stdout=subprocess.DEVNULL)
        desktop = f"{top}/share/applications/{APP}.desktop"
        for argv in (["desktop-file-validate", desktop], ["appstreamcli", "validate", "--no-net", "--explain",
                                                          f"{top}/share/metainfo/com.morlane.Vantrel.metainfo.xml"]):
            r = subprocess.run(argv, capture_output=True, text=True)
            self.assertEqual(r.returncode, 0, r.stdout + r.stderr)
            self.assertNotIn("error", (r.stdout + r.stderr).lower())
        text = open(desktop).read()
        self.assertIn(f'Exec="{PREFIX}/bin/vantrel"', text)
        self.assertIn("StartupWMClass=Vantrel\n", text)
        icons = f"{top}/share/icons/hicolor"
        self.assertTrue(os.path.isfile(f"{icons}/scalable/apps/{APP}.svg"))
        for size in (16, 24, 32, 48, 64, 128, 256):
            self.assertEqual(self.s.size_of(f"{icons}/{size}x{size}/apps/{APP}.png"), f"{size}x{size}")

        # The launcher's program is the installed one, and its windows carry the launcher's class.
        s = self.s
        s.start(wait_splash=False, exe=f"{top}/bin/vantrel")
        splash = wait_for(lambda: s.of_role("splash"), 5.0)
        self.assertTrue(splash, "the installed program shows its splash")
        self.assertEqual(os.path.realpath(f"/proc/{s.proc.pid}/exe"),
                         os.path.realpath(f"{top}/lib/vantrel/Vantrel.app/Contents/MacOS/Vantrel"))
        self.assertTrue(s.run("xprop", "-id", str(splash[0]), "WM_CLASS").stdout.rstrip().endswith('"Vantrel"'))

    def test_the_debian_package_builds_and_lintian_finds_no_error(self):
        out = tempfile.mkdtemp(prefix="vantrel-deb-")
        subprocess.run(["cpack", "-G", "DEB", "-B", out, "--config",
                        os.path.join(os.path.dirname(harness.BUNDLE), "CPackConfig.cmake")],
                       check=True, stdout=subprocess.DEVNULL)
        debs = glob.glob(os.path.join(out, "vantrel_*.deb"))
        self.assertEqual(len(debs), 1)
        depends = subprocess.run(["dpkg-deb", "-f", debs[0], "Depends"], capture_output=True, text=True).stdout
        for needed in ("libqt6widgets6", "libplist", "libmagick++", "xclip", "slop", "maim"):
            self.assertIn(needed, depends)
        r = subprocess.run(["lintian", "--no-tag-display-limit", debs[0]], capture_output=True, text=True)
        self.assertEqual([line for line in r.stdout.splitlines() if line.startswith("E:")], [], r.stdout)


if __name__ == "__main__":
    main()
