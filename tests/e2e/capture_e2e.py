"""The resident program under a real X server: start, hot key, capture, editor, close, quit."""

import glob
import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, expected_content_origin, load_image_geometry, main, wait_for  # noqa: E402



def read(path):
    with open(path, "rb") as f:
        return f.read()


class CaptureTest(E2ETestCase):
    def setUp(self):
        super().setUp()
        self.known = os.path.join(self.s.tmp, "known.png")
        # A picture whose every row and column differs, so any offset or scaling shows.
        self.s.run("convert", "-size", "200x120", "gradient:red-blue",
                   "(", "-size", "200x120", "gradient:black-lime", "-rotate", "0", ")",
                   "-compose", "plus", "-composite", "-fx", "u+(i%7)/255", "-depth", "8",
                   "-strip", "PNG24:" + self.known)

    def own_visible_windows(self):
        out = self.s.run("xdotool", "search", "--onlyvisible", "--pid", str(self.s.proc.pid),
                         check=False).stdout.split()
        return [int(w) for w in out]

    def press_hot_key(self):
        self.s.key("ctrl+shift+2")

    def test_hot_key_opens_the_editor_sized_for_the_picture_and_showing_it_one_to_one(self):
        s = self.s
        s.capture_puts(self.known)
        s.start()
        self.assertEqual(self.own_visible_windows(), [], "nothing is mapped at start")

        t0 = time.monotonic()
        self.press_hot_key()
        editors = wait_for(s.editor_windows, timeout=1.0)
        self.assertTrue(editors, "the editor is mapped within a second")
        self.assertLess(time.monotonic() - t0, 1.0)
        self.assertIn(s.capture_calls(), (["-ci"], ["-cio"]))
        wid = editors[0]
        self.assertEqual(s.run("xdotool", "getwindowname", str(wid)).stdout.strip(), "Vantrel")

        _, _, width, height = load_image_geometry(200, 120, 1280, 1024)
        x, y, w, h = wait_for(lambda: s.geometry(wid)[2] == width and s.geometry(wid))
        bars = h - height
        self.assertGreater(bars, 0, "menu bar above the content area")
        self.assertEqual((x, y + bars, w), expected_content_origin(s, wid, 200, 120) + (width,))

        # Canvas1 fills the content area less 15 on the right and 90 below; the picture is
        # centred in it, one pixel in.
        cw, ch = width - 15, height - 90
        px, py = int((cw - 200) / 2.0 + 1.0), int((ch - 120) / 2.0 + 1.0)
        shot = s.screenshot(os.path.join(s.tmp, "shot.png"))
        crop = s.crop(shot, os.path.join(s.tmp, "crop.png"), x + px, y + bars + py, 200, 120)
        self.assertEqual(s.differing_pixels(crop, self.known), 0)

        # The close box hides; the process lives; the hot key brings the same window back.
        s.close_box(wid)
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "close box hides the editor")
        time.sleep(0.3)
        self.assertTrue(s.alive())
        self.press_hot_key()
        self.assertTrue(wait_for(lambda: s.mapped(wid), timeout=1.0), "same window again")

        # Ctrl+Q ends the process with status 0.
        s.pointer(x + w // 2, y + bars + 20)
        time.sleep(0.2)
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)

    def test_a_capture_larger_than_the_screen_gets_the_largest_window(self):
        s = self.s
        big = os.path.join(s.tmp, "big.png")
        s.run("convert", "-size", "1400x1100", "plasma:fractal", big)
        s.capture_puts(big)
        s.start()
        editors = s.capture_until_editor()
        self.assertTrue(editors)
        # Frame, bars and content together take the screen less 100, from 100 down.
        x, y, w, h = wait_for(lambda: s.geometry(editors[0])[2] > 1200 and s.geometry(editors[0]))
        left, right, top, bottom = s.frame_extents(editors[0])
        self.assertEqual((x - left, y - top, w + left + right, h + top + bottom), (0, 100, 1280, 924))

    def test_inputs_that_bring_no_picture_are_silent(self):
        s = self.s
        text = os.path.join(s.tmp, "note.txt")
        with open(text, "w") as f:
            f.write("just words\n")
        cases = {
            "capture leaves nothing": "true",
            "clipboard holds text": f"xclip -selection clipboard -i '{text}' </dev/null "
                                    ">/dev/null 2>&1",
        }
        s.start()
        for label, body in cases.items():
            with self.subTest(label):
                s.fake_capture(body)
                self.press_hot_key()
                time.sleep(1.0)
                self.assertEqual(self.own_visible_windows(), [])
                self.assertTrue(s.alive())

    def test_a_corrupt_picture_gives_the_one_message_and_the_program_stays(self):
        s = self.s
        bad = os.path.join(s.tmp, "bad.png")
        with open(bad, "wb") as f:
            f.write(b"\x89PNG\r\n\x1a\n" + b"not really a picture" * 50)
        s.capture_puts(bad)
        s.start()
        self.press_hot_key()
        boxes = wait_for(lambda: [w for w in self.own_visible_windows()
                                  if s.role(w) != "editor"], timeout=3.0)
        self.assertEqual(len(boxes), 1, "one message box")
        text = s.run("xdotool", "getwindowname", str(boxes[0])).stdout.strip()
        self.assertEqual(text, "Vantrel")
        self.assertEqual(s.editor_windows(), [])
        bx, by, bw, bh = s.geometry(boxes[0])
        s.pointer(bx + bw // 2, by + bh // 2)
        time.sleep(0.2)
        s.key("Return")
        self.assertTrue(wait_for(lambda: not self.own_visible_windows()), "box dismissed")
        time.sleep(0.3)
        self.assertTrue(s.alive(), "still resident after the message")

        s.capture_puts(self.known)
        self.assertTrue(s.capture_until_editor(), "the next capture works")

    def test_an_unreadable_preference_file_is_never_lost(self):
        s = self.s
        plist = os.path.join(s.config, "com.Morlane.Vantrel.plist")
        garbage = b"<?xml version='1.0'?><plist><dict><key>LastScale</key><string>5"
        with open(plist, "wb") as f:
            f.write(garbage)
        s.capture_puts(self.known)
        s.start()
        editors = s.capture_until_editor()
        self.assertTrue(editors)
        x, y, w, h = s.geometry(editors[0])
        s.pointer(x + w // 2, y + 40)
        time.sleep(0.2)
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)
        kept = [p for p in glob.glob(plist + "*") if read(p) == garbage]
        self.assertEqual(len(kept), 1, "the unreadable file is kept")
        r = s.run("plistutil", "-i", plist, "-f", "xml", check=False)
        self.assertIn("<key>QuartzScaling</key>", r.stdout, "a readable file is written")


if __name__ == "__main__":
    main()
