#!/usr/bin/python3
"""The figures a user waits for on a real X server: a private 1920x1080 Xvfb under openbox, the
program from the bundle with the real slop, maim and xclip, xdotool for the hand, and
vantrel_xprobe watching the screen and making the timed input itself (the hot key, the button's
release). Beside each figure the same one for a Flameshot daemon started in the same run, where
one is installed. Medians of interleaved runs, ms.

    bench/x11_bench.py [--build build] [--program other-build] [--runs 9]
--program: the build whose bundle is measured (default: --build, which holds vantrel_xprobe).
"""

import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

DEVNULL = subprocess.DEVNULL
W, H = 1920, 1080
DRAG = (0, 0, 800, 600)  # the 800x600 selection, away from the screen's centre
MARK = "ff00ff"  # a block in the middle of the selection, seen once the picture is drawn


class Session:
    def __init__(self, build, program):
        self.build, self.program = build, program
        self.tmp = tempfile.mkdtemp(prefix="vantrel-bench-")
        home, runtime = os.path.join(self.tmp, "home"), os.path.join(self.tmp, "runtime")
        for d in (home, runtime):
            os.makedirs(d, mode=0o700)
        r, w = os.pipe()
        self.procs = [subprocess.Popen(["Xvfb", "-displayfd", str(w), "-screen", "0", f"{W}x{H}x24", "-nolisten",
                                        "tcp", "-noreset"], pass_fds=(w,), stdout=DEVNULL, stderr=DEVNULL)]
        os.close(w)
        with os.fdopen(r) as f:
            display = f.readline().strip() or sys.exit("Xvfb did not start")
        self.env = dict(LANG="C.UTF-8", HOME=home, DISPLAY=":" + display, XDG_RUNTIME_DIR=runtime,
                        XDG_CONFIG_HOME=os.path.join(home, ".config"), XDG_CACHE_HOME=os.path.join(home, ".cache"),
                        XDG_DATA_HOME=os.path.join(home, ".local/share"), PATH="/usr/local/bin:/usr/bin:/bin")
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], env=self.env,
                               stdout=subprocess.PIPE, stderr=DEVNULL, text=True)
        self.procs.append(bus)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        rc = os.path.join(self.tmp, "openbox.xml")  # no key bindings of its own: the hot key stays free
        with open(rc, "w") as f:
            f.write('<openbox_config xmlns="http://openbox.org/3.4/rc"></openbox_config>')
        self.daemon("openbox", "--sm-disable", "--config-file", rc)
        time.sleep(1.0)
        self.desktop()

    def daemon(self, *argv):
        self.procs.append(subprocess.Popen(list(argv), env=self.env, stdout=DEVNULL, stderr=DEVNULL))
        return self.procs[-1]

    def run(self, *argv):
        return subprocess.run(list(argv), env=self.env, capture_output=True, text=True, timeout=60)

    def desktop(self):
        """A desktop-like background (gradients, text, flat areas) with the mark in the selection."""
        path = os.path.join(self.tmp, "desktop.png")
        x0, y0, w, h = DRAG
        subprocess.run(["convert", "-size", f"{W}x{H}", "gradient:#1e3c78-#dcc8a0", "-fill", "black",
                        "-pointsize", "14", "-annotate", "+10+20",
                        "\n".join(f"Window title {i} - the quick brown fox jumps over the lazy dog" for i in range(60)),
                        "-fill", "#" + MARK, "-draw",
                        f"rectangle {x0 + w // 2 - 100},{y0 + h // 2 - 100} {x0 + w // 2 + 100},{y0 + h // 2 + 100}",
                        path], check=True)
        self.daemon("display", "-window", "root", path)
        time.sleep(1.5)

    def close(self):
        for p in reversed(self.procs):
            p.terminate()
            try:
                p.wait(5)
            except subprocess.TimeoutExpired:
                p.kill()
        shutil.rmtree(self.tmp, ignore_errors=True)

    def probe(self, *args):
        p = subprocess.Popen([os.path.join(self.build, "bench", "vantrel_xprobe"), *args], env=self.env,
                             stdout=subprocess.PIPE, text=True)
        assert p.stdout.readline().strip() == "ready"
        return p

    def xdo(self, *args):
        subprocess.run(["xdotool", *args], env=self.env, check=True)


def waited(probe, t0=0.0):
    """The probe's answer less t0 (s); with no t0 the probe timed from the input it made."""
    out = probe.stdout.readline().strip()
    probe.wait()
    return float(out) - t0 * 1000 if out not in ("", "timeout") else float("nan")


def released(s, probe):
    """The drag's end made by the probe, timed from the button's release itself."""
    return waited(s.probe(*probe, "then", "release"))


def drag(s, region):
    """A hand's drag up to the release: the overlay takes the pointer shortly after it maps."""
    x, y, w, h = region
    time.sleep(0.8)
    s.xdo("mousemove", str(x), str(y), "sleep", "0.1", "mousedown", "1", "sleep", "0.1", "mousemove",
          str(x + w // 2), str(y + h // 2), "sleep", "0.1", "mousemove", str(x + w - 1), str(y + h - 1))
    time.sleep(0.3)


def memory(pid):
    """Resident memory of a process and the part of it that is its own and written (heap, stacks,
    relocated data), MiB."""
    with open(f"/proc/{pid}/status") as f:
        rss = next(int(line.split()[1]) for line in f if line.startswith("VmRSS:"))
    with open(f"/proc/{pid}/smaps_rollup") as f:
        private = sum(int(line.split()[1]) for line in f if line.startswith("Private_Dirty:"))
    return rss / 1024, private / 1024


class Vantrel:
    name = "Vantrel"

    def __init__(self, s):
        self.s = s
        bundle = os.path.join(s.program, "Vantrel.app", "Contents", "MacOS", "Vantrel")
        # No session bus, as the end-to-end tests run it: the X11 key grab, not a desktop portal's.
        env = dict(s.env, DBUS_SESSION_BUS_ADDRESS="unix:path=" + os.path.join(s.tmp, "no-bus"))
        self.proc = subprocess.Popen([bundle], env=env, stdout=DEVNULL, stderr=open("/tmp/vantrel-bench.log", "w") if os.environ.get("VLOG") else DEVNULL, cwd=s.env["HOME"])
        time.sleep(4.0)  # start-up and the splash over

    def overlay(self):
        return waited(self.s.probe("map", "then", "hotkey"))

    def drawn(self, region=DRAG, probe=("pixel", str(W // 2), str(H // 2), MARK)):
        drag(self.s, region)
        return released(self.s, probe)

    def close_window(self):
        # The close box, as the window manager does it; a key would need the window focused.
        time.sleep(0.3)
        self.s.run("wmctrl", "-F", "-c", "Vantrel")
        time.sleep(0.4)

    def editor_shown(self):
        return "Vantrel" in self.s.run("wmctrl", "-l").stdout

    def capture_closed(self, region):
        self.overlay()
        self.drawn(region, ("map",))
        self.close_window()

    def pid(self):
        return self.proc.pid

    def stop(self):
        self.proc.kill()
        self.proc.wait()


class Flameshot:
    name = "Flameshot"

    def __init__(self, s):
        self.s = s
        self.proc = s.daemon("flameshot")
        time.sleep(3.0)

    def overlay(self):
        p = self.s.probe("map")
        t0 = time.monotonic()
        self.gui = self.s.daemon("flameshot", "gui", "-s", "--pin")
        return waited(p, t0)

    def drawn(self, region=DRAG, probe=("map",)):
        drag(self.s, region)
        return released(self.s, probe)

    def close_window(self):
        # A pinned window closes on Escape with the pointer over it.
        time.sleep(0.3)
        self.s.xdo("mousemove", "400", "300", "key", "Escape")
        time.sleep(0.4)

    def capture_closed(self, region):
        self.overlay()
        self.drawn(region)
        self.close_window()

    def pid(self):
        return self.proc.pid

    def stop(self):
        self.proc.terminate()
        self.proc.wait()


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--build", default=os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "build"))
    ap.add_argument("--program")
    ap.add_argument("--runs", type=int, default=9)
    ap.add_argument("--no-peer", action="store_true")
    args = ap.parse_args()
    s = Session(os.path.abspath(args.build), os.path.abspath(args.program or args.build))
    try:
        programs = [Vantrel(s)]
        if shutil.which("flameshot") and not args.no_peer:
            programs.append(Flameshot(s))
        rows = {}
        for p in programs:
            rows[(p.name, "idle")] = memory(p.pid())
        figures = {p.name: {"overlay": [], "drawn": []} for p in programs}
        for _ in range(args.runs):  # interleaved, so that a slow moment of the machine hits both
            for p in programs:
                figures[p.name]["overlay"].append(p.overlay())
                figures[p.name]["drawn"].append(p.drawn())
                p.close_window()
        for p in programs:
            for _ in range(10):
                p.capture_closed((0, 0, W, H))
            time.sleep(1.0)
            if isinstance(p, Vantrel):
                assert not p.editor_shown(), "the editor was closed"
            rows[(p.name, "closed")] = memory(p.pid())
            p.overlay()
            p.drawn((0, 0, W, H), ("map",))
            time.sleep(1.0)
            if isinstance(p, Vantrel):
                assert p.editor_shown(), "the editor is open"
            rows[(p.name, "open")] = memory(p.pid())
            p.close_window()
        print(f"{'figure':58} " + " ".join(f"{p.name:>16}" for p in programs))
        labels = {"overlay": "hot key -> selection overlay mapped (ms)",
                  "drawn": "end of 800x600 selection -> window drawn (ms)"}
        for k, label in labels.items():
            print(f"{label:58} " + " ".join(f"{statistics.median(figures[p.name][k]):16.1f}" for p in programs))
        for k, label in (("idle", "resident idle, RSS / private dirty (MiB)"),
                         ("closed", "after 10 captures of 1920x1080, window closed"),
                         ("open", "after 10 captures of 1920x1080, window open")):
            print(f"{label:58} " + " ".join(f"{'%.1f / %.1f' % rows[(p.name, k)]:>16}" for p in programs))
        print("Times from the input itself, made by the probe (no xdotool start-up in them).")
        if "Flameshot" in figures:
            print("Flameshot: the overlay from `flameshot gui` started, as a desktop's key binding does;")
            print("its window: its pinned window mapped (drawn follows within a frame).")
        for p in programs:
            p.stop()
        # The slider step on this server, the paint and its transfer included.
        print()
        print(subprocess.run([os.path.join(s.build, "bench", "vantrel_bench"), "--x11"], env=s.env,
                             capture_output=True, text=True, timeout=600).stdout)
    finally:
        s.close()


if __name__ == "__main__":
    main()
