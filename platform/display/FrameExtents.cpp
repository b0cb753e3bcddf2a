#include "platform/display/FrameExtents.h"

#include "platform/core/X11.h"

#include <QElapsedTimer>
#include <QThread>
#include <cmath>

namespace fw {

// The window's _NET_FRAME_EXTENTS (left, right, top, bottom) in device pixels, if set.
static bool readExtents(xcb_connection_t *c, xcb_window_t w, QMargins *out)
{
    const QList<quint32> v = x11::cardinals(c, w, "_NET_FRAME_EXTENTS", XCB_ATOM_CARDINAL, 4);
    if (v.size() == 4) *out = QMargins(int(v[0]), int(v[2]), int(v[1]), int(v[3]));
    return v.size() == 4;
}

QMargins frameExtentsInPixels(QWidget *window)
{
    xcb_connection_t *c = x11::connection();
    QMargins m;
    if (c && window) readExtents(c, xcb_window_t(window->winId()), &m);
    return m;
}

QMargins frameExtentsBeforeShowing(QWidget *window, bool ask)
{
    xcb_connection_t *c = x11::connection();
    if (!c || !window) return {};
    const auto w = xcb_window_t(window->winId());
    // The window manager counts device pixels; in the window's units, rounded up.
    const qreal ratio = window->devicePixelRatioF();
    const auto units = [ratio](const QMargins &m) {
        const auto u = [ratio](int px) { return int(std::ceil(px / ratio)); };
        return QMargins(u(m.left()), u(m.top()), u(m.right()), u(m.bottom()));
    };
    QMargins m;
    // Set by the window manager once it has managed the window, and kept while it is hidden.
    if (readExtents(c, w, &m) || !ask) return units(m);
    xcb_client_message_event_t ev = {};
    ev.response_type = XCB_CLIENT_MESSAGE;
    ev.format = 32;
    ev.window = w;
    ev.type = x11::atom(c, "_NET_REQUEST_FRAME_EXTENTS");
    xcb_send_event(c, 0, x11::root(c),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&ev));
    xcb_flush(c);
    // A window manager answers at once; without one nobody does.
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 300) {
        if (readExtents(c, w, &m)) return units(m);
        QThread::msleep(5);
    }
    return {};
}

} // namespace fw
