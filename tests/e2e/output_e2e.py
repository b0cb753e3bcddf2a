"""The toolbar driven with real clicks: Save, Copy, Recent and E-Mail, on hot-key captures.
Run inside dbus-run-session (the buttons are found through AT-SPI)."""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, expected_content_origin, load_image_geometry, main, wait_for  # noqa: E402



class OutputTest(E2ETestCase):
    accessible = True

    def setUp(self):
        super().setUp()
        self.desktop = os.path.join(self.s.home, "Bureau")  # not the default name on purpose
        os.makedirs(self.desktop)
        self.s.env["XDG_DESKTOP_DIR"] = self.desktop

    def picture(self, name, w, h, colour):
        path = os.path.join(self.s.tmp, name)
        self.s.run("convert", "-size", f"{w}x{h}", f"xc:{colour}", "-depth", "8", "PNG24:" + path)
        return path

    def capture(self, png):
        self.s.capture_puts(png)
        editors = self.s.capture_until_editor()
        self.assertTrue(editors)
        time.sleep(0.3)
        return editors[0]

    def press(self, name):
        button = self.a11y.wait_find("push button", name)
        self.assertIsNotNone(button, name)
        x, y = self.a11y.centre(button)
        self.s.click(x, y)
        time.sleep(0.3)

    def confirm_settings_dialog_if_shown(self, timeout=2.0):
        ok = self.a11y.wait_find("push button", "OK", timeout=timeout)
        if ok is not None:
            x, y = self.a11y.centre(ok)
            self.s.click(x, y)
            time.sleep(0.3)
        return ok is not None

    def test_save_save_again_recent_and_copy(self):
        s = self.s
        a = self.picture("a.png", 320, 200, "#c04030")
        b = self.picture("b.png", 250, 150, "#3070c0")
        s.start()

        wid = self.capture(a)
        self.press("Save")
        self.assertTrue(self.confirm_settings_dialog_if_shown(), "the first Save asks for settings")
        first = os.path.join(self.desktop, "Capture.jpg")
        self.assertTrue(wait_for(lambda: os.path.exists(first)), "Capture.jpg on the desktop")
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "Save hides the editor")
        self.assertIn("JPEG", s.run("identify", first).stdout)

        self.capture(b)
        self.press("Save")
        self.assertFalse(self.confirm_settings_dialog_if_shown(timeout=0.5))
        self.assertTrue(wait_for(lambda: os.path.exists(os.path.join(self.desktop, "Capture1.jpg"))))

        # Recent: the drawer with the run's captures; its first thumbnail brings A back.
        wid = self.capture(b)
        self.press("Recent")
        drawers = wait_for(lambda: [w for w in s.windows(name=".*") if s.role(w) == "drawer"], 2.0)
        self.assertTrue(drawers, "the drawer is shown")
        dx, dy, dw, dh = s.geometry(drawers[0])
        s.click(dx + 75, dy + 75)
        _, _, width, height = load_image_geometry(320, 200, 1280, 1024)
        # The window manager frames and moves in steps of its own: wait for where it settles.
        def origin():
            x, y, w, h = s.geometry(wid)
            return w, (x, y + h - height)
        wait_for(lambda: origin() == (width, expected_content_origin(s, wid, 320, 200)))
        self.assertEqual(origin(), (width, expected_content_origin(s, wid, 320, 200)), "sized and placed for A")

        # Copy at 50 %: a picture of the scaled size on the clipboard.
        self.press("Preset scales")
        s.key("Down", "Down", "Down", "Return")
        time.sleep(0.3)
        self.press("Copy")
        out = os.path.join(s.tmp, "clip.png")

        def clipboard_size():
            r = s.run("sh", "-c", f"xclip -o -selection clipboard -t image/png > '{out}'", check=False)
            if r.returncode != 0 or not os.path.getsize(out):
                return None
            return s.run("identify", "-format", "%wx%h", out, check=False).stdout.strip()
        self.assertEqual(wait_for(clipboard_size, 3.0), "160x100")

    def test_email_hands_each_mail_program_its_path_form(self):
        s = self.s
        calls = os.path.join(s.tmp, "mailer-calls")
        for mailer in ("xdg-email", "thunderbird", "evolution"):
            path = os.path.join(s.bin, mailer)
            with open(path, "w") as f:
                f.write(f'#!/bin/sh\nprintf "%s|" "{mailer}" "$@" >> "{calls}"\necho >> "{calls}"\n')
            os.chmod(path, 0o755)
        png = self.picture("m.png", 200, 120, "#60a040")
        runtime = s.env["XDG_RUNTIME_DIR"]
        expected = {
            0: lambda f: f"xdg-email|--attach|{f}|",
            1: lambda f: f"thunderbird|-compose|attachment='file://{f}'|",
            2: lambda f: f"evolution|mailto:?attach=file://{f}|",
        }
        for row, form in expected.items():
            with self.subTest(row=row):
                with open(os.path.join(s.config, "com.Morlane.Vantrel.plist"), "w") as f:
                    f.write('<?xml version="1.0"?><plist version="1.0"><dict><key>DefaultMailer</key>'
                            f"<integer>{row}</integer></dict></plist>")
                if os.path.exists(calls):
                    os.remove(calls)
                s.start()
                self.capture(png)
                self.press("E-Mail")
                self.confirm_settings_dialog_if_shown()
                self.assertTrue(wait_for(lambda: os.path.exists(calls), 3.0), "the mailer ran")
                with open(calls) as f:
                    line = f.read().strip()
                names = sorted(n for n in os.listdir(os.path.join(runtime, "Vantrel")) if n.startswith("vtp"))
                attached = os.path.join(runtime, "Vantrel", names[-1])
                self.assertEqual(line, form(attached))
                self.assertIn("JPEG", s.run("identify", attached).stdout)
                s.stop()


if __name__ == "__main__":
    main()
