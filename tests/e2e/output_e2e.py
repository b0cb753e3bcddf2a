"""The editor driven with real clicks and keys, its widgets found and read through AT-SPI: the
scale and caption controls, and the toolbar's Save, Copy, Recent and E-Mail. Run inside
with_session_bus.sh."""

import os
import re
import sys
import time
from urllib.parse import unquote

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, expected_content_origin, main, read, wait_for  # noqa: E402


class OutputTest(E2ETestCase):
    accessible = True

    def press(self, name):
        button = self.a11y.wait_find("push button", name)
        self.assertIsNotNone(button, name)
        self.a11y.click(self.s, button)
        time.sleep(0.1)

    def settings_dialog_confirmed(self, timeout=2.0):
        ok = self.a11y.wait_find("push button", "OK", timeout=timeout)
        if ok is not None:
            self.a11y.click(self.s, ok)
        return ok is not None

    def test_save_save_again_recent_and_copy(self):
        s = self.s
        desktop = os.path.join(s.home, "Bureau")  # not the default name on purpose
        os.makedirs(desktop)
        s.env["XDG_DESKTOP_DIR"] = desktop
        a, b = s.picture("a.png", "320x200", "xc:#c04030"), s.picture("b.png", "250x150", "xc:#3070c0")
        s.start()
        wid = s.open_editor(a)
        self.press("Save")
        self.assertTrue(self.settings_dialog_confirmed(), "the first Save asks for settings")
        first = os.path.join(desktop, "Capture.jpg")
        self.assertTrue(wait_for(lambda: os.path.exists(first)), "Capture.jpg on the desktop")
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "Save hides the editor")
        self.assertIn("JPEG", s.run("identify", first).stdout)
        s.open_editor(b)
        self.press("Save")
        self.assertFalse(self.settings_dialog_confirmed(timeout=0.5))
        self.assertTrue(wait_for(lambda: os.path.exists(os.path.join(desktop, "Capture1.jpg"))))

        # Recent: the drawer with the run's captures; its first thumbnail brings A back.
        s.open_editor(b)
        self.press("Recent")
        dx, dy, _, _ = s.geometry(wait_for(lambda: s.of_role("drawer"), 2.0)[0])
        s.click(dx + 75, dy + 75)

        def placed():  # the window manager frames and moves in steps of its own
            x, y, w, h = s.geometry(wid)
            return w, (x, y + h - 291)
        wait_for(lambda: placed() == (336, expected_content_origin(s, wid, 336, 291)))
        self.assertEqual(placed(), (336, expected_content_origin(s, wid, 336, 291)), "sized and placed for A")

        # Copy at 50 %: a picture of the scaled size on the clipboard.
        self.press("Preset scales")
        s.key("Down", "Down", "Down", "Return")
        time.sleep(0.3)
        self.press("Copy")
        out = os.path.join(s.tmp, "clip.png")

        def clipboard_size():
            with open(out, "wb") as f:
                f.write(s.clipboard())
            return os.path.getsize(out) and s.size_of(out)
        self.assertEqual(wait_for(clipboard_size, 3.0), "160x100")

    def test_email_hands_each_mail_program_an_awkward_path_intact(self):
        s = self.s
        for mailer in ("xdg-email", "thunderbird", "evolution"):
            # Like a real mail program: it takes a moment and hands over to a child that is not
            # ready when it exits.
            with open(os.path.join(s.bin, mailer), "w") as f:
                f.write("#!/bin/sh\nsleep 0.1\n(sleep 0.2; printf '%s\\n' \"$@\" > \"$0.tmp\" && mv \"$0.tmp\" \"$0.log\") &\n")
            os.chmod(os.path.join(s.bin, mailer), 0o755)
        # The temporary folder lies where quotes, commas, percents and other alphabets are.
        s.env["XDG_RUNTIME_DIR"] = os.path.join(s.tmp, "it's \"odd\", 100% #1 a&b=c+d;e?f zoë 写真")
        os.makedirs(s.env["XDG_RUNTIME_DIR"], mode=0o700)
        png, folder = s.picture("m.png", "200x120", "xc:#60a040"), os.path.join(s.env["XDG_RUNTIME_DIR"], "Vantrel")
        decoded = [lambda a: a[1] if a[0] == "--attach" else a,  # the plain path
                   lambda a: a[0] == "-compose" and not re.search("[',]", a[1][12:-1]) and unquote(a[1][19:-1]),
                   lambda a: unquote(unquote(a[0][15:])[7:])]  # Evolution decodes, then opens the URI
        for row, mailer in enumerate(("xdg-email", "thunderbird", "evolution")):
            with open(os.path.join(s.config, "com.Morlane.Vantrel.plist"), "w") as f:
                f.write(f'<plist version="1.0"><dict><key>DefaultMailer</key><integer>{row}</integer></dict></plist>')
            s.start()
            s.open_editor(png)
            self.press("E-Mail")
            self.settings_dialog_confirmed()
            log = os.path.join(s.bin, mailer + ".log")
            self.assertTrue(wait_for(lambda: os.path.exists(log), 3.0), "the mailer ran")
            attached = os.path.join(folder, max(n for n in os.listdir(folder) if n.startswith("vtp")))
            self.assertEqual(decoded[row](read(log).splitlines()), attached, read(log))
            self.assertIn("JPEG", s.run("identify", attached).stdout)
            s.stop()


class ControlsTest(E2ETestCase):
    accessible = True

    def canvas_part(self, width, height, name):
        """The picture as the canvas shows it, centred one pixel in."""
        cx, cy, cw, ch = self.a11y.extents(self.a11y.wait_find("filler", "Canvas1"))
        return self.s.screen_part(cx + int((cw - width) / 2.0 + 1.0), cy + int((ch - height) / 2.0 + 1.0),
                                  width, height, name + ".png")

    def test_preset_caption_field_and_slider(self):
        s, a = self.s, self.a11y
        # 400x300 made of 2x2 blocks of a 200x150 picture: half size shows that picture exactly
        # whichever pixel of a block the scaling samples.
        half = s.picture("half.png", "200x150", "gradient:#a03020-#2040c0", "-fx", "u*0.8+0.1+(i%5)/255")
        known = s.picture("known.png", "200x150", half, "-sample", "200%")
        s.start()
        self.assertTrue(s.open_editor(known))
        field, slider = a.wait_find("text", "Scale percent"), a.wait_find("slider", "Scale")
        self.assertEqual(a.text(field), "100")

        # The preset menu: a real click on the button, then its third row ("", "25", "50").
        a.click(s, a.wait_find("push button", "Preset scales"))
        s.key("Down", "Down", "Down", "Return")
        self.assertTrue(wait_for(lambda: a.text(field) == "50"), "the field says 50")
        self.assertEqual(a.value(slider), 50)
        self.assertEqual(s.differing_pixels(self.canvas_part(200, 150, "shown"), half), 0, "half size, one to one")

        # A caption typed for real: a band centred, its bottom 5 pixels above the picture's.
        a.click(s, a.wait_find("text", "Caption"))
        s.run("xdotool", "type", "--delay", "30", "Hello")
        self.assertTrue(wait_for(lambda: a.text(a.find("text", "Caption")) == "Hello"))
        time.sleep(0.3)
        banded, plain = s.rgb_rows(self.canvas_part(200, 150, "banded")), s.rgb_rows(half)
        rows = [y for y in range(150) if banded[y] != plain[y]]
        self.assertEqual(max(rows), 150 - 5 - 1, "bottom edge 5 pixels above")
        cols = [x for x in range(200) if banded[(min(rows) + max(rows)) // 2][x] != plain[(min(rows) + max(rows)) // 2][x]]
        self.assertLessEqual(abs(min(cols) - (199 - max(cols))), 1, "centred")
        self.assertEqual(len(cols), max(cols) - min(cols) + 1, "one plate")

        # "2" is below 10 and becomes "10" with the caret after the 1: a following "5" makes 150.
        a.click(s, field)
        s.key("ctrl+a")
        s.run("xdotool", "type", "--delay", "50", "25")
        self.assertTrue(wait_for(lambda: a.text(field) == "150"), a.text(field))
        self.assertEqual(a.value(slider), 150)
        a.click(s, slider)  # one step down by keyboard
        before = a.value(slider)
        s.key("Left")
        self.assertTrue(wait_for(lambda: a.value(slider) == before - 1))
        self.assertEqual(a.text(field), str(int(before - 1)))


if __name__ == "__main__":
    main()
