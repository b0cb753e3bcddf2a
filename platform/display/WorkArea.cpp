#include "platform/display/WorkArea.h"

#include "platform/core/Logging.h"
#include "platform/core/X11.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace fw {

// A strut along whole edges of the root.
static Strut wholeEdges(int left, int right, int top, int bottom, const QSize &root)
{
    const int h = root.height() - 1, w = root.width() - 1;
    return {left, right, top, bottom, 0, h, 0, h, 0, w, 0, w};
}

QRect usableArea(const QRect &monitor, const QSize &root, const QRect &workArea,
                 const QList<Strut> &struts)
{
    QList<Strut> all = struts;
    if (workArea.isValid()) {
        // The window manager's own margin along an edge: what its work area keeps beyond the
        // panels.
        Strut own = wholeEdges(workArea.left(), root.width() - 1 - workArea.right(), workArea.top(),
                               root.height() - 1 - workArea.bottom(), root);
        for (const Strut &s : struts) {
            if (s.left >= own.left) own.left = 0;
            if (s.right >= own.right) own.right = 0;
            if (s.top >= own.top) own.top = 0;
            if (s.bottom >= own.bottom) own.bottom = 0;
        }
        all.append(own);
    }
    const auto meets = [](int from, int to, int first, int last) {
        return from <= last && first <= to;
    };
    int l = monitor.left(), t = monitor.top(), r = monitor.right(), b = monitor.bottom();
    for (const Strut &s : all) {
        if (s.left > monitor.left() && meets(s.leftFrom, s.leftTo, monitor.top(), monitor.bottom()))
            l = std::max(l, s.left);
        if (s.right > 0 && root.width() - s.right <= monitor.right() &&
            meets(s.rightFrom, s.rightTo, monitor.top(), monitor.bottom()))
            r = std::min(r, root.width() - 1 - s.right);
        if (s.top > monitor.top() && meets(s.topFrom, s.topTo, monitor.left(), monitor.right()))
            t = std::max(t, s.top);
        if (s.bottom > 0 && root.height() - s.bottom <= monitor.bottom() &&
            meets(s.bottomFrom, s.bottomTo, monitor.left(), monitor.right()))
            b = std::min(b, root.height() - 1 - s.bottom);
    }
    const QRect usable(QPoint(l, t), QPoint(r, b));
    return usable.isValid() ? usable : monitor; // panels over the whole monitor: nothing to trust
}

namespace {

// The root's size, the current desktop's work area and the panels' struts; false without X11.
bool readDesktop(QSize *root, QRect *workArea, QList<Strut> *struts)
{
    xcb_connection_t *c = x11::connection();
    if (!c) return false;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    *root = QSize(screen->width_in_pixels, screen->height_in_pixels);
    const QList<quint32> desktop =
        x11::cardinals(c, screen->root, "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 1);
    const quint32 d = desktop.isEmpty() ? 0 : desktop[0];
    const QList<quint32> areas =
        x11::cardinals(c, screen->root, "_NET_WORKAREA", XCB_ATOM_CARDINAL, 4 * (d + 1));
    if (areas.size() >= 4 * qsizetype(d + 1))
        *workArea = QRect(int(areas[4 * d]), int(areas[4 * d + 1]), int(areas[4 * d + 2]),
                          int(areas[4 * d + 3]));
    // Every window asked at once and answered in one wait: this runs at each step of a drag.
    const QList<quint32> windows =
        x11::cardinals(c, screen->root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, 4096);
    QList<xcb_get_property_cookie_t> partial, whole;
    for (quint32 w : windows) {
        partial << x11::askCardinals(c, w, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL, 12);
        whole << x11::askCardinals(c, w, "_NET_WM_STRUT", XCB_ATOM_CARDINAL, 4);
    }
    for (qsizetype k = 0; k < windows.size(); ++k) {
        const QList<quint32> p = x11::cardinals(c, partial[k]);
        const QList<quint32> w = x11::cardinals(c, whole[k]);
        const QList<quint32> &v = p.size() == 12 ? p : w;
        const auto i = [&v](int n) { return int(std::min<quint32>(v[n], 1u << 20)); };
        if (v.size() == 12)
            struts->append(
                {i(0), i(1), i(2), i(3), i(4), i(5), i(6), i(7), i(8), i(9), i(10), i(11)});
        else if (v.size() == 4) // the old form covers whole edges
            struts->append(wholeEdges(i(0), i(1), i(2), i(3), *root));
    }
    return true;
}

} // namespace

QRect primaryWorkArea()
{
    return workArea(QGuiApplication::primaryScreen());
}

QRect workArea(const QScreen *screen)
{
    if (!screen) return {};
    // With one monitor Qt reads the work area itself.
    QSize root;
    QRect workArea;
    QList<Strut> struts;
    if (QGuiApplication::screens().size() == 1 || !readDesktop(&root, &workArea, &struts))
        return screen->availableGeometry();
    // Qt keeps a screen's origin in the root's pixels and scales what lies beyond it.
    const QRect logical = screen->geometry();
    const QPoint origin = logical.topLeft();
    const qreal ratio = screen->devicePixelRatio();
    const QRect monitor(origin, logical.size() * ratio);
    const QRect usable = usableArea(monitor, root, workArea, struts);
    const QPointF from = origin + QPointF(usable.topLeft() - origin) / ratio;
    const QPointF to = origin + QPointF(usable.bottomRight() + QPoint(1, 1) - origin) / ratio;
    const QRect area(QPoint(int(std::ceil(from.x())), int(std::ceil(from.y()))),
                     QPoint(int(std::floor(to.x())) - 1, int(std::floor(to.y())) - 1));
    qCDebug(lcDisplay) << "monitor" << monitor << "usable" << usable << "logical" << area;
    return area.intersected(logical);
}

} // namespace fw
