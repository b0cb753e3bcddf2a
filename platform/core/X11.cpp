#include "platform/core/X11.h"

#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>
#include <cstdlib>
#include <cstring>

namespace fw::x11 {

xcb_connection_t *connection()
{
    auto *x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t root(xcb_connection_t *c)
{
    return xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
}

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    xcb_intern_atom_reply_t *r =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, quint16(std::strlen(name)), name), nullptr);
    const xcb_atom_t a = r ? r->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(r);
    return a;
}

QList<quint32> cardinals(xcb_connection_t *c, xcb_window_t w, const char *property, xcb_atom_t type,
                         quint32 max)
{
    QList<quint32> out;
    xcb_get_property_reply_t *r = xcb_get_property_reply(
        c, xcb_get_property(c, 0, w, atom(c, property), type, 0, max), nullptr);
    if (r && r->format == 32) {
        const auto *v = static_cast<const quint32 *>(xcb_get_property_value(r));
        out = QList<quint32>(v, v + xcb_get_property_value_length(r) / 4);
    }
    std::free(r);
    return out;
}

} // namespace fw::x11
