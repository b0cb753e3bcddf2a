#pragma once
// The program's connection to the X server, as Qt holds it; null where the program is no X11
// client (offscreen, native Wayland).

#include <QtGlobal>

struct xcb_connection_t;

namespace fw {

xcb_connection_t *x11Connection();
// The root window of the first screen; 0 without X11.
quint32 x11RootWindow();
// An atom by name (XCB_ATOM_NONE when it can't be had).
quint32 x11Atom(xcb_connection_t *connection, const char *name);

} // namespace fw
