"""The program on a desktop: openbox with a compositor on a HiDPI screen; the bundled
capture helper (slop, maim, xclip) or a user's own, clipboard owners that are slow or dead, a
held hot key; windows dragged and glued; a quit by signal during the splash; the tray icon under a
real tray host (trayer) and the bundle's flag that hides it."""

import os
import re
import shutil
import subprocess
import time

import harness
from harness import E2ETestCase, main, read, wait_for


class CaptureRoadTest(E2ETestCase):
    """A compositor and a HiDPI screen: the editor is twice its units in pixels, and a picture
    of 200 x 120 pixels counts 100 x 60 units (below the floors) but shows one to one."""
    compositor, dpi = True, 192

    def setUp(self):
        super().setUp()
        self.known = self.s.picture("known.png", "200x120", "gradient:red-blue", "-fx", "u+(i%7)/255")
        self.old = self.s.picture("old.png", "200x120", "xc:green")

    def slop_ready(self):
        """slop has mapped its window; it takes the pointer and keyboard about then (retrying for
        a while when it can't): the callers give it a second, as a person would."""
        return '("slop" "slop")' in self.s.run("xwininfo", "-root", "-tree", check=False).stdout

    def helper_folders(self):
        runtime = self.s.env["XDG_RUNTIME_DIR"]
        return sorted(f for f in os.listdir(runtime) if f.startswith("screencapture."))

    def test_escape_cancels_and_a_drag_gives_exactly_that_region_with_the_server_free(self):
        s = self.s
        # The working folders of a killed helper (its pid gone) and of one still running.
        gone = subprocess.Popen(["true"])
        gone.wait()
        dead, alive = f"screencapture.{gone.pid}.Xq3kfa", f"screencapture.{os.getpid()}.Wm2pzc"
        for name in (dead, alive):
            os.makedirs(os.path.join(s.env["XDG_RUNTIME_DIR"], name, "sub"), mode=0o700)
        s.run("xsetroot", "-solid", "#336699")
        s.run("sh", "-c", "echo 'keep me' | xclip -selection clipboard -i >/dev/null 2>&1")
        s.start()
        viewer = s.daemon("display", "-geometry", "+300+200", self.known)  # known pixels on screen
        self.assertTrue(wait_for(lambda: s.windows(name="known"), 5.0))
        time.sleep(0.5)
        ref = s.screen_part(0, 0, 1280, 1024, "ref.png")
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(self.slop_ready, 5.0), "the helper asks for a region")
        time.sleep(1.0)
        # Held as a hand holds a key: slop reads the keyboard every few milliseconds.
        s.run("xdotool", "keydown", "Escape", "sleep", "0.15", "keyup", "Escape")
        self.assertTrue(wait_for(lambda: not self.slop_ready(), 3.0), "Escape ends the selection")
        time.sleep(1.0)
        self.assertEqual(s.of_role("editor"), [])
        self.assertEqual(s.clipboard("UTF8_STRING"), b"keep me\n")
        self.assertEqual(self.helper_folders(), [alive], "the dead helper's folder gone, its own too")

        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(self.slop_ready, 5.0))
        time.sleep(1.0)
        # Another client is served while the user selects: the server is not grabbed.
        self.assertEqual(subprocess.run(["xdpyinfo"], env=s.env, capture_output=True, timeout=3).returncode, 0)
        s.run("xdotool", "mousemove", "400", "250", "sleep", "0.2", "mousedown", "1", "sleep", "0.2",
              "mousemove", "450", "280", "sleep", "0.2", "mousemove", "520", "310", "sleep", "0.2", "mouseup", "1")
        self.assertTrue(wait_for(lambda: s.of_role("editor"), 5.0), "the editor opens")
        got = s.clipboard_png()
        w, h = map(int, s.size_of(got).split("x"))
        self.assertTrue(abs(w - 120) <= 1 and abs(h - 60) <= 1, (w, h))
        self.assertEqual(s.differing_pixels(got, s.crop(ref, 400, 250, w, h, "want.png")), 0)
        viewer.kill()

        # A quit during a selection ends the program at once and the helper with it, and leaves
        # no file behind: the road to the clipboard goes through a pipe.
        s.key("ctrl+shift+2")
        self.assertTrue(wait_for(self.slop_ready, 5.0))
        s.proc.terminate()
        self.assertEqual(s.wait_exit(3), 0)
        self.assertTrue(wait_for(lambda: not self.slop_ready(), 2.0), "the selection went with it")
        self.assertEqual(self.helper_folders(), [alive])

    def test_the_grab_hands_its_png_over_or_leaves_the_clipboard_as_it_was(self):
        s = self.s
        grab = os.path.join(os.path.dirname(harness.exe()), "x11-grab")
        s.run("sh", "-c", "echo 'keep me' | xclip -selection clipboard -i >/dev/null 2>&1")
        # xclip is started before the grab; a grab that fails must not let it take the clipboard.
        for region, status in (("10x10+5000+5000", 1), ("64x32+1217+992", 1), ("0x5+0+0", 1),
                               ("64x32", 2), ("64x32+1216+992", 0)):
            with self.subTest(region=region):
                self.assertEqual(s.run(grab, "-g", region, "-c", check=False).returncode, status)
                if status:
                    time.sleep(0.3)
                    self.assertEqual(s.clipboard("UTF8_STRING"), b"keep me\n")
        got = s.clipboard_png()
        self.assertEqual(s.size_of(got), "64x32")
        self.assertEqual(s.differing_pixels(got, s.screen_part(1216, 992, 64, 32)), 0)

    def test_a_held_key_a_helper_gone_before_its_owner_and_an_owner_that_never_answers(self):
        s = self.s
        s.capture_puts(self.known)
        s.start()
        s.run("xdotool", "keydown", "ctrl+shift+2", "sleep", "1", "keyup", "ctrl+shift+2")
        wid = wait_for(lambda: s.of_role("editor"), 3.0)[0]
        x, y, w, h = self.assert_editor_shows(wid, self.known, scale=2)
        self.assertEqual(len(s.capture_calls()), 1, "a held key captures once")
        # Dragged by the background an odd number of pixels, two to a unit: moved by exactly that.
        s.run("xdotool", "mousemove", str(x + w - 3), str(y + h - 3), "mousedown", "1", "sleep", "0.1",
              "mousemove", str(x + w + 12), str(y + h + 2), "sleep", "0.2", "mouseup", "1")
        self.assertTrue(wait_for(lambda: s.geometry(wid)[:2] == (x + 15, y + 5), 2.0), s.geometry(wid))

        # Like a user's own helper: xclip is started and the helper is gone at once.
        s.run("sh", "-c", f"xclip -selection clipboard -t image/png -i '{self.old}' >/dev/null 2>&1")
        s.fake_capture(f"(sleep 0.2; xclip -selection clipboard -t image/png -i '{self.known}') "
                       "</dev/null >/dev/null 2>&1 &\nexit 0")
        self.assert_editor_shows(s.open_editor(), self.known, scale=2)

        # An owner that takes the clipboard and stops answering costs at most three seconds;
        # then a press is served (one while the first still ran would be dropped).
        flag = os.path.join(s.tmp, "first-done")
        s.fake_capture(
            f"if [ ! -e '{flag}' ]; then touch '{flag}'\n"
            f"  xclip -selection clipboard -t image/png -i '{self.old}' </dev/null >/dev/null 2>&1\n"
            "  sleep 0.3; kill -STOP $(pgrep -n -x xclip)\n"
            "else kill -KILL $(pgrep -x xclip) 2>/dev/null\n"
            f"  xclip -selection clipboard -t image/png -i '{self.known}' </dev/null >/dev/null 2>&1\n"
            "  sleep 0.3\nfi")
        s.key("ctrl+shift+2")
        time.sleep(3.0)
        self.assert_editor_shows(s.open_editor(), self.known, scale=2)
        self.assertEqual(len(s.capture_calls()), 4)


class WindowsTest(E2ETestCase):
    def setUp(self):
        super().setUp()
        self.s.start(wait_splash=False)
        self.assertTrue(wait_for(lambda: self.s.of_role("splash"), 5.0))

    def test_sigterm_during_the_splash_ends_the_program(self):
        self.s.proc.terminate()
        self.assertEqual(self.s.wait_exit(3), 0)

    def test_the_background_drags_the_window_and_the_drawer_stays_against_it(self):
        s = self.s
        self.assertTrue(wait_for(lambda: not s.of_role("splash"), 4.0), "the splash has gone")
        wid = s.open_editor(s.picture("wide.png", "640x360", "gradient:navy-gold"))  # the whole toolbar
        x, y, w, h = s.geometry(wid)
        for step in range(3):
            gx, gy = x + w - 3, y + h - 3  # the background below the scroll bar's end
            s.run("xdotool", "mousemove", str(gx), str(gy), "sleep", "0.1", "mousedown", "1", "sleep", "0.1",
                  "mousemove", str(gx + 15), str(gy), "sleep", "0.1", "mousemove", str(gx + 30), str(gy),
                  "sleep", "0.1", "mouseup", "1")
            moved = wait_for(lambda: s.geometry(wid)[:2] == (x + 30, y), 2.0)
            self.assertTrue(moved, f"drag {step + 1}: moved by the pointer's travel")
            x += 30
        s.click(x + w - 121, y + 45)  # Recent
        drawer = wait_for(lambda: s.of_role("drawer"), 3.0)[0]
        # A tool of the editor, out of the task bar, that leaves the focus where it was.
        self.assertIn(f"window id # {hex(wid)}", s.run("xprop", "-id", str(drawer), "WM_TRANSIENT_FOR").stdout)
        self.assertIn("_NET_WM_STATE_SKIP_TASKBAR", s.run("xprop", "-id", str(drawer), "_NET_WM_STATE").stdout)
        self.assertEqual(s.run("xdotool", "getactivewindow").stdout.split(), [str(wid)])
        for to in ((100, 150), (300, 250)):
            s.run("xdotool", "windowmove", "--sync", str(wid), str(to[0]), str(to[1]))
            time.sleep(0.5)
            ex, ey, ew, eh = s.geometry(wid)
            dx, dy, _, _ = s.geometry(drawer)
            self.assertEqual(dy, ey + eh - (360 + 91), "at the editor's content top")
            self.assertTrue(ex + ew <= dx <= ex + ew + 10, "against the editor's frame edge")


class TrayTest(E2ETestCase):
    def tray_icon(self):
        """Absolute geometry of our icon embedded in the tray, or None."""
        m = re.search(r'"Vantrel": \("Vantrel" "Vantrel"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)',
                      self.s.run("xwininfo", "-root", "-tree").stdout)
        w, h, x, y = map(int, m.groups()) if m else (0, 0, -1, -1)
        return (x, y, w, h) if x >= 0 and y >= 0 else None

    def tray_menu(self, *keys):
        x, y, w, h = wait_for(self.tray_icon, 3.0)
        self.s.click(x + w // 2, y + h // 2)
        time.sleep(0.3)
        self.s.key(*keys)
        time.sleep(0.5)

    def test_tray_menu_preferences_and_a_hidden_icon(self):
        s = self.s
        # The flag lives in the bundle itself: work on a copy (which also shows it can move).
        self.addCleanup(setattr, harness, "BUNDLE", harness.BUNDLE)
        harness.BUNDLE = shutil.copytree(harness.BUNDLE, os.path.join(s.tmp, "My Apps", "Vantrel.app"), symlinks=True)
        s.daemon("trayer", "--edge", "top", "--align", "right", "--widthtype", "pixel", "--width", "120",
                 "--height", "28", "--SetDockType", "true")
        time.sleep(0.5)
        s.start()
        self.tray_menu("Down", "Return")  # its first row: Preferences
        prefs = wait_for(lambda: s.windows(name="^Preferences$"), 3.0)
        self.assertTrue(prefs, "the preferences window is shown")
        px, py, pw, ph = s.geometry(prefs[0])

        # "Hide Tray Icon" (20,45): the bundle says so; the icon stays for this run.
        s.click(px + 30, py + 55)
        info = os.path.join(harness.BUNDLE, "Contents", "Info.plist")
        self.assertTrue(wait_for(lambda: "<key>LSUIElement</key>\n\t<integer>1</integer>" in read(info)))
        self.assertTrue(self.tray_icon())
        self.tray_menu("Down", "Down", "Return")  # Quit
        self.assertEqual(s.wait_exit(5), 0)


if __name__ == "__main__":
    main()
