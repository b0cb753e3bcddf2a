#include "platform/display/FrameExtents.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QThread>
#include <QtGui/qguiapplication_platform.h>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace fw {

static xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    xcb_intern_atom_reply_t *r =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, quint16(std::strlen(name)), name), nullptr);
    const xcb_atom_t a = r ? r->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(r);
    return a;
}

// The window's _NET_FRAME_EXTENTS (left, right, top, bottom), if set.
static bool readExtents(xcb_connection_t *c, xcb_window_t w, xcb_atom_t extents, qreal ratio,
                        QMargins *out)
{
    xcb_get_property_reply_t *r = xcb_get_property_reply(
        c, xcb_get_property(c, 0, w, extents, XCB_ATOM_CARDINAL, 0, 4), nullptr);
    const bool ok = r && r->format == 32 && xcb_get_property_value_length(r) == 16;
    if (ok) {
        const auto *v = static_cast<const quint32 *>(xcb_get_property_value(r));
        // The window manager counts device pixels; in the window's units, rounded up.
        const auto units = [ratio](quint32 px) { return int(std::ceil(px / ratio)); };
        *out = QMargins(units(v[0]), units(v[2]), units(v[1]), units(v[3]));
    }
    std::free(r);
    return ok;
}

QMargins frameExtentsBeforeShowing(QWidget *window, bool ask)
{
    auto *x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *c = x11 ? x11->connection() : nullptr;
    if (!c || !window) return {};
    const auto w = xcb_window_t(window->winId());
    const xcb_atom_t extents = atom(c, "_NET_FRAME_EXTENTS");
    QMargins m;
    // Set by the window manager once it has managed the window, and kept while it is hidden.
    if (readExtents(c, w, extents, window->devicePixelRatioF(), &m) || !ask) return m;
    xcb_client_message_event_t ev = {};
    ev.response_type = XCB_CLIENT_MESSAGE;
    ev.format = 32;
    ev.window = w;
    ev.type = atom(c, "_NET_REQUEST_FRAME_EXTENTS");
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    xcb_send_event(c, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&ev));
    xcb_flush(c);
    // A window manager answers at once; without one nobody does.
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 300) {
        if (readExtents(c, w, extents, window->devicePixelRatioF(), &m)) return m;
        QThread::msleep(5);
    }
    return {};
}

} // namespace fw
