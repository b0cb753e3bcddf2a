#include "platform/core/X11Connection.h"

#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace fw {

xcb_connection_t *x11Connection()
{
    auto *x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

quint32 x11RootWindow()
{
    xcb_connection_t *c = x11Connection();
    return c ? xcb_setup_roots_iterator(xcb_get_setup(c)).data->root : 0;
}

quint32 x11Atom(xcb_connection_t *c, const char *name)
{
    xcb_intern_atom_reply_t *r =
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, quint16(std::strlen(name)), name), nullptr);
    const xcb_atom_t a = r ? r->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(r);
    return a;
}

} // namespace fw
