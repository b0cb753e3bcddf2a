"""A desktop's portal backend for tests, as a python-dbusmock template: GlobalShortcuts that
keeps what a session asked for, Screenshot that hands back a picture (or a cancel) named in
files of the test's folder, and an Access that allows. Loaded with
  python3 -m dbusmock --template portal_mock.py -p '{"folder": DIR}'"""

import dbus

BUS_NAME = "org.freedesktop.impl.portal.Test"
MAIN_OBJ = "/org/freedesktop/portal/desktop"
MAIN_IFACE = "org.freedesktop.impl.portal.GlobalShortcuts"
SYSTEM_BUS = False


def load(mock, parameters):
    folder = parameters["folder"]
    mock.bound = {}
    mock.AddMethods(MAIN_IFACE, [
        ("CreateSession", "oosa{sv}", "ua{sv}",
         "self.bound[args[1]] = args[3].get('shortcuts', []); ret = (dbus.UInt32(0), {})"),
        ("ListShortcuts", "oo", "ua{sv}",
         "ret = (dbus.UInt32(0), {'shortcuts': dbus.Array(self.bound.get(args[1], []), signature='(sa{sv})')})"),
        ("BindShortcuts", "ooa(sa{sv})sa{sv}", "ua{sv}",
         "self.bound[args[1]] = args[2]; ret = (dbus.UInt32(0), {})"),
    ])
    mock.AddProperty(MAIN_IFACE, "version", dbus.UInt32(1))
    mock.AddMethods("org.freedesktop.impl.portal.Screenshot", [
        ("Screenshot", "ossa{sv}", "ua{sv}",
         f"code = int(open('{folder}/response').read()); "
         f"ret = (dbus.UInt32(code), {{'uri': 'file://{folder}/shot.png'}} if code == 0 else {{}})"),
    ])
    mock.AddProperty("org.freedesktop.impl.portal.Screenshot", "version", dbus.UInt32(1))
    mock.AddMethods("org.freedesktop.impl.portal.Access", [
        ("AccessDialog", "osssssa{sv}", "ua{sv}", "ret = (dbus.UInt32(0), {})"),
    ])
