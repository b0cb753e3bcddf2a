"""The resident program under a real X server with a panel: start, hot key, capture, the editor
placed in the work area, close, quit; a preference file that can't be read; the splash (and the
hot key during it)."""

import os
import struct
import time
import zlib

from harness import E2ETestCase, expected_content_origin, main, wait_for


class CaptureTest(E2ETestCase):
    top_panel = 40  # the formulas see the work area less the panel, the bars and the frame

    def setUp(self):
        super().setUp()
        # Every row and column differs, so any offset or scaling shows.
        self.known = self.s.picture("known.png", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255")

    def test_hot_key_opens_the_editor_one_to_one_close_hides_quit_writes_a_readable_file(self):
        s = self.s
        plist = os.path.join(s.config, "com.Morlane.Vantrel.plist")
        with open(plist, "wb") as f:  # cut short: read as empty; at the end a whole file plistutil reads
            f.write(b"<?xml version='1.0'?><plist><dict><key>LastScale</key><string>5")
        s.capture_puts(self.known)
        s.start()
        self.assertEqual(s.windows(own=True), [], "nothing is mapped at start")
        t0 = time.monotonic()
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(lambda: s.of_role("editor"), 1.0), "the editor is mapped within a second")
        self.assertLess(time.monotonic() - t0, 1.0)
        self.assertIn(s.capture_calls(), (["-ci"], ["-cio"]))
        wid = s.of_role("editor")[0]
        self.assertEqual(s.run("xdotool", "getwindowname", str(wid)).stdout.strip(), "Vantrel")
        x, y, w, h = self.assert_editor_shows(wid, self.known)
        self.assertGreater(h - 250, 0, "a menu bar above the content")
        self.assertEqual((x, y + h - 250), expected_content_origin(s, wid, 300, 250, panel=40))
        s.click(x + w - 20, y + 45)  # all of the tool bar is in reach at 300 pixels: Preferences
        prefs = wait_for(lambda: s.windows(name="^Preferences$"), 3.0)
        self.assertTrue(prefs, "Preferences in one click")
        s.close_box(prefs[0])

        # The close box hides; the process lives; the hot key brings the same window back.
        s.close_box(wid)
        self.assertTrue(wait_for(lambda: not s.mapped(wid)), "the close box hides the editor")
        time.sleep(0.3)
        self.assertTrue(s.alive())
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(lambda: s.mapped(wid), 1.0), "the same window again")
        s.open_editor(s.picture("full.png", "1280x1024", "gradient:navy-gold"))  # a whole screen stays on it
        x, y, w, h = s.geometry(wid)
        left, right, top, bottom = s.frame_extents(wid)
        self.assertGreaterEqual(y - top, 40, "the title bar below the panel")
        self.assertTrue(y + h + bottom <= 1024 and x - left >= 0 and x + w + right <= 1280, (x, y, w, h))
        s.run("xdotool", "mousemove", str(x + w // 2), str(y + 60))
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)
        self.assertIn("<key>QuartzScaling</key>", s.run("plistutil", "-i", plist, "-f", "xml", check=False).stdout)

        # Twice the density and a scale factor of 2 (four pixels a unit): still on the work area.
        s.run("sh", "-c", "echo 'Xft.dpi: 192' | xrdb -merge")
        s.env["QT_SCALE_FACTOR"] = "2"
        s.start()
        self.assert_inside(s.open_editor(), (0, 40, 1280, 984))


def padded(path, extra):
    """The same PNG with a private chunk of `extra` bytes after its header: the same pixels in a
    file larger than one X request."""
    with open(path, "rb") as f:
        png = f.read()
    body = b"vnTa" + bytes(extra)
    chunk = struct.pack(">I", extra) + body + struct.pack(">I", zlib.crc32(body))
    out = path[:-4] + "-padded.png"
    with open(out, "wb") as f:
        f.write(png[:33] + chunk + png[33:])  # the signature and IHDR are 33 bytes
    return out


class ClipboardOwnersTest(E2ETestCase):
    """The clipboard read in the program's own process, whoever owns it after the helper (the
    program's own Copy: output_e2e)."""

    def test_a_large_png_and_a_bmp_without_png(self):
        s = self.s
        known = s.picture("known.png", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255")
        bmp = os.path.join(s.tmp, "known.bmp")
        s.run("convert", known, "BMP3:" + bmp)
        put = "xclip -selection clipboard -t {} -i '{}' </dev/null >/dev/null 2>&1"
        s.start()
        rows = (("3 MB of PNG, sent in increments", put.format("image/png", padded(known, 3 << 20))),
                ("a BMP and no PNG", put.format("image/bmp", bmp)))
        for name, helper in rows:
            with self.subTest(name):
                s.fake_capture(helper)
                wid = s.open_editor()
                self.assert_editor_shows(wid, known)
                s.close_box(wid)
                self.assertTrue(wait_for(lambda: not s.mapped(wid)))


class LaptopScreenTest(E2ETestCase):
    """A laptop's screen with a panel: a picture as tall as the work area allows shows whole, in a
    window that fills the work area's height."""
    screen, top_panel = "1366x768", 30

    def test_the_tallest_picture_that_fits_fills_the_work_area(self):
        s, (width, height) = self.s, map(int, self.screen.split("x"))
        s.start()
        wid = s.open_editor(s.picture("tall.png", "400x2000", "xc:navy"))
        x, y, w, h = self.assert_inside(wid, (0, self.top_panel, width, height - self.top_panel))
        _, _, top, bottom = s.frame_extents(wid)
        self.assertGreaterEqual(top + h + bottom, height - self.top_panel - 10, "the window fills the height")


class SmallScreenTest(LaptopScreenTest):
    screen, top_panel = "1024x768", 0


class TwoMonitorsTest(E2ETestCase):
    """A 1366x768 monitor left of the primary 1920x1080 one, a panel at the top of both (the
    window manager's margin) and one at the bottom of the primary (a panel's strut): the program's
    windows stand in the primary monitor's work area, which Qt does not know."""
    screen, top_panel = "3286x1080", 30
    monitors = ("+P 1920/508x1080/286+1366+0 screen", "L 1366/361x768/203+0+0 none")

    def test_the_splash_the_editor_and_preferences_stand_in_the_primary_work_area(self):
        s, area = self.s, (1366, 30, 1920, 1020)
        s.daemon("trayer", "--edge", "bottom", "--monitor", "1", "--widthtype", "pixel", "--width", "200",
                 "--height", "30", "--SetDockType", "true", "--SetPartialStrut", "true")
        time.sleep(0.5)
        s.start(wait_splash=False)
        self.assert_inside(wait_for(lambda: s.of_role("splash"), 5.0)[0], area)
        self.assertTrue(wait_for(lambda: not s.of_role("splash"), 4.0))
        x, y, w, h = self.assert_inside(s.open_editor(s.picture("tall.png", "900x3000", "xc:navy")), area)
        s.click(x + w - 20, y + 45)
        self.assert_inside(wait_for(lambda: s.windows(name="^Preferences$"), 3.0)[0], area)


class SplashTest(E2ETestCase):
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


if __name__ == "__main__":
    main()
