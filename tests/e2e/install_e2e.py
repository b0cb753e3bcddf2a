"""Vantrel installed like a desktop program: `cmake --install` under a prefix and DESTDIR gives a
launcher, metainfo and icons that the desktop's own validators accept, and bin/vantrel starts the
installed bundle."""

import os
import subprocess
import tempfile

import harness
from harness import E2ETestCase, main, wait_for

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
            self.assertTrue(r.returncode == 0 and "error" not in (r.stdout + r.stderr).lower(), r.stdout + r.stderr)
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


if __name__ == "__main__":
    main()
