#include "platform/display/FrameExtents.h"

#include "platform/core/X11Connection.h"

#include <QElapsedTimer>
#include <QThread>
#include <cstdlib>
#include <xcb/xcb.h>

namespace fw {

// The window's _NET_FRAME_EXTENTS (left, right, top, bottom), if set.
static bool readExtents(xcb_connection_t *c, xcb_window_t w, xcb_atom_t extents, QMargins *out)
{
    xcb_get_property_reply_t *r = xcb_get_property_reply(
        c, xcb_get_property(c, 0, w, extents, XCB_ATOM_CARDINAL, 0, 4), nullptr);
    const bool ok = r && r->format == 32 && xcb_get_property_value_length(r) == 16;
    if (ok) {
        const auto *v = static_cast<const quint32 *>(xcb_get_property_value(r));
        *out = QMargins(int(v[0]), int(v[2]), int(v[1]), int(v[3]));
    }
    std::free(r);
    return ok;
}

QMargins frameExtentsBeforeShowing(QWidget *window, bool ask)
{
    xcb_connection_t *c = x11Connection();
    if (!c || !window) return {};
    const auto w = xcb_window_t(window->winId());
    const xcb_atom_t extents = x11Atom(c, "_NET_FRAME_EXTENTS");
    QMargins m;
    // Set by the window manager once it has managed the window, and kept while it is hidden.
    if (readExtents(c, w, extents, &m) || !ask) return m;
    xcb_client_message_event_t ev = {};
    ev.response_type = XCB_CLIENT_MESSAGE;
    ev.format = 32;
    ev.window = w;
    ev.type = x11Atom(c, "_NET_REQUEST_FRAME_EXTENTS");
    const xcb_window_t root = x11RootWindow();
    xcb_send_event(c, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&ev));
    xcb_flush(c);
    // A window manager answers at once; without one nobody does.
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 300) {
        if (readExtents(c, w, extents, &m)) return m;
        QThread::msleep(5);
    }
    return {};
}

} // namespace fw
