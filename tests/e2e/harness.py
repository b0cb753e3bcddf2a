"""End-to-end driver: a private Xvfb under openbox (and a compositor or a panel when asked), a
temporary HOME and XDG folders, fake external commands on PATH, and the keys, clicks, windows,
screenshots and AT-SPI widgets of the real program."""

import argparse
import os
import pwd
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

DEVNULL = subprocess.DEVNULL
BUNDLE = None  # the bundle under test, from --bundle


def exe():
    return os.path.join(BUNDLE, "Contents", "MacOS", "Vantrel")


def wait_for(predicate, timeout=5.0, step=0.05):
    """Polls until predicate() is truthy; returns its last value."""
    end = time.monotonic() + timeout
    while not (value := predicate()) and time.monotonic() < end:
        time.sleep(step)
    return value


def read(path, mode="r"):
    with open(path, mode) as f:
        return f.read()


def expected_content_origin(s, wid, width, height, panel=0):
    """Where the editor's content of this size must stand: centred in the work area less the
    window's bars and frame, with 100 rows above that the content never enters."""
    x, y, w, h = s.geometry(wid)
    left, right, top, bottom = s.frame_extents(wid)
    bars = h - height
    return (left + max((1280 - left - right - width) // 2, 0),
            panel + top + bars + max((1024 - panel - bars - top - bottom - height - 100) // 2, 0))


class Session:
    """One display (Xvfb, openbox, maybe a compositor) and one home for runs of the program."""

    def __init__(self, compositor=False, top_panel=0, dpi=None, screen="1280x1024", monitors=()):
        self.tmp = tempfile.mkdtemp(prefix="vantrel-e2e-")
        self.home, self.bin = os.path.join(self.tmp, "home"), os.path.join(self.tmp, "bin")
        self.config, runtime = os.path.join(self.home, ".config"), os.path.join(self.tmp, "runtime")
        for d in (self.home, self.bin, self.config, runtime):
            os.makedirs(d, mode=0o700, exist_ok=True)
        r, w = os.pipe()
        self.procs = [subprocess.Popen(["Xvfb", "-displayfd", str(w), "-screen", "0", screen + "x24", "-nolisten",
                                        "tcp", "-noreset"], pass_fds=(w,), stdout=DEVNULL, stderr=DEVNULL)]
        os.close(w)
        with os.fdopen(r) as f:  # Xvfb writes the display's number once it listens
            display = f.readline().strip() or sys.exit("Xvfb did not start")
        self.env = dict({k: v for k, v in os.environ.items() if k in ("LANG", "LC_ALL", "TERM")},
                        HOME=self.home, DISPLAY=":" + display, XDG_CONFIG_HOME=self.config,
                        XDG_DATA_HOME=os.path.join(self.home, ".local/share"), XDG_RUNTIME_DIR=runtime,
                        XDG_CACHE_HOME=os.path.join(self.home, ".cache"),
                        # No session bus unless a test brings one: never autolaunch a daemon.
                        DBUS_SESSION_BUS_ADDRESS="unix:path=" + os.path.join(runtime, "no-bus"),
                        PATH=self.bin + ":/usr/local/bin:/usr/bin:/bin")
        for m in monitors:  # xrandr's --setmonitor arguments; a name with "+" is the primary
            self.run("xrandr", "--setmonitor", *m.split())
        if dpi:
            self.run("sh", "-c", f"echo 'Xft.dpi: {dpi}' | xrdb -merge")
        rc = os.path.join(self.tmp, "openbox.xml")  # a panel keeps space free at the top
        with open(rc, "w") as f:
            f.write(f'<openbox_config xmlns="http://openbox.org/3.4/rc"><margins><top>{top_panel}</top></margins>'
                    '</openbox_config>')
        self.daemon("openbox", "--sm-disable", "--config-file", rc)
        wait_for(lambda: "WINDOW" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False).stdout)
        if compositor:
            self.daemon("xcompmgr")
            time.sleep(0.3)
        self.proc, self.logf = None, None

    def daemon(self, *argv):
        self.procs.append(subprocess.Popen(list(argv), env=self.env, stdout=DEVNULL, stderr=DEVNULL))
        return self.procs[-1]

    def close(self):
        self.stop()
        for p in reversed(self.procs):
            p.terminate()
            try:
                p.wait(5)
            except subprocess.TimeoutExpired:
                p.kill()
        shutil.rmtree(self.tmp, ignore_errors=True)

    # --- pictures and the fake capture command ----------------------------------------------
    def picture(self, name, size, *how):
        """A PNG made by ImageMagick: `how` is convert's arguments after -size, e.g. xc:navy."""
        path = os.path.join(self.tmp, name)
        self.run("convert", "-size", size, *how, "-depth", "8", "-strip", "PNG24:" + path)
        return path

    def fake_capture(self, script_body):
        """Installs a `screencapture` that records its argv and runs the given shell body."""
        script(os.path.join(self.bin, "screencapture"), f'echo "$@" >> "{self.tmp}/capture-calls"\n{script_body}\n')

    def capture_puts(self, file):
        self.fake_capture(f"xclip -selection clipboard -t image/png -i '{file}' </dev/null >/dev/null 2>&1")

    def capture_calls(self):
        path = os.path.join(self.tmp, "capture-calls")
        return read(path).split("\n")[:-1] if os.path.exists(path) else []

    def clipboard(self, target="image/png"):
        return subprocess.run(["xclip", "-o", "-selection", "clipboard", "-t", target], env=self.env,
                              capture_output=True, timeout=5).stdout

    def clipboard_png(self, name="clip.png"):
        """The clipboard's picture in a file (an empty one when it holds none)."""
        with open(os.path.join(self.tmp, name), "wb") as f:
            f.write(self.clipboard())
        return f.name

    # --- the program ---------------------------------------------------------------------------
    def start(self, wait_splash=True, program=None):
        if self.logf:
            self.logf.close()
        self.logf = open(os.path.join(self.tmp, "vantrel.log"), "a")
        self.proc = subprocess.Popen([program or exe()], env=self.env,
                                     stdout=self.logf, stderr=subprocess.STDOUT, stdin=DEVNULL, cwd=self.home)
        if wait_splash:  # start-up ends when the splash has gone
            time.sleep(0.5)
            wait_for(lambda: not self.of_role("splash"), 4.0)
            time.sleep(0.2)
        return self.proc

    def open_editor(self, picture=None):
        """One press of the hot key; the editor's window once it is mapped, else None."""
        if picture:
            self.capture_puts(picture)
        self.key("ctrl+shift+2")
        editors = wait_for(lambda: self.of_role("editor"), 5.0)
        time.sleep(0.3)  # the window manager settles it
        return editors[0] if editors else None

    def alive(self):
        return self.proc is not None and self.proc.poll() is None

    def wait_exit(self, timeout=5):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            return None

    def stop(self):
        if self.alive():
            self.proc.kill()
            self.proc.wait(5)
        if self.logf:
            self.logf.close()

    # --- X --------------------------------------------------------------------------------------
    def run(self, *argv, check=True):
        return subprocess.run(list(argv), env=self.env, check=check, capture_output=True, text=True, timeout=60)

    def key(self, *keys):
        self.run("xdotool", "key", *keys)

    def click(self, x, y):
        self.run("xdotool", "mousemove", str(x), str(y), "click", "1")
        time.sleep(0.2)

    def windows(self, name="^Vantrel$", own=False):
        """Mapped windows by title, or all of the program's own."""
        which = ["--pid", str(self.proc.pid)] if own else ["--name", name]
        return [int(w) for w in self.run("xdotool", "search", "--onlyvisible", *which, check=False).stdout.split()]

    def role(self, wid):
        out = self.run("xprop", "-id", str(wid), "WM_WINDOW_ROLE", check=False).stdout
        return out.split('"')[1] if '"' in out else ""

    def of_role(self, role):
        return [w for w in self.windows(name=".*") if self.role(w) == role]

    def mapped(self, wid):
        return "IsViewable" in self.run("xwininfo", "-id", str(wid), check=False).stdout

    def frame_extents(self, wid):
        """The window manager's frame around a window: left, right, top, bottom."""
        out = self.run("xprop", "-id", str(wid), "_NET_FRAME_EXTENTS", check=False).stdout
        return [int(v) for v in out.split("=")[1].split(",")] if "=" in out else [0, 0, 0, 0]

    def geometry(self, wid):
        vals = dict(line.strip().split(":", 1) for line in self.run("xwininfo", "-id", str(wid)).stdout.splitlines()
                    if ":" in line)
        return tuple(int(vals[k]) for k in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def close_box(self, wid):
        """What a click on the close box does: the window manager sends WM_DELETE_WINDOW."""
        self.run("wmctrl", "-i", "-c", hex(wid))

    def screen_part(self, x, y, w, h, name="part.png"):
        """A part of the screen as it shows now, as a PNG."""
        shot = os.path.join(self.tmp, "screen.png")
        self.run("import", "-silent", "-window", "root", shot)
        return self.crop(shot, x, y, w, h, name)

    def crop(self, src, x, y, w, h, name="crop.png"):
        dst = os.path.join(self.tmp, name)
        self.run("convert", src, "-crop", f"{w}x{h}+{x}+{y}", "+repage", dst)
        return dst

    def differing_pixels(self, a, b):
        return int(float(self.run("compare", "-metric", "AE", a, b, "null:", check=False).stderr.split()[0]))

    def size_of(self, path):
        return self.run("identify", "-format", "%wx%h", path, check=False).stdout


class A11y:
    """The program's widgets through AT-SPI: the test and the program share the session bus that
    with_session_bus.sh made; Debian's python3 brings pyatspi."""

    def __init__(self, session):
        import pyatspi
        self.pyatspi = pyatspi
        session.env.update(DBUS_SESSION_BUS_ADDRESS=os.environ.get("DBUS_SESSION_BUS_ADDRESS", ""),
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", GSETTINGS_BACKEND="memory")
        pyatspi.Registry.getDesktop(0)  # starts the registry before the program looks for it

    def find(self, role, name):
        apps = [a for a in self.pyatspi.Registry.getDesktop(0) if a is not None and a.name == "Vantrel"]
        stack = apps[:1]
        if apps:
            try:
                apps[0].clearCache()  # a tree read before the program finished building it
            except Exception:
                pass
        while stack:
            n = stack.pop()
            try:
                if n.getRoleName() == role and n.name == name:
                    return n
                stack += [c for c in (n.getChildAtIndex(i) for i in range(n.childCount)) if c is not None]
            except Exception:  # a node that went away while walking
                continue
        return None

    def press(self, session, name, timeout=3.0):
        """Clicks the button of that name once it shows; whether there was one."""
        def shown():
            n = self.find("push button", name)
            e = n.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS) if n is not None else None
            return e if e is not None and e.width > 0 else None
        e = wait_for(shown, timeout)
        if e:
            session.click(e.x + e.width // 2, e.y + e.height // 2)
            time.sleep(0.1)
        return bool(e)


class E2ETestCase(unittest.TestCase):
    """A test with a display and a home of its own (`self.s`). Subclasses set `accessible` to read
    widgets through AT-SPI, `compositor`, `top_panel`, `dpi`, `screen` or `monitors` for the desktop
    they need."""

    accessible, compositor, top_panel, dpi, screen, monitors = False, False, 0, None, "1280x1024", ()

    def setUp(self):
        # A display of its own per test: a clipboard owner left by one test must not feed the next.
        self.s = Session(self.compositor, self.top_panel, self.dpi, self.screen, self.monitors)
        self.addCleanup(self.s.close)
        self.a11y = A11y(self.s) if self.accessible else None

    def assert_inside(self, wid, area):
        """The window, frame included, stands wholly in the area (x, y, width, height); its content."""
        (x, y, w, h), (left, right, top, bottom) = self.s.geometry(wid), self.s.frame_extents(wid)
        self.assertTrue(area[0] <= x - left and area[1] <= y - top and x + w + right <= area[0] + area[2]
                        and y + h + bottom <= area[1] + area[3], ((x, y, w, h), area))
        return x, y, w, h

    def assert_editor_shows(self, wid, picture, scale=1):
        """The editor shows the 200x120 picture one to one, centred one pixel in a canvas of the
        floors (300x250 less 15 and 90); `scale` is the screen's device pixel ratio. Looked at
        until the window manager and a compositor have settled it."""
        def shows():
            x, y, w, h = self.s.geometry(wid)
            shown = w == 300 * scale and self.s.screen_part(
                x + (285 * scale - 200) // 2 + 1, y + h - 250 * scale + (160 * scale - 120) // 2 + 1, 200, 120)
            return shown and self.s.differing_pixels(shown, picture) == 0 and (x, y, w, h)
        found = wait_for(shows, 3.0)
        self.assertTrue(found, ("the picture one to one", self.s.geometry(wid)))
        return found


TMP = os.environ.get("E2E_DIR", "")  # a Wayland suite's folder, once it runs as its own user
EXE = f"{TMP}/Vantrel.app/Contents/MacOS/Vantrel"


def script(path, body):
    with open(path, "w") as f:
        f.write("#!/bin/sh\n" + body)
    os.chmod(path, 0o755)


def wayland_main(desktop, needs, start, names):
    """Runs the suite again (--inner) as an ordinary user (compositors refuse root) with a bus, a home and a
    copy of the bundle in TMP; there start()'s desktop writes its environment to TMP/env, then the tests run."""
    if "--inner" in sys.argv:
        daemons = start()
        try:
            if not wait_for(lambda: os.path.exists(f"{TMP}/env"), 20.0):
                sys.exit(print(f"SKIPPED: {desktop} cannot run here\n{read(f'{TMP}/desktop.log')[-2000:]}") or 77)
            os.environ.update(kv.split("=", 1) for kv in read(f"{TMP}/env").splitlines() if kv.split("=")[0] in names)
            time.sleep(0.5)
            sys.exit(0 if unittest.main(argv=sys.argv[:1], exit=False, verbosity=2).result.wasSuccessful() else 1)
        finally:
            [(d.terminate(), d.wait(5)) for d in reversed(daemons)]
    if missing := [p for p in needs if not (shutil.which(p) or os.path.exists(p))]:
        sys.exit(print(f"SKIPPED: the {desktop} road needs {', '.join(missing)}") or 77)
    user, run_as, owner = "vantrel-e2e", [], pwd.getpwuid(os.geteuid())
    if os.geteuid() == 0:
        if subprocess.run(["id", user], capture_output=True).returncode:
            subprocess.run(["useradd", "--system", "--create-home", "--home-dir", f"/var/lib/{user}", user], check=True)
        run_as, owner = ["runuser", "-u", user, "--"], pwd.getpwnam(user)
    tmp = tempfile.mkdtemp(prefix="vantrel-wayland-")
    try:
        [os.makedirs(f"{tmp}/{d}") for d in ("bin", "home")]
        os.makedirs(f"{tmp}/runtime", mode=0o700)
        [shutil.copy(f, tmp) for f in (sys.argv[0], __file__)]
        shutil.copytree(sys.argv[sys.argv.index("--bundle") + 1], f"{tmp}/Vantrel.app", symlinks=True)
        subprocess.run(["chown", "-R", "-h", f"{owner.pw_uid}:{owner.pw_gid}", tmp], check=True)
        env = {"HOME": f"{tmp}/home", "XDG_RUNTIME_DIR": f"{tmp}/runtime", "E2E_DIR": tmp, "LANG": "C.UTF-8",
               "XDG_CURRENT_DESKTOP": desktop, "PATH": f"{tmp}/bin:/usr/local/bin:/usr/bin:/bin"}
        sys.exit(subprocess.run(run_as + ["env", "-i"] + [f"{k}={v}" for k, v in env.items()] + [
            "dbus-run-session", "--", "/usr/bin/python3", f"{tmp}/{os.path.basename(sys.argv[0])}", "--inner"],
            timeout=240).returncode)
    finally:
        shutil.rmtree(tmp, ignore_errors=True)


def main():
    """Runs the calling script's tests against the bundle named by --bundle."""
    global BUNDLE
    ap = argparse.ArgumentParser()
    ap.add_argument("--bundle", required=True)
    args, rest = ap.parse_known_args()
    BUNDLE = os.path.abspath(args.bundle)
    unittest.main(module="__main__", argv=[sys.argv[0]] + rest, verbosity=2)
