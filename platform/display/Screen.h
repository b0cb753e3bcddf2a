#pragma once
// The primary monitor, the only screen the program ever considers.

#include <QPoint>
#include <QSize>

namespace fw {

struct ScreenInfo {
    int Width = 0, Height = 0;                             // full size
    int AvailableLeft = 0, AvailableWidth = 0, AvailableHeight = 0; // less panels and docks
};

// The primary monitor as a window can use it: its work area (panels excluded), seen as a
// screen of its own with its origin at 0,0, less what a window adds to its content across and
// down (bars and frame). originX and originY receive the work area's top left.
ScreenInfo usableScreen0(int chromeAcross, int chromeDown, int *originX, int *originY);
// Where a window of the given size stands centred on the primary monitor.
QPoint centredOnScreen0(const QSize &size);

} // namespace fw
