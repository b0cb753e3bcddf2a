"""Takes the README's screenshots under Xvfb: the editor with a captioned capture, the drawer,
and the preferences window.  /usr/bin/python3 tools/readme_screenshots.py build/Vantrel.app docs"""

import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
from harness import Session, Xvfb, wait_for  # noqa: E402


def main(bundle, out):
    x = Xvfb(1280, 1024)
    s = Session(os.path.abspath(bundle), x)
    try:
        # A desktop's colour behind the windows, not the bare server's black.
        s.run("xsetroot", "-solid", "#5a7896")
        shot = os.path.join(s.tmp, "desk.png")
        s.run("convert", "-size", "640x360", "gradient:#2d5f9a-#e9f1fb", "-fill", "#f2b632",
              "-draw", "circle 480,110 480,150", "-fill", "#5b9bd5",
              "-draw", "polygon 0,360 200,170 330,290 420,210 640,360", "-depth", "8", "PNG24:" + shot)
        for i in range(3):
            s.capture_puts(shot)
            s.start() if i == 0 else None
            editors = s.capture_until_editor()
        wid = editors[0]
        ex, ey, ew, eh = s.geometry(wid)
        height = max(min(1024 - 100, 360 + 91), 250)
        content_y = ey + eh - height
        s.click(ex + 100, content_y + 370 + (height - 440) + 10)
        s.run("xdotool", "type", "--delay", "20", "The new dashboard, first draft")
        time.sleep(0.5)
        full = os.path.join(s.tmp, "full.png")
        s.screenshot(full)
        s.crop(full, os.path.join(out, "editor.png"), ex, ey, ew, eh)
        # The drawer, through its toolbar item (the sixth item, right of the space).
        s.key("Escape")
        toolbar_y = ey + 19 + 20
        s.click(ex + ew - 120, toolbar_y)
        drawers = wait_for(lambda: [w for w in s.windows(name=".*") if s.role(w) == "drawer"], 3.0)
        time.sleep(0.5)
        s.screenshot(full)
        if drawers:
            dx, dy, dw, dh = s.geometry(drawers[0])
            s.crop(full, os.path.join(out, "drawer.png"), ex, ey, dx + dw - ex, eh)
        s.click(ex + ew - 40, toolbar_y)
        prefs = wait_for(lambda: s.windows(name="^Preferences$"), 3.0)
        time.sleep(0.5)
        s.screenshot(full)
        if prefs:
            px, py, pw, ph = s.geometry(prefs[0])
            s.crop(full, os.path.join(out, "preferences.png"), px, py, pw, ph)
    finally:
        s.cleanup()
        x.close()


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
