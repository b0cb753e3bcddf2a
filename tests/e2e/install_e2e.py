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

PREFIX = "/opt/vantrel test"
APP = "com.Morlane.Vantrel"


class InstallTest(E2ETestCase):
    def build_dir(self):
        return os.path.dirname(harness.BUNDLE)

    def test_installed_files_validate_and_bin_vantrel_starts_the_installed_bundle(self):
        root = tempfile.mkdtemp(prefix="vantrel-destdir-")
        env = dict(os.environ, DESTDIR=root)
        subprocess.run(["cmake", "--install", self.build_dir(), "--prefix", PREFIX], env=env,
                       check=True, stdout=subprocess.DEVNULL)
        top = root + PREFIX
        desktop = f"{top}/share/applications/{APP}.desktop"
        for argv in (["desktop-file-validate", desktop],
                     ["appstreamcli", "validate", "--no-net", "--explain",
                      f"{top}/share/metainfo/com.morlane.Vantrel.metainfo.xml"]):
            r = subprocess.run(argv, capture_output=True, text=True)
            self.assertEqual(r.returncode, 0, r.stdout + r.stderr)
            self.assertNotIn("error", (r.stdout + r.stderr).lower())
        with open(desktop) as f:
            text = f.read()
        self.assertIn(f"Exec=\"{PREFIX}/bin/vantrel\"" if " " in PREFIX else f"Exec={PREFIX}/bin/vantrel", text)
        self.assertIn("StartupWMClass=Vantrel\n", text)
        icons = f"{top}/share/icons/hicolor"
        self.assertTrue(os.path.isfile(f"{icons}/scalable/apps/{APP}.svg"))
        for size in (16, 24, 32, 48, 64, 128, 256):
            png = f"{icons}/{size}x{size}/apps/{APP}.png"
            r = subprocess.run(["identify", "-format", "%w %h %A", png], capture_output=True, text=True)
            self.assertEqual(r.stdout.split()[:2], [str(size), str(size)], png)

        # The launcher's program is the installed one, and its windows carry the launcher's class.
        s = self.s
        s.start(wait_splash=False, exe=f"{top}/bin/vantrel")
        splash = wait_for(lambda: [w for w in s.windows(name=".*") if s.role(w) == "splash"], timeout=5.0)
        self.assertTrue(splash, "the installed program shows its splash")
        exe = os.path.realpath(f"/proc/{s.proc.pid}/exe")
        self.assertEqual(exe, os.path.realpath(f"{top}/lib/vantrel/Vantrel.app/Contents/MacOS/Vantrel"))
        wm_class = s.run("xprop", "-id", str(splash[0]), "WM_CLASS").stdout
        self.assertTrue(wm_class.rstrip().endswith('"Vantrel"'), wm_class)  # the class the launcher names

    def test_the_debian_package_builds_and_lintian_finds_no_error(self):
        out = tempfile.mkdtemp(prefix="vantrel-deb-")
        subprocess.run(["cpack", "-G", "DEB", "-B", out, "--config",
                        os.path.join(self.build_dir(), "CPackConfig.cmake")],
                       check=True, stdout=subprocess.DEVNULL)
        debs = glob.glob(os.path.join(out, "vantrel_*.deb"))
        self.assertEqual(len(debs), 1)
        info = subprocess.run(["dpkg-deb", "-f", debs[0], "Depends"], capture_output=True, text=True).stdout
        for needed in ("libqt6widgets6", "libplist", "libmagick++", "xclip", "slop", "maim"):
            self.assertIn(needed, info)
        r = subprocess.run(["lintian", "--no-tag-display-limit", debs[0]], capture_output=True, text=True)
        errors = [line for line in r.stdout.splitlines() if line.startswith("E:")]
        self.assertEqual(errors, [], r.stdout)


if __name__ == "__main__":
    main()
