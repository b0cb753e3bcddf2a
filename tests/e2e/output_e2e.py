"""The editor driven with real clicks and keys, its widgets found through AT-SPI: the toolbar's
Save, Copy and E-Mail. Run inside with_session_bus.sh."""

import os
import re
import time
from urllib.parse import unquote

from harness import E2ETestCase, main, read, wait_for


class OutputTest(E2ETestCase):
    accessible = True

    def press(self, name):
        button = self.a11y.wait_find("push button", name)
        self.assertIsNotNone(button, name)
        self.a11y.click(self.s, button)
        time.sleep(0.1)

    def settings_dialog_confirmed(self):
        ok = self.a11y.wait_find("push button", "OK", timeout=2.0)
        if ok is not None:
            self.a11y.click(self.s, ok)
        return ok is not None

    def test_save_to_the_desktop_and_copy_to_the_clipboard(self):
        s = self.s
        desktop = os.path.join(s.home, "Bureau")  # not the default name on purpose
        os.makedirs(desktop)
        s.env["XDG_DESKTOP_DIR"] = desktop
        a = s.picture("a.png", "320x200", "xc:#c04030")
        s.start()
        wid = s.open_editor(a)
        self.press("Save")
        self.assertTrue(self.settings_dialog_confirmed(), "the first Save asks for settings")
        first = os.path.join(desktop, "Capture.jpg")
        self.assertTrue(wait_for(lambda: os.path.exists(first)), "Capture.jpg on the desktop")
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "Save hides the editor")
        self.assertIn("JPEG", s.run("identify", first).stdout)

        # Copy at 50 %: a picture of the scaled size on the clipboard.
        s.open_editor(a)
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


if __name__ == "__main__":
    main()
