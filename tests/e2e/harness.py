"""End-to-end harness: a private Xvfb, a temporary HOME and XDG folders, fake external
commands on PATH, and helpers to look at and drive the real X windows of the built bundle."""

import argparse
import ctypes
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

DEVNULL = subprocess.DEVNULL


class Xvfb:
    def __init__(self, width=1280, height=1024):
        self.width, self.height = width, height
        r, w = os.pipe()
        self.proc = subprocess.Popen(
            ["Xvfb", "-displayfd", str(w), "-screen", "0", f"{width}x{height}x24",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=(w,), stdout=DEVNULL, stderr=DEVNULL)
        os.close(w)
        num = b""
        while not num.endswith(b"\n"):
            chunk = os.read(r, 16)
            if not chunk:
                raise RuntimeError("Xvfb did not start")
            num += chunk
        os.close(r)
        self.name = ":" + num.decode().strip()

    def close(self):
        self.proc.terminate()
        try:
            self.proc.wait(5)
        except subprocess.TimeoutExpired:
            self.proc.kill()


class Session:
    """One run of the program with its own home and display."""

    def __init__(self, bundle, xvfb):
        self.bundle = bundle
        self.xvfb = xvfb
        self.tmp = tempfile.mkdtemp(prefix="vantrel-e2e-")
        self.home = os.path.join(self.tmp, "home")
        self.bin = os.path.join(self.tmp, "bin")
        self.config = os.path.join(self.home, ".config")
        runtime = os.path.join(self.tmp, "runtime")
        for d in (self.home, self.bin, self.config, runtime):
            os.makedirs(d, exist_ok=True)
        os.chmod(runtime, 0o700)
        keep = {k: v for k, v in os.environ.items() if k in ("LANG", "LC_ALL", "TERM")}
        self.env = dict(keep,
                        HOME=self.home, DISPLAY=xvfb.name, XDG_CONFIG_HOME=self.config,
                        XDG_DATA_HOME=os.path.join(self.home, ".local/share"),
                        XDG_CACHE_HOME=os.path.join(self.home, ".cache"),
                        XDG_RUNTIME_DIR=runtime,
                        # No session bus unless a test brings one: never autolaunch a daemon.
                        DBUS_SESSION_BUS_ADDRESS="unix:path=" + os.path.join(runtime, "no-bus"),
                        PATH=self.bin + ":/usr/local/bin:/usr/bin:/bin")
        self.proc = None
        self.log = os.path.join(self.tmp, "vantrel.log")

    # --- fakes -----------------------------------------------------------------------------
    def fake_capture(self, script_body):
        """Installs a `screencapture` that runs the given shell body and records its argv."""
        path = os.path.join(self.bin, "screencapture")
        with open(path, "w") as f:
            f.write("#!/bin/sh\n")
            f.write(f'echo "$@" >> "{self.tmp}/capture-calls"\n')
            f.write(script_body + "\n")
        os.chmod(path, 0o755)

    def capture_puts(self, file, mime="image/png"):
        self.fake_capture(f"xclip -selection clipboard -t {mime} -i '{file}' "
                          "</dev/null >/dev/null 2>&1")

    def capture_calls(self):
        try:
            with open(os.path.join(self.tmp, "capture-calls")) as f:
                return f.read().split("\n")[:-1]
        except FileNotFoundError:
            return []

    # --- the program -----------------------------------------------------------------------
    def start(self, wait_splash=True, exe=None):
        exe = exe or os.path.join(self.bundle, "Contents", "MacOS", "Vantrel")
        self.logf = open(self.log, "w")
        self.proc = subprocess.Popen([exe], env=self.env, stdout=self.logf, cwd=self.home,
                                     stderr=subprocess.STDOUT, stdin=DEVNULL)
        if not wait_splash:
            return self.proc
        time.sleep(0.5)
        # Start-up ends when the splash has gone.
        wait_for(lambda: not [w for w in self.windows(name=".*") if self.role(w) == "splash"], 4.0)
        time.sleep(0.2)
        return self.proc

    def capture_until_editor(self, tries=3, wait=1.5):
        """Presses the hot key until the editor is mapped (a loaded machine may start slowly)."""
        for _ in range(tries):
            self.key("ctrl+shift+2")
            editors = wait_for(self.editor_windows, timeout=wait)
            if editors:
                return editors
        return []

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
        if getattr(self, "logf", None):
            self.logf.close()

    def cleanup(self):
        self.stop()
        shutil.rmtree(self.tmp, ignore_errors=True)

    # --- X helpers -------------------------------------------------------------------------
    def run(self, *argv, check=True):
        return subprocess.run(list(argv), env=self.env, check=check, capture_output=True,
                              text=True, timeout=60)

    def key(self, *keys):
        self.run("xdotool", "key", *keys)

    def pointer(self, x, y):
        self.run("xdotool", "mousemove", str(x), str(y))

    def click(self, x, y, button=1):
        self.run("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def windows(self, name="^Vantrel$", visible=True):
        argv = ["xdotool", "search"] + (["--onlyvisible"] if visible else []) + ["--name", name]
        out = self.run(*argv, check=False).stdout.split()
        return [int(w) for w in out]

    def role(self, wid):
        out = self.run("xprop", "-id", str(wid), "WM_WINDOW_ROLE", check=False).stdout
        return out.split('"')[1] if '"' in out else ""

    def editor_windows(self, visible=True):
        return [w for w in self.windows(visible=visible) if self.role(w) == "editor"]

    def mapped(self, wid):
        out = self.run("xwininfo", "-id", str(wid), check=False).stdout
        return "IsViewable" in out

    def frame_extents(self, wid):
        """The window manager's frame around a window: left, right, top, bottom."""
        out = self.run("xprop", "-id", str(wid), "_NET_FRAME_EXTENTS", check=False).stdout
        return [int(v) for v in out.split("=")[1].split(",")] if "=" in out else [0, 0, 0, 0]

    def geometry(self, wid):
        out = self.run("xwininfo", "-id", str(wid)).stdout
        vals = {}
        for line in out.splitlines():
            line = line.strip()
            for key in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"):
                if line.startswith(key + ":"):
                    vals[key] = int(line.split(":")[1])
        return (vals["Absolute upper-left X"], vals["Absolute upper-left Y"],
                vals["Width"], vals["Height"])

    def screenshot(self, path):
        self.run("import", "-silent", "-window", "root", path)
        return path

    def differing_pixels(self, a, b):
        """Number of pixels that differ between two pictures of one size."""
        r = self.run("compare", "-metric", "AE", a, b, "null:", check=False)
        return int(float(r.stderr.split()[0]))

    def crop(self, src, dst, x, y, w, h):
        self.run("convert", src, "-crop", f"{w}x{h}+{x}+{y}", "+repage", dst)
        return dst

    def close_box(self, wid):
        """What a window manager does for a click on the close box: WM_DELETE_WINDOW."""
        x = ctypes.CDLL("libX11.so.6")
        x.XOpenDisplay.restype = ctypes.c_void_p
        x.XOpenDisplay.argtypes = [ctypes.c_char_p]
        x.XInternAtom.restype = ctypes.c_ulong
        x.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
        x.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long,
                                 ctypes.c_void_p]
        x.XFlush.argtypes = [ctypes.c_void_p]
        x.XCloseDisplay.argtypes = [ctypes.c_void_p]

        class ClientMessage(ctypes.Structure):
            _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong),
                        ("send_event", ctypes.c_int), ("display", ctypes.c_void_p),
                        ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                        ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]

        class Event(ctypes.Union):
            _fields_ = [("xclient", ClientMessage), ("pad", ctypes.c_long * 24)]

        dpy = x.XOpenDisplay(self.xvfb.name.encode())
        ev = Event()
        ev.xclient.type = 33  # ClientMessage
        ev.xclient.window = wid
        ev.xclient.message_type = x.XInternAtom(dpy, b"WM_PROTOCOLS", 0)
        ev.xclient.format = 32
        ev.xclient.data[0] = x.XInternAtom(dpy, b"WM_DELETE_WINDOW", 0)
        ev.xclient.data[1] = 0
        x.XSendEvent(dpy, wid, 0, 0, ctypes.byref(ev))
        x.XFlush(dpy)
        x.XCloseDisplay(dpy)


def wait_for(predicate, timeout=5.0, step=0.05):
    """Polls until predicate() is truthy; returns its last value."""
    end = time.monotonic() + timeout
    value = predicate()
    while not value and time.monotonic() < end:
        time.sleep(step)
        value = predicate()
    return value


def load_image_geometry(pic_w, pic_h, screen_w, screen_h):
    """The editor's content area for a picture at 100 % on a screen with no panels."""
    height = int(max(min(screen_h - 100, pic_h + 91), 250.0))
    width = int(max(min(screen_w, pic_w + 16), 300.0))
    left = int(max((screen_w - width) / 2.0, 0))
    top = int(max((screen_h - height) / 2.0, 100.0))
    return left, top, width, height


def expected_content_origin(session, wid, pic_w, pic_h, screen_w=1280, screen_h=1024, panel=0):
    """Where the editor's content must stand for a picture too small to reach the caps: the
    formulas see the work area less the window's bars and frame (none on a bare server)."""
    x, y, w, h = session.geometry(wid)
    left, right, top, bottom = session.frame_extents(wid)
    bars = h - max(pic_h + 91, 250)
    cx, cy, _, _ = load_image_geometry(pic_w, pic_h, screen_w - left - right,
                                       screen_h - panel - bars - top - bottom)
    return left + cx, panel + top + bars + cy


class A11y:
    """The program's widgets through AT-SPI. Needs the test and the program on one session bus
    (run the test inside dbus-run-session) and Debian's python3 with pyatspi."""

    def __init__(self, session):
        import pyatspi  # noqa: F401  (Debian's python3-pyatspi)
        self.pyatspi = pyatspi
        session.env.update(DBUS_SESSION_BUS_ADDRESS=os.environ.get("DBUS_SESSION_BUS_ADDRESS", ""),
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", GSETTINGS_BACKEND="memory")
        pyatspi.Registry.getDesktop(0)  # starts the registry before the program looks for it

    def app(self):
        for a in self.pyatspi.Registry.getDesktop(0):
            if a is not None and a.name == "Vantrel":
                try:
                    a.clearCache()  # a tree read before the program finished building it
                except Exception:
                    pass
                return a
        return None

    def find(self, role, name, root=None):
        root = root or self.app()
        if root is None:
            return None
        stack = [root]
        while stack:
            n = stack.pop()
            try:
                if n.getRoleName() == role and n.name == name:
                    return n
                count = n.childCount
            except Exception:  # a node that went away while walking
                continue
            for i in range(count):
                try:
                    c = n.getChildAtIndex(i)
                except Exception:
                    continue
                if c is not None:
                    stack.append(c)
        return None

    def wait_find(self, role, name, timeout=3.0, visible=True):
        def look():
            n = self.find(role, name)
            return n if n is not None and (not visible or self.extents(n)[2] > 0) else None
        return wait_for(look, timeout)

    def extents(self, node):
        e = node.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
        return e.x, e.y, e.width, e.height

    def centre(self, node):
        x, y, w, h = self.extents(node)
        return x + w // 2, y + h // 2

    def text(self, node):
        t = node.queryText()
        return t.getText(0, t.characterCount)

    def value(self, node):
        return node.queryValue().currentValue


def rgb_pixels(session, path):
    """The picture's pixels as rows of (r, g, b)."""
    size = session.run("identify", "-format", "%w %h", path).stdout.split()
    w, h = int(size[0]), int(size[1])
    raw = subprocess.run(["convert", path, "-depth", "8", "rgb:-"], env=session.env,
                         capture_output=True, check=True).stdout
    return [[tuple(raw[(y * w + x) * 3:(y * w + x) * 3 + 3]) for x in range(w)] for y in range(h)]


BUNDLE = None  # the bundle under test, from --bundle


class Desktop:
    """A window manager (openbox) on the session's display, and a compositor if asked."""

    def __init__(self, session, compositor=False, top_panel=0):
        argv = ["openbox", "--sm-disable"]
        if top_panel:
            # Space kept free at the top of the screen, as a panel keeps it.
            rc = os.path.join(session.tmp, "openbox-rc.xml")
            with open(rc, "w") as f:
                f.write('<openbox_config xmlns="http://openbox.org/3.4/rc"><margins>'
                        f'<top>{top_panel}</top></margins></openbox_config>')
            argv += ["--config-file", rc]
        self.procs = [subprocess.Popen(argv, env=session.env, stdout=DEVNULL, stderr=DEVNULL)]
        wait_for(lambda: "_NET_SUPPORTING_WM_CHECK(WINDOW)" in session.run(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False).stdout, 5.0)
        if compositor:
            self.procs.append(subprocess.Popen(["xcompmgr"], env=session.env,
                                               stdout=DEVNULL, stderr=DEVNULL))
            time.sleep(0.3)

    def close(self):
        for p in reversed(self.procs):
            p.terminate()
            try:
                p.wait(5)
            except subprocess.TimeoutExpired:
                p.kill()


class E2ETestCase(unittest.TestCase):
    """A test with a display and a session of its own. Subclasses that read widgets through
    AT-SPI set `accessible` (and run inside dbus-run-session); those that need a desktop set
    `window_manager` (openbox) and `compositor` (xcompmgr)."""

    accessible = False
    window_manager = True
    compositor = False
    top_panel = 0

    def setUp(self):
        # A display of its own per test: a clipboard owner left by one test must not feed the next.
        self.xvfb = Xvfb(1280, 1024)
        self.s = Session(BUNDLE, self.xvfb)
        self.wm = Desktop(self.s, self.compositor, self.top_panel) if self.window_manager else None
        self.a11y = A11y(self.s) if self.accessible else None

    def tearDown(self):
        self.s.cleanup()
        if self.wm:
            self.wm.close()
        self.xvfb.close()


def main():
    """Runs the calling script's tests against the bundle named by --bundle."""
    global BUNDLE
    ap = argparse.ArgumentParser()
    ap.add_argument("--bundle", required=True)
    args, rest = ap.parse_known_args()
    BUNDLE = os.path.abspath(args.bundle)
    unittest.main(module="__main__", argv=[sys.argv[0]] + rest, verbosity=2)
