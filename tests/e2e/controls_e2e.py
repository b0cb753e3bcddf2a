"""The editor's scale and caption controls driven with real clicks and key presses, the canvas
seen in screenshots and the controls read through AT-SPI. Run inside dbus-run-session."""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, main, rgb_pixels, wait_for  # noqa: E402



class ControlsTest(E2ETestCase):
    accessible = True

    def setUp(self):
        super().setUp()
        s = self.s
        # 400x300 made of 2x2 blocks of a 200x150 picture: half size shows that picture exactly
        # whichever pixel of a block the scaling samples.
        self.half = os.path.join(s.tmp, "half.png")
        self.known = os.path.join(s.tmp, "known.png")
        s.run("convert", "-size", "200x150", "gradient:#a03020-#2040c0", "-fx",
              "u*0.8+0.1+(i%5)/255", "-depth", "8", "-strip", "PNG24:" + self.half)
        s.run("convert", self.half, "-sample", "200%", "-strip", "PNG24:" + self.known)
        s.capture_puts(self.known)
        s.start()
        self.assertTrue(s.capture_until_editor())
        time.sleep(0.3)

    def canvas_picture(self, width, height, name):
        """The picture as the canvas shows it, centred one pixel in."""
        cx, cy, cw, ch = self.a11y.extents(self.a11y.wait_find("filler", "Canvas1"))
        px, py = int((cw - width) / 2.0 + 1.0), int((ch - height) / 2.0 + 1.0)
        shot = self.s.screenshot(os.path.join(self.s.tmp, name + "-screen.png"))
        return self.s.crop(shot, os.path.join(self.s.tmp, name + ".png"), cx + px, cy + py,
                           width, height)

    def click(self, node):
        x, y = self.a11y.centre(node)
        self.s.click(x, y)
        time.sleep(0.2)

    def test_preset_caption_field_and_slider(self):
        s, a = self.s, self.a11y
        field = a.wait_find("text", "Scale percent")
        slider = a.wait_find("slider", "Scale")
        self.assertEqual(a.text(field), "100")

        # The preset menu: a real click on the button, then its third row ("", "25", "50").
        self.click(a.wait_find("push button", "Preset scales"))
        s.key("Down", "Down", "Down", "Return")
        self.assertTrue(wait_for(lambda: a.text(field) == "50"), "the field says 50")
        self.assertEqual(a.value(slider), 50)
        shown = self.canvas_picture(200, 150, "half")
        self.assertEqual(s.differing_pixels(shown, self.half), 0, "half size, one to one")

        # A caption typed for real: a band centred, its bottom 5 pixels above the picture's.
        self.click(a.wait_find("text", "Caption"))
        s.run("xdotool", "type", "--delay", "30", "Hello")
        self.assertTrue(wait_for(lambda: a.text(a.find("text", "Caption")) == "Hello"))
        time.sleep(0.3)
        banded = rgb_pixels(s, self.canvas_picture(200, 150, "banded"))
        plain = rgb_pixels(s, self.half)
        changed_rows = [y for y in range(150) if banded[y] != plain[y]]
        self.assertTrue(changed_rows, "a band is drawn")
        self.assertEqual(max(changed_rows), 150 - 5 - 1, "bottom edge 5 pixels above")
        mid = (min(changed_rows) + max(changed_rows)) // 2
        cols = [x for x in range(200) if banded[mid][x] != plain[mid][x]]
        left, right = min(cols), max(cols)
        self.assertLessEqual(abs(left - (199 - right)), 1, "centred")
        self.assertEqual(len(cols), right - left + 1, "one plate")

        # Keys in the field: "2" is below 10 and becomes "10" with the caret after the 1, so a
        # following "5" makes "150".
        self.click(field)
        s.key("ctrl+a")
        s.run("xdotool", "type", "--delay", "50", "25")
        self.assertTrue(wait_for(lambda: a.text(field) == "150"), a.text(field))
        self.assertEqual(a.value(slider), 150)

        # The slider by keyboard: one step down.
        self.click(slider)
        before = a.value(slider)
        s.key("Left")
        self.assertTrue(wait_for(lambda: a.value(slider) == before - 1))
        self.assertEqual(a.text(field), str(int(before - 1)))


if __name__ == "__main__":
    main()
