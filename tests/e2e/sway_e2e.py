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

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from harness import wait_for  # noqa: E402

NEEDED = ("sway", "swaybg", "Xwayland", "pipewire", "grim", "wtype", "xclip", "swaymsg")
USER = "vantrel-e2e"


class SwayTest(unittest.TestCase):
    def setUp(self):
        self.tmp = os.environ["SWAY_TEST_DIR"]
        self.exe = os.path.join(os.environ["SWAY_TEST_BUNDLE"], "Contents", "MacOS", "Vantrel")
        self.env = dict(os.environ, XDG_SESSION_TYPE="wayland")

    def run_(self, *argv, **kw):
        return subprocess.run(list(argv), env=self.env, capture_output=True, timeout=20, **kw)

    def region(self, text):
        with open(os.path.join(self.tmp, "region"), "w") as f:
            f.write(text)

    def clipboard(self):
        return self.run_("xclip", "-o", "-selection", "clipboard", "-t", "image/png").stdout

    def editors(self):
        return self.run_("swaymsg", "-t", "get_tree").stdout.count(b'"name": "Vantrel"')

    def assert_clipboard_is(self, geometry):
        x, y, w, h = geometry
        want = os.path.join(self.tmp, "want.png")
        self.run_("convert", self.screen, "-crop", f"{w}x{h}+{x}+{y}", "+repage", want)
        got = os.path.join(self.tmp, "got.png")
        self.assertTrue(wait_for(lambda: self.clipboard()[:4] == b"\x89PNG", 5.0))
        with open(got, "wb") as f:
            f.write(self.clipboard())
        diff = self.run_("compare", "-metric", "AE", want, got, "null:").stderr.strip()
        self.assertEqual(diff, b"0", "the clipboard holds exactly the selected region")

    def test_capture_by_command_by_sway_binding_and_cancelled(self):
        # The screen as grim reads it, before any window covers it (sway tiles the editor).
        self.screen = os.path.join(self.tmp, "screen.png")
        self.assertEqual(self.run_("grim", self.screen).returncode, 0)
        vantrel = subprocess.Popen([self.exe], env=self.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (vantrel.kill(), vantrel.wait()))
        time.sleep(2.5)  # the splash comes and goes
        self.run_("sh", "-c", "echo before | xclip -selection clipboard -i >/dev/null 2>&1")
        self.region("cancel")
        self.assertEqual(self.run_(self.exe, "--capture").returncode, 0)
        time.sleep(2.0)
        self.assertEqual(self.editors(), 0, "a cancelled selection opens nothing")
        self.assertEqual(self.run_("xclip", "-o", "-selection", "clipboard").stdout, b"before\n")

        self.region("100,80 320x200")
        self.run_(self.exe, "--capture")
        self.assertTrue(wait_for(self.editors, 8.0), "the editor opens")
        self.assert_clipboard_is((100, 80, 320, 200))
        self.run_("swaymsg", "[title=Vantrel] kill")
        self.assertTrue(wait_for(lambda: not self.editors(), 5.0))

        self.region("400,300 200x120")
        self.run_("wtype", "-M", "shift", "-M", "ctrl", "2", "-m", "ctrl", "-m", "shift")
        self.assertTrue(wait_for(self.editors, 8.0), "sway's binding of vantrel --capture")
        self.run_("swaymsg", "[title=Vantrel] kill")
        wait_for(lambda: not self.editors(), 5.0)
        self.assert_clipboard_is((400, 300, 200, 120))


def inner(bundle):
    """Inside the user's own bus: PipeWire, then sway, then the tests."""
    tmp = os.environ["SWAY_TEST_DIR"]
    subprocess.run(["convert", "-size", "1280x720", "gradient:#d03020-#2040c0", "-rotate", "0",
                    os.path.join(tmp, "bg.png")], check=True)
    slurp = os.path.join(tmp, "bin", "slurp")
    with open(slurp, "w") as f:
        f.write(f'#!/bin/sh\nsleep 0.2\nr=$(cat "{tmp}/region")\n[ "$r" = cancel ] && exit 1\necho "$r"\n')
    os.chmod(slurp, 0o755)
    with open(os.path.join(tmp, "config"), "w") as f:
        f.write(f"output HEADLESS-1 resolution 1280x720 bg {tmp}/bg.png stretch\nxwayland enable\n"
                "exec dbus-update-activation-environment WAYLAND_DISPLAY DISPLAY XDG_CURRENT_DESKTOP SWAYSOCK PATH\n"
                f"exec env > {tmp}/env.tmp && mv {tmp}/env.tmp {tmp}/env\n"
                f"bindsym Shift+Ctrl+2 exec {bundle}/Contents/MacOS/Vantrel --capture\n")
    log = open(os.path.join(tmp, "sway.log"), "w")
    daemons = [subprocess.Popen(["pipewire"], stdout=log, stderr=log)]
    daemons.append(subprocess.Popen(["sway", "-c", os.path.join(tmp, "config")], stdout=log, stderr=log,
                                    env=dict(os.environ, WLR_BACKENDS="headless", WLR_RENDERER="pixman",
                                             WLR_LIBINPUT_NO_DEVICES="1")))
    try:
        env_file = os.path.join(tmp, "env")
        if not wait_for(lambda: os.path.exists(env_file), 10.0):
            print(open(os.path.join(tmp, "sway.log")).read()[-2000:])
            return 1
        for line in open(env_file):
            k, _, v = line.rstrip("\n").partition("=")
            if k in ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK"):
                os.environ[k] = v
        time.sleep(0.5)
        result = unittest.main(module="__main__", argv=[sys.argv[0]], exit=False, verbosity=2).result
        return 0 if result.wasSuccessful() else 1
    finally:
        for d in reversed(daemons):
            d.terminate()
            d.wait(5)


def main():
    bundle = os.path.abspath(sys.argv[sys.argv.index("--bundle") + 1])
    if "--inner" in sys.argv:
        sys.exit(inner(bundle))
    missing = [p for p in NEEDED if not shutil.which(p)]
    if missing or not os.path.exists("/usr/libexec/xdg-desktop-portal-wlr"):
        print(f"SKIPPED: the Wayland road needs {', '.join(missing) or 'xdg-desktop-portal-wlr'}")
        sys.exit(77)  # ctest's skip code: a missing package never passes for a test
    if os.geteuid() == 0:
        try:
            pwd.getpwnam(USER)
        except KeyError:
            subprocess.run(["useradd", "--system", "--create-home", "--home-dir", f"/var/lib/{USER}", USER], check=True)
        run_as = ["runuser", "-u", USER, "--"]
        owner = pwd.getpwnam(USER)
    else:
        run_as, owner = [], pwd.getpwuid(os.geteuid())
    tmp = tempfile.mkdtemp(prefix="vantrel-sway-")
    try:
        os.makedirs(os.path.join(tmp, "bin"))
        os.makedirs(os.path.join(tmp, "runtime"), mode=0o700)
        # The user may not reach the checkout: the bundle and the test go along.
        here = os.path.dirname(os.path.abspath(__file__))
        for f in ("sway_e2e.py", "harness.py"):
            shutil.copy(os.path.join(here, f), tmp)
        bundle = shutil.copytree(bundle, os.path.join(tmp, "Vantrel.app"), symlinks=True)
        for root, dirs, files in os.walk(tmp):
            for p in [root] + [os.path.join(root, x) for x in dirs + files]:
                os.lchown(p, owner.pw_uid, owner.pw_gid)
        env = {"HOME": owner.pw_dir, "XDG_RUNTIME_DIR": os.path.join(tmp, "runtime"), "SWAY_TEST_DIR": tmp,
               "SWAY_TEST_BUNDLE": bundle, "XDG_CURRENT_DESKTOP": "sway", "LANG": "C.UTF-8",
               "PATH": os.path.join(tmp, "bin") + ":/usr/local/bin:/usr/bin:/bin"}
        r = subprocess.run(run_as + ["env", "-i"] + [f"{k}={v}" for k, v in env.items()] +
                           ["dbus-run-session", "--", "/usr/bin/python3", os.path.join(tmp, "sway_e2e.py"), "--bundle", bundle,
                            "--inner"], timeout=240)
        sys.exit(r.returncode)
    finally:
        shutil.rmtree(tmp, ignore_errors=True)


if __name__ == "__main__":
    main()
