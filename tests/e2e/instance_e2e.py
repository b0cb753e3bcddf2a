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
    def test_help_and_later_starts_that_hand_over_and_exit(self):
        s = self.s
        s.env["DBUS_SESSION_BUS_ADDRESS"] = os.environ.get("DBUS_SESSION_BUS_ADDRESS", "")  # both on this bus
        exe = os.path.join(harness.BUNDLE, "Contents", "MacOS", "Vantrel")
        later = lambda *args: subprocess.run([exe, *args], env=s.env, capture_output=True, text=True, timeout=10)  # noqa: E731
        r = later("--help")
        self.assertEqual(r.returncode, 0)
        self.assertTrue(all(o in r.stdout for o in ("--capture", "--preferences", "--quit")), r.stdout)
        s.capture_puts(s.picture("k.png", "200x100", "xc:navy"))
        s.start()
        t0 = time.monotonic()
        self.assertEqual(later().returncode, 0)
        self.assertLess(time.monotonic() - t0, 2.0, "at once")
        ours = subprocess.run(["pgrep", "-f", exe], capture_output=True, text=True).stdout.split()
        self.assertEqual(len(ours), 1, "one resident program, one tray icon")
        self.assertEqual(later("--capture").returncode, 0)
        self.assertTrue(wait_for(lambda: s.of_role("editor"), 3.0), "the first one captured")
        self.assertEqual(s.capture_calls(), ["-ci"])
        self.assertEqual(later("--preferences").returncode, 0)
        self.assertTrue(wait_for(lambda: s.windows(name="^Preferences$"), 3.0))
        self.assertEqual(later("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(5), 0)


if __name__ == "__main__":
    main()
