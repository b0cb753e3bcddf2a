#pragma once
// What the window manager's frame will add around a window, asked of the window manager before
// the window is first shown (_NET_REQUEST_FRAME_EXTENTS), so that even the first placement can
// put the content where it is meant to be. Nothing without X11 or a window manager that answers.

#include <QMargins>
#include <QWidget>

namespace fw {
// ask: request the extents and wait for them (a fraction of a second at most); otherwise only
// read what the window manager has set on the window.
QMargins frameExtentsBeforeShowing(QWidget *window, bool ask);
// What the window manager has set, in device pixels.
QMargins frameExtentsInPixels(QWidget *window);
} // namespace fw
