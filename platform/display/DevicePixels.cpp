#include "platform/display/DevicePixels.h"

#include "platform/core/X11.h"
#include "platform/display/FrameExtents.h"

#include <cstdlib>

namespace fw {

namespace {

// The window (its content, without the frame) in the root's pixels.
bool geometryOf(xcb_connection_t *c, QWidget *window, QRect *at)
{
    const auto w = xcb_window_t(window->winId());
    // Both asked before either answer is awaited: one wait, not two.
    const auto where = xcb_translate_coordinates(c, w, x11::root(c), 0, 0);
    const auto size = xcb_get_geometry(c, w);
    xcb_translate_coordinates_reply_t *r = xcb_translate_coordinates_reply(c, where, nullptr);
    xcb_get_geometry_reply_t *g = xcb_get_geometry_reply(c, size, nullptr);
    const bool ok = r && g;
    if (ok) *at = QRect(r->dst_x, r->dst_y, g->width, g->height);
    std::free(r);
    std::free(g);
    return ok;
}

// Where the pointer is, in the root's pixels: Qt's events give it in whole units.
bool pointerAt(xcb_connection_t *c, QPoint *at)
{
    xcb_query_pointer_reply_t *r =
        xcb_query_pointer_reply(c, xcb_query_pointer(c, x11::root(c)), nullptr);
    if (r) *at = QPoint(r->root_x, r->root_y);
    std::free(r);
    return r;
}

bool moveTo(xcb_connection_t *c, QWidget *window, QPoint at)
{
    // Qt's windows ask for static gravity: the window itself, not its frame, goes there.
    const quint32 values[] = {quint32(at.x()), quint32(at.y())};
    xcb_configure_window(c, xcb_window_t(window->winId()),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
    xcb_flush(c);
    return true;
}

} // namespace

bool pointerHold(QWidget *window, QPoint *hold)
{
    xcb_connection_t *c = x11::connection();
    QRect at;
    QPoint pointer;
    if (!c || !geometryOf(c, window, &at) || !pointerAt(c, &pointer)) return false;
    *hold = at.topLeft() - pointer;
    return true;
}

bool moveHeld(QWidget *window, QPoint hold)
{
    xcb_connection_t *c = x11::connection();
    QPoint pointer;
    return c && pointerAt(c, &pointer) && moveTo(c, window, pointer + hold);
}

bool placeAgainst(QWidget *window, QWidget *other, bool right, int down)
{
    xcb_connection_t *c = x11::connection();
    QRect at, own;
    if (!c || !geometryOf(c, other, &at) || !geometryOf(c, window, &own)) return false;
    const QMargins frame = frameExtentsInPixels(other);
    const int x = right ? at.right() + 1 + frame.right() : at.left() - frame.left() - own.width();
    return moveTo(c, window, QPoint(x, at.top() + qRound(down * other->devicePixelRatioF())));
}

} // namespace fw
