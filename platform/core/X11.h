#pragma once
// The X11 connection and window properties, for the few things Qt does not say about windows
// and monitors. Every function gives nothing where the program is not an X11 client.

#include <QList>
#include <xcb/xcb.h>

namespace fw::x11 {

xcb_connection_t *connection();
xcb_window_t root(xcb_connection_t *c);
// Interned once per name: an atom stands for the server's life, for every connection to it.
xcb_atom_t atom(xcb_connection_t *c, const char *name);
// A property of 32-bit items, at most max of them.
QList<quint32> cardinals(xcb_connection_t *c, xcb_window_t w, const char *property, xcb_atom_t type,
                         quint32 max);
// The same in two steps, so that many requests are answered in one wait.
xcb_get_property_cookie_t askCardinals(xcb_connection_t *c, xcb_window_t w, const char *property,
                                       xcb_atom_t type, quint32 max);
QList<quint32> cardinals(xcb_connection_t *c, xcb_get_property_cookie_t asked);

} // namespace fw::x11
