#pragma once
// Window places to the device pixel. Qt places a window in whole units of its geometry, which on
// a scaled screen are several device pixels each; a window that follows the pointer, or stands
// against another window's frame, needs the pixel. False where nothing was done (no X11): the
// caller then places the window in whole units.

#include <QPoint>
#include <QWidget>

namespace fw {

// Where the pointer holds the window now.
bool pointerHold(QWidget *window, QPoint *hold);
// Moves the window so that the pointer holds it there again.
bool moveHeld(QWidget *window, QPoint hold);
// Puts the window against the right or left edge of the other's frame, its top that many of the
// other's units below the other's top.
bool placeAgainst(QWidget *window, QWidget *other, bool right, int down);

} // namespace fw
