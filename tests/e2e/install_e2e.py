"""Vantrel installed like a desktop program: `cmake --install` under a prefix and DESTDIR gives a
launcher, metainfo and icons that the desktop's own validators accept, and bin/vantrel starts the
installed bundle. The Debian package builds and lintian finds no error in it."""

import glob
import os
import subprocess
import tempfile

import harness
from harness import E2ETestCase, main, wait_for

PREFIX, APP = "/opt/vantrel test", "com.Morlane.Vantrel"


def out(*argv):
    r = subprocess.run(argv, capture_output=True, text=True)
    return r.returncode, r.stdout + r.stderr


class InstallTest(E2ETestCase):
    def test_installed_files_validate_and_bin_vantrel_starts_the_installed_bundle(self):
        top = tempfile.mkdtemp(prefix="vantrel-destdir-") + PREFIX
        subprocess.run(["cmake", "--install", os.path.dirname(harness.BUNDLE), "--prefix", PREFIX],
                       env=dict(os.environ, DESTDIR=top[:-len(PREFIX)]), check=True, stdout=subprocess.DEVNULL)
        desktop = f"{top}/share/applications/{APP}.desktop"
        for argv in (["desktop-file-validate", desktop], ["appstreamcli", "validate", "--no-net", "--explain",
                                                          f"{top}/share/metainfo/com.morlane.Vantrel.metainfo.xml"]):
            status, said = out(*argv)
            self.assertTrue(status == 0 and "error" not in said.lower(), said)
        self.assertIn(f'Exec="{PREFIX}/bin/vantrel"', harness.read(desktop))
        self.assertIn("StartupWMClass=Vantrel\n", harness.read(desktop))
        icons = f"{top}/share/icons/hicolor"
        self.assertTrue(os.path.isfile(f"{icons}/scalable/apps/{APP}.svg"))
        for size in (16, 24, 32, 48, 64, 128, 256):
            self.assertEqual(self.s.size_of(f"{icons}/{size}x{size}/apps/{APP}.png"), f"{size}x{size}")

        # The launcher's program is the installed one, and its windows carry the launcher's class.
        s = self.s
        s.start(wait_splash=False, program=f"{top}/bin/vantrel")
        splash = wait_for(lambda: s.of_role("splash"), 5.0)
        self.assertTrue(splash, "the installed program shows its splash")
        self.assertEqual(os.path.realpath(f"/proc/{s.proc.pid}/exe"),
                         os.path.realpath(f"{top}/lib/vantrel/Vantrel.app/Contents/MacOS/Vantrel"))
        self.assertTrue(s.run("xprop", "-id", str(splash[0]), "WM_CLASS").stdout.rstrip().endswith('"Vantrel"'))

    def test_the_debian_package_builds_and_lintian_finds_no_error(self):
        folder = tempfile.mkdtemp(prefix="vantrel-deb-")
        self.assertEqual(out("cpack", "-G", "DEB", "-B", folder, "--config",
                             os.path.join(os.path.dirname(harness.BUNDLE), "CPackConfig.cmake"))[0], 0)
        deb, = glob.glob(os.path.join(folder, "vantrel_*.deb"))
        depends = out("dpkg-deb", "-f", deb, "Depends")[1]
        self.assertTrue(all(p in depends for p in ("libqt6widgets6", "libplist", "libmagick++", "xclip", "slop", "maim")))
        said = out("lintian", "--no-tag-display-limit", deb)[1]
        self.assertEqual([line for line in said.splitlines() if line.startswith("E:")], [], said)


if __name__ == "__main__":
    main()
