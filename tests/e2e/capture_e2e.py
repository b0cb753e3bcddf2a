"""The resident program under a real X server: start, hot key, capture, editor, close, quit;
inputs that bring no picture or a broken one; a preference file that can't be read; the splash
(and the hot key during it); a print to a PDF file."""

import glob
import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, expected_content_origin, main, read, wait_for  # noqa: E402


class CaptureTest(E2ETestCase):
    def setUp(self):
        super().setUp()
        # Every row and column differs, so any offset or scaling shows.
        self.known = self.s.picture("known.png", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255")

    def test_hot_key_opens_the_editor_one_to_one_close_hides_quit_keeps_an_unreadable_file(self):
        s = self.s
        plist = os.path.join(s.config, "com.Morlane.Vantrel.plist")
        garbage = b"<?xml version='1.0'?><plist><dict><key>LastScale</key><string>5"
        with open(plist, "wb") as f:
            f.write(garbage)
        s.capture_puts(self.known)
        s.start()
        self.assertEqual(s.own_windows(), [], "nothing is mapped at start")
        t0 = time.monotonic()
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(lambda: s.of_role("editor"), 1.0), "the editor is mapped within a second")
        self.assertLess(time.monotonic() - t0, 1.0)
        self.assertIn(s.capture_calls(), (["-ci"], ["-cio"]))
        wid = s.of_role("editor")[0]
        self.assertEqual(s.run("xdotool", "getwindowname", str(wid)).stdout.strip(), "Vantrel")
        x, y, w, h = self.assert_editor_shows(wid, self.known)
        self.assertGreater(h - 250, 0, "a menu bar above the content")
        self.assertEqual((x, y + h - 250), expected_content_origin(s, wid, 300, 250))

        # The close box hides; the process lives; the hot key brings the same window back.
        s.close_box(wid)
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "the close box hides the editor")
        time.sleep(0.3)
        self.assertTrue(s.alive())
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(lambda: s.mapped(wid), 1.0), "the same window again")
        s.pointer(x + w // 2, y + 60)
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)
        self.assertEqual(len([p for p in glob.glob(plist + "*") if read(p, "rb") == garbage]), 1,
                         "the unreadable file is kept")
        self.assertIn("<key>QuartzScaling</key>", s.run("plistutil", "-i", plist, "-f", "xml", check=False).stdout)

    def test_no_picture_is_silent_and_a_broken_one_gives_the_one_message(self):
        s = self.s
        note, bad = os.path.join(s.tmp, "note.txt"), os.path.join(s.tmp, "bad.png")
        with open(note, "w") as f:
            f.write("just words\n")
        with open(bad, "wb") as f:
            f.write(b"\x89PNG\r\n\x1a\n" + b"not really a picture" * 50)
        s.start()
        for body in ("true", f"xclip -selection clipboard -i '{note}' </dev/null >/dev/null 2>&1"):
            s.fake_capture(body)
            s.key("ctrl+shift+2")
            time.sleep(1.0)
            self.assertEqual(s.own_windows(), [], body)
        s.capture_puts(bad)
        s.key("ctrl+shift+2")
        boxes = wait_for(lambda: [w for w in s.own_windows() if s.role(w) != "editor"], 3.0)
        self.assertEqual(len(boxes), 1, "one message box")
        self.assertEqual(s.of_role("editor"), [])
        bx, by, bw, bh = s.geometry(boxes[0])
        s.pointer(bx + bw // 2, by + bh // 2)
        s.key("Return")
        self.assertTrue(wait_for(lambda: not s.own_windows()), "the box is dismissed")
        self.assertTrue(s.alive(), "still resident after the message")
        self.assertTrue(s.open_editor(self.known), "the next capture works")



class SplashPrintTest(E2ETestCase):
    def test_the_splash_is_centred_goes_after_a_second_and_a_half_and_a_capture_can_come_first(self):
        s = self.s
        s.capture_puts(s.picture("k.png", "200x100", "xc:navy"))
        s.start(wait_splash=False)
        shown = wait_for(lambda: s.of_role("splash"), 5.0, step=0.02)
        t_shown = time.monotonic()
        self.assertTrue(shown, "a splash is mapped at start")
        self.assertEqual(s.geometry(shown[0]), ((1280 - 386) // 2, (1024 - 130) // 2, 386, 130))
        time.sleep(0.2)  # the hot key is claimed before the splash shows
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(lambda: s.of_role("editor"), 1.5, step=0.02))
        self.assertTrue(s.mapped(shown[0]), "the splash still stands")
        self.assertTrue(wait_for(lambda: not s.of_role("splash"), 4.0, step=0.02))
        self.assertTrue(1.2 < time.monotonic() - t_shown < 2.5)
        self.assertTrue(s.alive())

    def test_print_to_a_pdf_file_shows_the_raw_capture(self):
        s = self.s
        known = s.picture("known.png", "300x200", "gradient:orange-purple")
        s.start()
        x, y, w, h = s.geometry(s.open_editor(known))
        width, height = 316, 291  # the picture's size + 16 and + 91
        content_y = y + h - height
        # A caption typed for real and the scale at 50 %: neither reaches the paper.
        s.click(x + 85, content_y + height - 60)
        s.run("xdotool", "type", "Caption")
        s.click(x + width - 57, content_y + height - 36)
        time.sleep(0.1)
        s.key("Down", "Down", "Down", "Return")
        time.sleep(0.3)
        s.pointer(x + w // 2, content_y + 40)
        s.key("ctrl+p")
        dialogs = wait_for(lambda: s.windows(name="^Print$"), 3.0)
        self.assertTrue(dialogs, "the print dialog")
        dx, dy, dw, dh = s.geometry(dialogs[0])
        s.pointer(dx + dw // 2, dy + dh // 2)
        s.key("Return")
        pdf = os.path.join(s.home, "Vantrel capture.pdf")
        self.assertTrue(wait_for(lambda: os.path.exists(pdf) and os.path.getsize(pdf) > 0, 5.0))
        time.sleep(0.5)
        s.run("pdftoppm", "-r", "72", "-png", "-singlefile", pdf, os.path.join(s.tmp, "page"))
        page = os.path.join(s.tmp, "page.png")
        self.assertIn(s.size_of(page), ("595x842", "612x792"))  # A4 or Letter, in points
        self.assertLess(s.differing_pixels(s.crop(page, 0, 0, 300, 200), known), 300 * 200 // 100,
                        "the capture at its own size, at the top left, without the caption")
        beyond = s.crop(page, 300, 0, 20, 200, "beyond.png")
        self.assertEqual(s.run("convert", beyond, "-format", "%[pixel:p{10,100}]", "info:").stdout, "srgb(255,255,255)")


if __name__ == "__main__":
    main()
