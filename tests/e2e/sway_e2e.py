"""Vantrel on a real Wayland desktop: headless sway with XWayland, PipeWire and
xdg-desktop-portal-wlr, a stand-in `slurp` answering the region named in a file. `vantrel
--capture` and sway's own binding of it (fired with wtype) open the editor on exactly that
region of a known background; a cancelled selection opens nothing and keeps the clipboard."""

import os
import subprocess
import time
import unittest

from harness import EXE, TMP, script, wait_for, wayland_main


def run(*argv):
    return subprocess.run(argv, env=dict(os.environ, XDG_SESSION_TYPE="wayland"), capture_output=True, timeout=20)


class SwayTest(unittest.TestCase):
    def select(self, region):
        with open(f"{TMP}/region", "w") as f:
            f.write(region)

    def editors(self):
        return run("swaymsg", "-t", "get_tree").stdout.count(b'"name": "Vantrel"')

    def assert_clipboard_is(self, x, y, w, h):
        self.assertTrue(wait_for(lambda: run("xclip", "-o", "-selection", "clipboard", "-t", "image/png").stdout[:4] == b"\x89PNG", 5.0))
        with open(f"{TMP}/got.png", "wb") as f:
            f.write(run("xclip", "-o", "-selection", "clipboard", "-t", "image/png").stdout)
        run("convert", f"{TMP}/screen.png", "-crop", f"{w}x{h}+{x}+{y}", "+repage", f"{TMP}/want.png")
        diff = run("compare", "-metric", "AE", f"{TMP}/want.png", f"{TMP}/got.png", "null:").stderr.strip()
        self.assertEqual(diff, b"0", "the clipboard holds exactly the selected region")

    def test_capture_by_command_by_sway_binding_and_cancelled(self):
        # The screen as grim reads it, before any window covers it (sway tiles the editor).
        self.assertEqual(run("grim", f"{TMP}/screen.png").returncode, 0)
        vantrel = subprocess.Popen([EXE], env=dict(os.environ, XDG_SESSION_TYPE="wayland"),
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (vantrel.kill(), vantrel.wait()))
        time.sleep(2.5)  # the splash comes and goes
        run("sh", "-c", "echo before | xclip -selection clipboard -i >/dev/null 2>&1")
        self.select("cancel")
        self.assertEqual(run(EXE, "--capture").returncode, 0)
        time.sleep(2.0)
        self.assertEqual(self.editors(), 0, "a cancelled selection opens nothing")
        self.assertEqual(run("xclip", "-o", "-selection", "clipboard").stdout, b"before\n")
        self.select("100,80 320x200")
        run(EXE, "--capture")
        self.assertTrue(wait_for(self.editors, 8.0), "the editor opens")
        self.assert_clipboard_is(100, 80, 320, 200)
        run("swaymsg", "[title=Vantrel] kill")
        self.assertTrue(wait_for(lambda: not self.editors(), 5.0))
        self.select("400,300 200x120")
        run("wtype", "-M", "shift", "-M", "ctrl", "2", "-m", "ctrl", "-m", "shift")
        self.assertTrue(wait_for(self.editors, 8.0), "sway's binding of vantrel --capture")
        self.assert_clipboard_is(400, 300, 200, 120)


def start():
    """PipeWire, then sway."""
    run("convert", "-size", "1280x720", "gradient:#d03020-#2040c0", f"{TMP}/bg.png")
    script(f"{TMP}/bin/slurp", f'sleep 0.2\nr=$(cat "{TMP}/region")\n[ "$r" = cancel ] && exit 1\necho "$r"\n')
    with open(f"{TMP}/config", "w") as f:
        f.write(f"output HEADLESS-1 resolution 1280x720 bg {TMP}/bg.png stretch\nxwayland enable\n"
                "exec dbus-update-activation-environment WAYLAND_DISPLAY DISPLAY XDG_CURRENT_DESKTOP SWAYSOCK PATH\n"
                f"exec env > {TMP}/env.tmp && mv {TMP}/env.tmp {TMP}/env\nbindsym Shift+Ctrl+2 exec {EXE} --capture\n")
    log = open(f"{TMP}/desktop.log", "w")
    return [subprocess.Popen(["pipewire"], stdout=log, stderr=log),
            subprocess.Popen(["sway", "-c", f"{TMP}/config"], stdout=log, stderr=log, env=dict(
                os.environ, WLR_BACKENDS="headless", WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1"))]


if __name__ == "__main__":
    wayland_main("sway", ("sway", "swaybg", "Xwayland", "pipewire", "grim", "wtype", "xclip", "swaymsg",
                          "/usr/libexec/xdg-desktop-portal-wlr"), start, ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK"))
