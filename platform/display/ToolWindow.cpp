#include "platform/display/ToolWindow.h"

#include "platform/core/X11.h"

#include <QWindow>

namespace fw {

void makeToolOf(QWidget *tool, QWidget *owner)
{
    tool->setWindowFlag(Qt::Tool, true);
    tool->setAttribute(Qt::WA_ShowWithoutActivating, true);
    tool->winId();
    if (!tool->windowHandle()) return;
    // Qt names the owner in WM_TRANSIENT_FOR when it maps a tool window.
    if (owner && owner->windowHandle())
        tool->windowHandle()->setTransientParent(owner->windowHandle());
    xcb_connection_t *c = x11::connection();
    if (!c || tool->windowHandle()->isVisible()) return; // mapped already
    // Qt adds its own states to these when it maps the window.
    const xcb_atom_t states[] = {x11::atom(c, "_NET_WM_STATE_SKIP_TASKBAR"),
                                 x11::atom(c, "_NET_WM_STATE_SKIP_PAGER")};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, xcb_window_t(tool->winId()),
                        x11::atom(c, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 2, states);
    xcb_flush(c);
}

} // namespace fw
