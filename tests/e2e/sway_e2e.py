"""Vantrel on a real Wayland desktop: headless sway with XWayland, PipeWire and
xdg-desktop-portal-wlr, a stand-in `slurp` answering the region named in a file. `vantrel
--capture` and sway's own binding of it (fired with wtype) open the editor on exactly that
region of a known background; a cancelled selection opens nothing and keeps the clipboard.
sway refuses root: run as root, the test makes an ordinary user and runs itself as that user."""

import os
import pwd
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from harness import read, wait_for

USER = "vantrel-e2e"


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


def inner():
    """Inside the user's own bus: PipeWire, then sway, then the test."""
    run("convert", "-size", "1280x720", "gradient:#d03020-#2040c0", f"{TMP}/bg.png")
    with open(f"{TMP}/bin/slurp", "w") as f:
        f.write(f'#!/bin/sh\nsleep 0.2\nr=$(cat "{TMP}/region")\n[ "$r" = cancel ] && exit 1\necho "$r"\n')
    os.chmod(f"{TMP}/bin/slurp", 0o755)
    with open(f"{TMP}/config", "w") as f:
        f.write(f"output HEADLESS-1 resolution 1280x720 bg {TMP}/bg.png stretch\nxwayland enable\n"
                "exec dbus-update-activation-environment WAYLAND_DISPLAY DISPLAY XDG_CURRENT_DESKTOP SWAYSOCK PATH\n"
                f"exec env > {TMP}/env.tmp && mv {TMP}/env.tmp {TMP}/env\nbindsym Shift+Ctrl+2 exec {EXE} --capture\n")
    log = open(f"{TMP}/sway.log", "w")
    daemons = [subprocess.Popen(["pipewire"], stdout=log, stderr=log),
               subprocess.Popen(["sway", "-c", f"{TMP}/config"], stdout=log, stderr=log, env=dict(
                   os.environ, WLR_BACKENDS="headless", WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1"))]
    try:
        if not wait_for(lambda: os.path.exists(f"{TMP}/env"), 10.0):
            return print(read(f"{TMP}/sway.log")[-2000:]) or 1
        os.environ.update(line.split("=", 1) for line in read(f"{TMP}/env").splitlines()
                          if line.split("=")[0] in ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK"))
        time.sleep(0.5)
        return 0 if unittest.main(argv=[sys.argv[0]], exit=False, verbosity=2).result.wasSuccessful() else 1
    finally:
        for d in reversed(daemons):
            d.terminate()
            d.wait(5)


def outer(bundle):
    """As an ordinary user with a bus of its own; the bundle and the test go along, since that
    user may not reach the checkout."""
    missing = [p for p in ("sway", "swaybg", "Xwayland", "pipewire", "grim", "wtype", "xclip", "swaymsg")
               if not shutil.which(p)] + [p for p in ["/usr/libexec/xdg-desktop-portal-wlr"] if not os.path.exists(p)]
    if missing:
        sys.exit(print(f"SKIPPED: the Wayland road needs {', '.join(missing)}") or 77)  # ctest's skip code
    run_as, owner = [], pwd.getpwuid(os.geteuid())
    if os.geteuid() == 0:
        if subprocess.run(["id", USER], capture_output=True).returncode:
            subprocess.run(["useradd", "--system", "--create-home", "--home-dir", f"/var/lib/{USER}", USER], check=True)
        run_as, owner = ["runuser", "-u", USER, "--"], pwd.getpwnam(USER)
    tmp = tempfile.mkdtemp(prefix="vantrel-sway-")
    try:
        os.makedirs(f"{tmp}/bin")
        os.makedirs(f"{tmp}/runtime", mode=0o700)
        # The backends a sway desktop has: a KDE backend installed beside them would answer for what
        # wlr lacks (GlobalShortcuts) and can't work here.
        os.makedirs(f"{tmp}/portals")
        for name in ("wlr.portal", "gtk.portal"):
            shutil.copy(f"/usr/share/xdg-desktop-portal/portals/{name}", f"{tmp}/portals")
        for f in ("sway_e2e.py", "harness.py"):
            shutil.copy(os.path.join(os.path.dirname(os.path.abspath(__file__)), f), tmp)
        shutil.copytree(bundle, f"{tmp}/Vantrel.app", symlinks=True)
        subprocess.run(["chown", "-R", "-h", f"{owner.pw_uid}:{owner.pw_gid}", tmp], check=True)
        env = {"HOME": owner.pw_dir, "XDG_RUNTIME_DIR": f"{tmp}/runtime", "SWAY_TEST_DIR": tmp, "LANG": "C.UTF-8",
               "XDG_CURRENT_DESKTOP": "sway", "XDG_DESKTOP_PORTAL_DIR": f"{tmp}/portals",
               "PATH": f"{tmp}/bin:/usr/local/bin:/usr/bin:/bin"}
        sys.exit(subprocess.run(run_as + ["env", "-i"] + [f"{k}={v}" for k, v in env.items()] +
                                ["dbus-run-session", "--", "/usr/bin/python3", f"{tmp}/sway_e2e.py", "--inner"],
                                timeout=240).returncode)
    finally:
        shutil.rmtree(tmp, ignore_errors=True)


if __name__ == "__main__":
    TMP = os.environ.get("SWAY_TEST_DIR", "")
    EXE = f"{TMP}/Vantrel.app/Contents/MacOS/Vantrel"
    sys.exit(inner()) if "--inner" in sys.argv else outer(os.path.abspath(sys.argv[sys.argv.index("--bundle") + 1]))
