#include "platform/display/ToolWindow.h"

#include <QGuiApplication>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>
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

void makeToolOf(QWidget *tool, QWidget *owner)
{
    tool->setWindowFlag(Qt::Tool, true);
    tool->setAttribute(Qt::WA_ShowWithoutActivating, true);
    tool->winId();
    // Qt names the owner in WM_TRANSIENT_FOR when it maps a tool window.
    if (!tool->windowHandle()) return;
    if (owner && owner->windowHandle())
        tool->windowHandle()->setTransientParent(owner->windowHandle());
    auto *x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t *c = x11 ? x11->connection() : nullptr;
    if (!c || tool->windowHandle()->isVisible()) return; // mapped already
    // Qt adds its own states to these when it maps the window.
    const xcb_atom_t states[] = {atom(c, "_NET_WM_STATE_SKIP_TASKBAR"),
                                 atom(c, "_NET_WM_STATE_SKIP_PAGER")};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, xcb_window_t(tool->winId()),
                        atom(c, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 2, states);
    xcb_flush(c);
}

} // namespace fw
