"""The capture road on a desktop: openbox with a compositor, the bundled capture helper (slop,
maim, xclip) or a user's own, clipboard owners that are slow or dead, a held hot key."""

import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import E2ETestCase, expected_content_origin, load_image_geometry, main, wait_for  # noqa: E402


class DesktopCaptureTest(E2ETestCase):
    window_manager = True
    compositor = True

    def setUp(self):
        super().setUp()
        self.known = os.path.join(self.s.tmp, "known.png")
        self.old = os.path.join(self.s.tmp, "old.png")
        self.s.run("convert", "-size", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255",
                   "-depth", "8", "-strip", "PNG24:" + self.known)
        self.s.run("convert", "-size", "200x120", "xc:green", "-depth", "8", "PNG24:" + self.old)

    def slop_ready(self):
        """slop has mapped its window. It takes the pointer and the keyboard about then (it
        retries for a while when it can't at once): the callers give it a second, as a person
        would before pressing a key."""
        out = self.s.run("xwininfo", "-root", "-tree", check=False).stdout
        return '("slop" "slop")' in out

    def clipboard(self, target):
        return subprocess.run(["xclip", "-o", "-selection", "clipboard", "-t", target],
                              env=self.s.env, capture_output=True, timeout=5).stdout

    def assert_editor_shows(self, picture):
        """The editor's canvas shows the 200x120 picture one to one, centred."""
        s = self.s
        editors = wait_for(s.editor_windows, timeout=3.0)
        self.assertTrue(editors, "the editor is shown")
        _, _, width, height = load_image_geometry(200, 120, 1280, 1024)
        x, y, w, h = wait_for(lambda: s.geometry(editors[0])[2] == width and s.geometry(editors[0]))
        bars = h - height
        px, py = int((width - 15 - 200) / 2.0 + 1.0), int((height - 90 - 120) / 2.0 + 1.0)
        time.sleep(0.3)  # let the compositor draw it
        shot = s.screenshot(os.path.join(s.tmp, "shot.png"))
        crop = s.crop(shot, os.path.join(s.tmp, "crop.png"), x + px, y + bars + py, 200, 120)
        self.assertEqual(s.differing_pixels(crop, picture), 0)

    def test_a_drag_with_the_bundled_helper_gives_exactly_that_region(self):
        s = self.s
        s.run("xsetroot", "-solid", "#336699")
        s.start()
        # Something of known pixels on screen: a window of the known picture.
        viewer = subprocess.Popen(["display", "-geometry", "+300+200", self.known], env=s.env,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            self.assertTrue(wait_for(lambda: s.windows(name="known"), 5.0))
            time.sleep(0.5)
            ref = s.screenshot(os.path.join(s.tmp, "ref.png"))
            s.key("ctrl+shift+2")
            self.assertTrue(wait_for(self.slop_ready, 5.0), "the helper asks for a region")
            time.sleep(1.0)
            # Another client is served while the user selects: the server is not grabbed.
            r = subprocess.run(["xdpyinfo"], env=s.env, capture_output=True, timeout=3)
            self.assertEqual(r.returncode, 0)
            # A hand's drag: pressed, moved in steps, released.
            s.run("xdotool", "mousemove", "400", "250", "sleep", "0.2", "mousedown", "1", "sleep", "0.2",
                  "mousemove", "450", "280", "sleep", "0.2", "mousemove", "520", "310", "sleep", "0.2",
                  "mouseup", "1")
            self.assertTrue(wait_for(s.editor_windows, timeout=5.0), "the editor opens")
            got = os.path.join(s.tmp, "got.png")
            with open(got, "wb") as f:
                f.write(self.clipboard("image/png"))
            size = s.run("identify", "-format", "%w %h", got).stdout.split()
            w, h = int(size[0]), int(size[1])
            self.assertLessEqual(abs(w - 120), 1, size)
            self.assertLessEqual(abs(h - 60), 1, size)
            want = s.crop(ref, os.path.join(s.tmp, "want.png"), 400, 250, w, h)
            self.assertEqual(s.differing_pixels(got, want), 0)
        finally:
            viewer.kill()
            viewer.wait()

    def test_escape_cancels_and_leaves_the_clipboard_as_it_was(self):
        s = self.s
        note = os.path.join(s.tmp, "note.txt")
        with open(note, "w") as f:
            f.write("keep me")
        s.run("sh", "-c", f"xclip -selection clipboard -i '{note}' </dev/null >/dev/null 2>&1")
        s.start()
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(self.slop_ready, 5.0))
        time.sleep(1.0)
        # Held as a hand holds a key: slop looks at the keyboard's state every few
        # milliseconds, and a tap of a few could fall between two looks.
        s.run("xdotool", "keydown", "Escape", "sleep", "0.15", "keyup", "Escape")
        self.assertTrue(wait_for(lambda: not self.slop_ready(), 3.0), "Escape ends the selection")
        time.sleep(1.0)
        self.assertEqual(s.editor_windows(), [])
        self.assertEqual(self.clipboard("UTF8_STRING"), b"keep me")
        self.assertTrue(s.alive())

    def test_a_held_hot_key_captures_once(self):
        s = self.s
        s.capture_puts(self.known)
        s.start()
        s.run("xdotool", "keydown", "ctrl+shift+2")
        time.sleep(1.0)
        s.run("xdotool", "keyup", "ctrl+shift+2")
        self.assertTrue(wait_for(s.editor_windows, timeout=3.0))
        time.sleep(1.0)
        self.assertEqual(len(s.capture_calls()), 1)

    def test_a_helper_that_returns_before_its_xclip_owns_the_clipboard(self):
        s = self.s
        s.run("sh", "-c", f"xclip -selection clipboard -t image/png -i '{self.old}' "
                          "</dev/null >/dev/null 2>&1")
        # Like a user's own helper: xclip is started and the helper is gone at once.
        s.fake_capture(f"(sleep 0.2; xclip -selection clipboard -t image/png -i '{self.known}') "
                       "</dev/null >/dev/null 2>&1 &\nexit 0")
        s.start()
        s.key("ctrl+shift+2")
        self.assert_editor_shows(self.known)

    def test_a_clipboard_owner_that_never_answers_costs_at_most_three_seconds(self):
        s = self.s
        flag = os.path.join(s.tmp, "first-done")
        # First press: an owner that takes the clipboard and then stops answering. Second:
        # the picture.
        s.fake_capture(
            f"if [ ! -e '{flag}' ]; then touch '{flag}'\n"
            f"  xclip -selection clipboard -t image/png -i '{self.old}' </dev/null >/dev/null 2>&1\n"
            "  sleep 0.3; kill -STOP $(pgrep -n -x xclip)\n"
            "else kill -KILL $(pgrep -x xclip) 2>/dev/null\n"
            f"  xclip -selection clipboard -t image/png -i '{self.known}' </dev/null >/dev/null 2>&1\n"
            "  sleep 0.3\nfi")
        s.start()
        s.key("ctrl+shift+2")
        time.sleep(3.0)
        # Responsive again: this press is served (a press while the first one still ran would
        # be dropped).
        s.key("ctrl+shift+2")
        self.assert_editor_shows(self.known)
        self.assertEqual(len(s.capture_calls()), 2)


class HiDpiTest(E2ETestCase):
    """A screen at 192 dpi: the window and its controls scale, the capture shows one to one."""
    window_manager = True

    def test_a_capture_shows_one_to_one_in_the_screens_pixels(self):
        s = self.s
        s.run("sh", "-c", "echo 'Xft.dpi: 192' | xrdb -merge")
        known = os.path.join(s.tmp, "known.png")
        s.run("convert", "-size", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255",
              "-depth", "8", "-strip", "PNG24:" + known)
        s.capture_puts(known)
        s.start()
        s.key("ctrl+shift+2")
        editors = wait_for(s.editor_windows, timeout=3.0)
        self.assertTrue(editors)
        time.sleep(0.5)
        x, y, w, h = s.geometry(editors[0])
        # Twice the window's units in pixels; the picture counts 100 x 60 units: the floors.
        _, _, width, height = load_image_geometry(100, 60, 640, 512)
        self.assertEqual(w, 2 * width)
        bars = h - 2 * height
        cw, ch = 2 * (width - 15), 2 * (height - 90)
        px, py = int((cw - 200) / 2.0 + 1.0), int((ch - 120) / 2.0 + 1.0)
        shot = s.screenshot(os.path.join(s.tmp, "shot.png"))
        crop = s.crop(shot, os.path.join(s.tmp, "crop.png"), x + px, y + bars + py, 200, 120)
        self.assertEqual(s.differing_pixels(crop, known), 0)


class DesktopWindowTest(E2ETestCase):
    """The windows on a desktop: dragged and placed in content coordinates, the drawer glued to
    the editor, dialogs that belong to it; quit by signal at any moment, from any window."""
    window_manager = True

    def setUp(self):
        super().setUp()
        self.wide = os.path.join(self.s.tmp, "wide.png")
        # Wide enough that the whole toolbar shows.
        self.s.run("convert", "-size", "640x360", "gradient:navy-gold", "PNG24:" + self.wide)

    def editor_with_capture(self):
        s = self.s
        s.capture_puts(self.wide)
        s.start()
        s.key("ctrl+shift+2")
        editors = wait_for(s.editor_windows, timeout=3.0)
        self.assertTrue(editors)
        time.sleep(0.3)
        return editors[0], s.geometry(editors[0])

    def new_windows(self, known):
        return [w for w in self.s.windows(name=".*") if w not in known and self.s.mapped(w)]

    def test_dragging_the_background_moves_the_content_by_the_pointers_travel(self):
        s = self.s
        wid, (x, y, w, h) = self.editor_with_capture()
        for step in range(3):
            gx, gy = x + w - 3, y + h - 3  # the background below the scroll bar's end
            s.run("xdotool", "mousemove", str(gx), str(gy), "sleep", "0.1", "mousedown", "1",
                  "sleep", "0.1", "mousemove", str(gx + 15), str(gy), "sleep", "0.1",
                  "mousemove", str(gx + 30), str(gy), "sleep", "0.1", "mouseup", "1")
            moved = wait_for(lambda: s.geometry(wid)[:2] == (x + 30, y) and s.geometry(wid), 2.0)
            self.assertEqual(moved and moved[:2], (x + 30, y), f"drag {step + 1}")
            x += 30

    def test_the_drawer_stays_against_the_editor_at_its_content_top(self):
        s = self.s
        wid, (x, y, w, h) = self.editor_with_capture()
        s.click(x + w - 121, y + 45)  # Recent
        drawers = wait_for(lambda: [d for d in s.windows(name=".*") if s.role(d) == "drawer"], 3.0)
        self.assertTrue(drawers)
        height = load_image_geometry(640, 360, 1280, 1024)[3]
        for to in ((100, 150), (300, 250)):
            s.run("xdotool", "windowmove", "--sync", str(wid), str(to[0]), str(to[1]))
            time.sleep(0.5)
            ex, ey, ew, eh = s.geometry(wid)
            content_top = ey + eh - height
            dx, dy, dw, dh = s.geometry(drawers[0])
            self.assertEqual(dy, content_top)
            self.assertGreaterEqual(dx, ex + ew)
            self.assertLessEqual(dx, ex + ew + 10)  # against the editor's frame edge

    def test_sigterm_during_the_splash_ends_the_program(self):
        s = self.s
        s.start(wait_splash=False)
        self.assertTrue(wait_for(lambda: [w for w in s.windows(name=".*") if s.role(w) == "splash"], 5.0))
        s.proc.terminate()
        self.assertEqual(s.wait_exit(3), 0)

    def test_sigterm_with_the_first_saves_settings_open_writes_nothing(self):
        s = self.s
        desk = os.path.join(s.home, "Desktop")
        os.makedirs(desk)
        with open(os.path.join(desk, "Capture.jpg"), "wb") as f:
            f.write(b"the user's own")
        wid, (x, y, w, h) = self.editor_with_capture()
        before = s.windows(name=".*")
        s.click(x + 26, y + 45)  # Save: the settings are asked for on first use
        self.assertTrue(wait_for(lambda: self.new_windows(before), 3.0), "the settings dialog")
        s.proc.terminate()
        self.assertEqual(s.wait_exit(3), 0)
        self.assertEqual(sorted(os.listdir(desk)), ["Capture.jpg"])

    def test_preferences_from_the_toolbar_belong_to_the_editor(self):
        s = self.s
        wid, (x, y, w, h) = self.editor_with_capture()
        s.click(x + w - 48, y + 45)  # Preferences, the toolbar's last item
        prefs = wait_for(lambda: s.windows(name="^Preferences$"), 3.0)
        self.assertTrue(prefs)
        transient = s.run("xprop", "-id", str(prefs[0]), "WM_TRANSIENT_FOR").stdout
        self.assertIn(hex(wid), transient)

    def test_ctrl_q_from_the_preferences_with_the_editor_hidden(self):
        s = self.s
        wid, (x, y, w, h) = self.editor_with_capture()
        s.run("xdotool", "windowactivate", "--sync", str(wid))
        s.key("alt+f")
        time.sleep(0.3)
        s.key("Up", "Return")  # the File menu's last item: Preferences
        prefs = wait_for(lambda: s.windows(name="^Preferences$"), 3.0)
        self.assertTrue(prefs)
        s.close_box(wid)
        self.assertTrue(wait_for(lambda: not s.mapped(wid)))
        s.run("xdotool", "windowactivate", "--sync", str(prefs[0]))
        s.key("ctrl+q")
        self.assertEqual(s.wait_exit(5), 0)


class DesktopPlacementTest(E2ETestCase):
    """The editor placed by the sizing formulas on a desktop whose panel keeps 40 pixels at the
    top: the formulas see the work area less the window's bars and frame."""
    window_manager = True
    top_panel = 40

    def placed(self, width, height):
        s = self.s
        pic = os.path.join(s.tmp, "pic.png")
        s.run("convert", "-size", f"{width}x{height}", "gradient:navy-gold", "PNG24:" + pic)
        s.capture_puts(pic)
        s.start()
        s.key("ctrl+shift+2")
        editor = wait_for(s.editor_windows, 3.0)[0]
        time.sleep(0.5)
        return editor

    def test_the_content_stands_where_the_formulas_say(self):
        s = self.s
        editor = self.placed(640, 360)
        x, y, w, h = s.geometry(editor)
        bars = h - (360 + 91)
        self.assertEqual((w, h - bars), (656, 451))
        self.assertEqual((x, y + bars), expected_content_origin(s, editor, 640, 360, panel=40))

    def test_a_full_screen_capture_keeps_the_whole_editor_on_screen_below_the_panel(self):
        s = self.s
        editor = self.placed(1280, 1024)
        x, y, w, h = s.geometry(editor)
        left, right, top, bottom = s.frame_extents(editor)
        self.assertGreaterEqual(y - top, 40, "the title bar below the panel")
        self.assertLessEqual(y + h + bottom, 1024, "the bottom on screen")
        self.assertGreaterEqual(x - left, 0)
        self.assertLessEqual(x + w + right, 1280)


if __name__ == "__main__":
    main()
