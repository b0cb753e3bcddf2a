#include "platform/core/X11.h"

#include <QGuiApplication>
#include <QHash>
#include <QMutex>
#include <QtGui/qguiapplication_platform.h>
#include <cstdlib>

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
    // Polling loops and the drawer's following ask for the same few names again and again.
    static QMutex lock;
    static QHash<QByteArray, xcb_atom_t> known;
    const QByteArray key(name);
    {
        const QMutexLocker locked(&lock);
        if (const auto it = known.constFind(key); it != known.constEnd()) return *it;
    }
    xcb_intern_atom_reply_t *r =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, quint16(key.size()), name), nullptr);
    const xcb_atom_t a = r ? r->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(r);
    if (a != XCB_ATOM_NONE) {
        const QMutexLocker locked(&lock);
        known.insert(key, a);
    }
    return a;
}

xcb_get_property_cookie_t askCardinals(xcb_connection_t *c, xcb_window_t w, const char *property,
                                       xcb_atom_t type, quint32 max)
{
    return xcb_get_property(c, 0, w, atom(c, property), type, 0, max);
}

QList<quint32> cardinals(xcb_connection_t *c, xcb_window_t w, const char *property, xcb_atom_t type,
                         quint32 max)
{
    return cardinals(c, askCardinals(c, w, property, type, max));
}

QList<quint32> cardinals(xcb_connection_t *c, xcb_get_property_cookie_t asked)
{
    QList<quint32> out;
    xcb_get_property_reply_t *r = xcb_get_property_reply(c, asked, nullptr);
    if (r && r->format == 32) {
        const auto *v = static_cast<const quint32 *>(xcb_get_property_value(r));
        out = QList<quint32>(v, v + xcb_get_property_value_length(r) / 4);
    }
    std::free(r);
    return out;
}

} // namespace fw::x11
