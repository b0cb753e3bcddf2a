"""The splash at start (and the hot key during it), and a print to a PDF file."""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, load_image_geometry, main, wait_for  # noqa: E402



class SplashPrintTest(E2ETestCase):
    def splash_windows(self):
        return [w for w in self.s.windows(name=".*") if self.s.role(w) == "splash"]

    def test_splash_is_centred_and_goes_after_a_second_and_a_half(self):
        s = self.s
        s.start(wait_splash=False)
        shown = wait_for(self.splash_windows, timeout=5.0, step=0.02)
        t_shown = time.monotonic()
        self.assertTrue(shown, "a splash is mapped at start")
        self.assertEqual(s.geometry(shown[0]), ((1280 - 386) // 2, (1024 - 130) // 2, 386, 130))
        self.assertTrue(wait_for(lambda: not s.mapped(shown[0]) if self.splash_windows() else True,
                                 timeout=4.0, step=0.02))
        lasted = time.monotonic() - t_shown
        self.assertGreater(lasted, 1.2)
        self.assertLess(lasted, 2.5)
        self.assertTrue(s.alive())

    def test_a_capture_during_the_splash_opens_the_editor_while_it_stands(self):
        s = self.s
        png = os.path.join(s.tmp, "k.png")
        s.run("convert", "-size", "200x100", "xc:navy", png)
        s.capture_puts(png)
        s.start(wait_splash=False)
        shown = wait_for(self.splash_windows, timeout=5.0, step=0.02)
        self.assertTrue(shown)
        time.sleep(0.2)  # the hot key is claimed before the splash shows
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(s.editor_windows, timeout=1.5, step=0.02))
        self.assertTrue(self.splash_windows() and s.mapped(shown[0]), "the splash still stands")

    def test_print_to_a_pdf_file_shows_the_raw_capture(self):
        s = self.s
        known = os.path.join(s.tmp, "known.png")
        s.run("convert", "-size", "300x200", "gradient:orange-purple", "-depth", "8", "-strip",
              "PNG24:" + known)
        s.capture_puts(known)
        s.start()
        editors = s.capture_until_editor()
        self.assertTrue(editors)
        left, top, width, height = load_image_geometry(300, 200, 1280, 1024)
        x, y, w, h = s.geometry(editors[0])
        content_y = y + h - height
        # A caption typed for real and the scale at 50 %: neither reaches the paper.
        s.click(x + 65 + 20, content_y + 370 + (height - 440) + 10)
        s.run("xdotool", "type", "Caption")
        s.click(x + 338 + (width - 400) + 5, content_y + 397 + (height - 440) + 7)
        time.sleep(0.3)
        s.key("Down", "Down", "Down", "Return")
        time.sleep(0.3)
        s.pointer(x + w // 2, content_y + 40)
        s.key("ctrl+p")
        dialogs = wait_for(lambda: s.windows(name="^Print$"), timeout=3.0)
        self.assertTrue(dialogs, "the print dialog")
        dx, dy, dw, dh = s.geometry(dialogs[0])
        s.pointer(dx + dw // 2, dy + dh // 2)
        time.sleep(0.2)
        s.key("Return")
        pdf = os.path.join(s.home, "Vantrel capture.pdf")
        self.assertTrue(wait_for(lambda: os.path.exists(pdf) and os.path.getsize(pdf) > 0, 5.0))
        time.sleep(0.5)
        s.run("pdftoppm", "-r", "72", "-png", "-singlefile", pdf, os.path.join(s.tmp, "page"))
        page = os.path.join(s.tmp, "page.png")
        size = s.run("identify", "-format", "%wx%h", page).stdout
        self.assertIn(size, ("595x842", "612x792"))  # A4 or Letter, in points
        crop = s.crop(page, os.path.join(s.tmp, "printed.png"), 0, 0, 300, 200)
        self.assertLess(s.differing_pixels(crop, known), 300 * 200 // 100,
                        "the capture at its own size, at the top left, without the caption")
        beyond = s.crop(page, os.path.join(s.tmp, "beyond.png"), 300, 0, 20, 200)
        self.assertEqual(s.run("convert", beyond, "-format", "%[pixel:p{10,100}]", "info:").stdout,
                         "srgb(255,255,255)")


if __name__ == "__main__":
    main()
