"""One resident Vantrel a session: a later start hands its request (--capture, --preferences,
--quit, or nothing) to the running one over the session bus and exits at once."""

import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from harness import E2ETestCase, main, wait_for  # noqa: E402


class InstanceTest(E2ETestCase):
    def setUp(self):
        super().setUp()
        # Both starts on the bus this test runs in.
        self.s.env["DBUS_SESSION_BUS_ADDRESS"] = os.environ.get("DBUS_SESSION_BUS_ADDRESS", "")
        self.exe = os.path.join(harness.BUNDLE, "Contents", "MacOS", "Vantrel")

    def later_start(self, *args):
        t0 = time.monotonic()
        r = subprocess.run([self.exe, *args], env=self.s.env, capture_output=True, timeout=10)
        return r.returncode, time.monotonic() - t0

    def ours(self):
        out = subprocess.run(["pgrep", "-f", self.exe], capture_output=True, text=True).stdout
        return out.split()

    def test_help_lists_the_requests(self):
        r = subprocess.run([self.exe, "--help"], env=self.s.env, capture_output=True, text=True)
        self.assertEqual(r.returncode, 0)
        for option in ("--capture", "--preferences", "--quit"):
            self.assertIn(option, r.stdout)

    def test_later_starts_hand_over_and_exit(self):
        s = self.s
        png = os.path.join(s.tmp, "k.png")
        s.run("convert", "-size", "200x100", "xc:navy", png)
        s.capture_puts(png)
        s.start()
        code, took = self.later_start()
        self.assertEqual(code, 0)
        self.assertLess(took, 2.0, "at once")
        self.assertEqual(len(self.ours()), 1, "one resident program, one tray icon")

        self.assertEqual(self.later_start("--capture")[0], 0)
        self.assertTrue(wait_for(s.editor_windows, 3.0), "the first one captured")
        self.assertEqual(s.capture_calls(), ["-ci"])

        self.assertEqual(self.later_start("--preferences")[0], 0)
        self.assertTrue(wait_for(lambda: s.windows(name="^Preferences$"), 3.0))

        self.assertEqual(self.later_start("--quit")[0], 0)
        self.assertEqual(s.wait_exit(5), 0)


if __name__ == "__main__":
    main()
