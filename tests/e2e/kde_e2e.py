"""Headless kwin_wayland (with kglobalaccel) and XWayland, xdg-desktop-portal and its KDE backend: the key
registered as component `vantrel` runs the capture helper (a stand-in: KDE's Screenshot needs
OpenGL), and so it does after the portal's backend, then the portal, are killed."""

import os
import shutil
import signal
import subprocess
import unittest

from harness import EXE, TMP, read, script, wait_for, wayland_main


def gdbus(method, *args, dest="org.kde.kglobalaccel", path="/component/vantrel", iface="org.kde.kglobalaccel.Component"):
    return subprocess.run(["gdbus", "call", "--session", "-d", dest, "-o", path, "-m", f"{iface}.{method}", *args],
                          capture_output=True, text=True, timeout=10).stdout


class KdeTest(unittest.TestCase):
    def test_the_key_fires_the_capture_and_survives_portal_restarts(self):
        vantrel = subprocess.Popen([EXE], env=dict(os.environ, XDG_SESSION_TYPE="wayland"), stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (vantrel.kill(), vantrel.wait()))
        self.assertTrue(wait_for(lambda: "67108928" in gdbus("allShortcutInfos"), 10.0), "as Ctrl+@ (Shift+2, US)")
        for n, killed in enumerate((None, "org.freedesktop.impl.portal.desktop.kde", "org.freedesktop.portal.Desktop"), 1):
            if killed:  # as a crash would
                pid = gdbus("GetConnectionUnixProcessID", killed, dest="org.freedesktop.DBus", path="/", iface="org.freedesktop.DBus")
                os.kill(int(pid.split()[1].rstrip(",)")), signal.SIGKILL)
            # The session is open (again) once the backend is asked for its shortcuts.
            self.assertTrue(wait_for(lambda: read(f"{TMP}/bus").count("member=ListShortcuts") == n, 10.0), f"after {killed}")
            gdbus("invokeShortcut", "capture")
            self.assertTrue(wait_for(lambda: read(f"{TMP}/calls").count("-ci") == n, 5.0), f"the key fires after {killed}")


def start():
    script(f"{TMP}/bin/screencapture", f'echo "$@" >> "{TMP}/calls"\n')
    open(f"{TMP}/calls", "w").close()
    # A plain copy: the package's file capability (cap_sys_resource) may be refused at exec.
    shutil.copy("/usr/bin/kwin_wayland", f"{TMP}/bin/kwin_wayland")
    log = open(f"{TMP}/desktop.log", "w")
    return [subprocess.Popen(["dbus-monitor", "interface=org.freedesktop.impl.portal.GlobalShortcuts"],
                             stdout=open(f"{TMP}/bus", "w"), stderr=log),
            subprocess.Popen([f"{TMP}/bin/kwin_wayland", "--virtual", "--xwayland", "--no-lockscreen", "--socket",
                              "vantrel-kde", "sh -c 'dbus-update-activation-environment WAYLAND_DISPLAY DISPLAY && "
                              f"env > {TMP}/env.tmp && mv {TMP}/env.tmp {TMP}/env'"],
                             stdout=log, stderr=log, env=dict(os.environ, KWIN_COMPOSE="Q"))]


if __name__ == "__main__":
    wayland_main("KDE", ("kwin_wayland", "Xwayland", "gdbus", "dbus-monitor", "/usr/libexec/xdg-desktop-portal",
                         "/usr/lib/x86_64-linux-gnu/libexec/xdg-desktop-portal-kde"), start, ("DISPLAY", "WAYLAND_DISPLAY"))
