"""The tray icon under a real tray host (trayer), the preferences window it opens, launch at
login, and the bundle's flag that hides the icon from the next launch on."""

import os
import re
import shutil
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from harness import E2ETestCase, main, wait_for  # noqa: E402



class TrayTest(E2ETestCase):
    def setUp(self):
        super().setUp()
        # The flag lives in the bundle itself: work on a copy (which also shows it can move).
        self.s.bundle = os.path.join(self.s.tmp, "My Apps", "Vantrel.app")
        shutil.copytree(harness.BUNDLE, self.s.bundle, symlinks=True)
        self.tray = subprocess.Popen(
            ["trayer", "--edge", "top", "--align", "right", "--widthtype", "pixel", "--width",
             "120", "--height", "28", "--SetDockType", "true"],
            env=self.s.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(0.5)

    def tearDown(self):
        self.tray.terminate()
        self.tray.wait(5)
        super().tearDown()

    def tray_icon(self):
        """Absolute geometry of our icon embedded in the tray, or None."""
        tree = self.s.run("xwininfo", "-root", "-tree").stdout
        m = re.search(r'"Vantrel": \("Vantrel" "Vantrel"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)',
                      tree)
        if not m:
            return None
        w, h, x, y = map(int, m.groups())
        return (x, y, w, h) if x >= 0 and y >= 0 else None

    def tray_menu(self, *keys):
        x, y, w, h = wait_for(self.tray_icon, timeout=3.0)
        self.s.click(x + w // 2, y + h // 2)
        time.sleep(0.5)
        self.s.key(*keys)
        time.sleep(0.5)

    def preferences(self):
        wins = wait_for(lambda: self.s.windows(name="^Preferences$"), timeout=3.0)
        self.assertTrue(wins, "the preferences window is shown")
        return self.s.geometry(wins[0])

    def autostart_entries(self):
        folder = os.path.join(self.s.config, "autostart")
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def info_plist(self):
        with open(os.path.join(self.s.bundle, "Contents", "Info.plist")) as f:
            return f.read()

    def quit_from_tray(self):
        self.tray_menu("Down", "Down", "Return")
        self.assertEqual(self.s.wait_exit(5), 0)

    def test_tray_menu_preferences_login_item_and_hidden_icon(self):
        s = self.s
        s.start()
        self.assertTrue(wait_for(self.tray_icon, timeout=3.0), "the tray icon is there")

        # Its menu opens Preferences (first row).
        self.tray_menu("Down", "Return")
        px, py, pw, ph = self.preferences()

        # "Launch at Login" (20,14 in the window): an entry for the bundle, then none.
        s.click(px + 30, py + 23)
        self.assertTrue(wait_for(lambda: self.autostart_entries() == ["Vantrel.desktop"]))
        with open(os.path.join(s.config, "autostart", "Vantrel.desktop")) as f:
            entry = f.read()
        exe = os.path.join(s.bundle, "Contents", "MacOS", "Vantrel")
        self.assertIn('Exec="' + exe + '"', entry)
        self.assertIn("Name=Vantrel.app", entry)
        s.click(px + 30, py + 23)
        self.assertTrue(wait_for(lambda: self.autostart_entries() == []))

        # "Hide Tray Icon" (20,45): the bundle says so; the icon stays for this run.
        s.click(px + 30, py + 55)
        self.assertTrue(wait_for(lambda: "<key>LSUIElement</key>\n\t<integer>1</integer>"
                                 in self.info_plist()))
        self.assertTrue(self.tray_icon())
        self.quit_from_tray()

        # The next launch has no tray icon.
        s.start()
        time.sleep(1.0)
        self.assertIsNone(self.tray_icon(), "no tray icon once hidden")

        # Untick through the editor's File menu (Alt+F, fourth row), quit with Ctrl+Q.
        png = os.path.join(s.tmp, "k.png")
        s.run("convert", "-size", "300x200", "xc:teal", png)
        s.capture_puts(png)
        editors = s.capture_until_editor()
        self.assertTrue(editors)
        ex, ey, ew, eh = s.geometry(editors[0])
        s.pointer(ex + ew // 2, ey + eh // 2)
        time.sleep(0.2)
        s.key("alt+f")
        time.sleep(0.4)
        s.key("Down", "Down", "Down", "Return")
        px, py, pw, ph = self.preferences()
        s.click(px + 30, py + 55)
        self.assertTrue(wait_for(lambda: "<key>LSUIElement</key>\n\t<integer>0</integer>"
                                 in self.info_plist()))
        s.pointer(px + pw // 2, py + ph - 5)
        time.sleep(0.2)
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)

        s.start()
        self.assertTrue(wait_for(self.tray_icon, timeout=3.0), "the icon is back")


if __name__ == "__main__":
    main()
