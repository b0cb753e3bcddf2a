"""The editor driven with real clicks and keys, its widgets found through AT-SPI: the toolbar's
Copy and E-Mail, and the settings dialog. Run inside with_session_bus.sh."""

import os
import re
import time
from urllib.parse import unquote

from harness import E2ETestCase, main, read, wait_for


class OutputTest(E2ETestCase):
    accessible = True

    def test_copy_at_half_size_serves_the_scaled_picture_to_other_programs(self):
        s = self.s
        s.start()
        wid = s.open_editor(s.picture("a.png", "320x200", "xc:#c04030"))
        self.assertTrue(self.a11y.press(s, "Preset scales"))
        s.key("Down", "Down", "Down", "Return")  # its third row: 50
        self.a11y.find("text", "Caption").queryComponent().grabFocus()
        s.run("xdotool", "type", "Half size")
        time.sleep(0.3)
        self.assertTrue(self.a11y.press(s, "Copy"))
        # The editor hides; the resident program keeps serving the picture, the caption its description.
        self.assertTrue(wait_for(lambda: not s.mapped(wid) and s.size_of(s.clipboard_png()) == "160x100", 3.0))
        self.assertEqual(s.run("exiftool", "-s3", "-PNG:Description", s.clipboard_png()).stdout, "Half size\n")
        # A helper that leaves the clipboard alone: the program reads its own Copy, and serves it
        # while it reads, instead of waiting out the read's deadline.
        s.fake_capture("exit 0")
        t0 = time.monotonic()
        self.assertTrue(s.open_editor(), "the program's own picture read back")
        self.assertLess(time.monotonic() - t0, 2.0)

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
            self.assertTrue(self.a11y.press(s, "E-Mail"))
            self.a11y.press(s, "OK", timeout=2.0)
            log = os.path.join(s.bin, mailer + ".log")
            self.assertTrue(wait_for(lambda: os.path.exists(log), 3.0), "the mailer ran")
            attached = os.path.join(folder, max(n for n in os.listdir(folder) if n.startswith("vtp")))
            self.assertEqual(decoded[row](read(log).splitlines()), attached, read(log))
            self.assertIn("JPEG", s.run("identify", attached).stdout)
            s.stop()


if __name__ == "__main__":
    main()
