#pragma once
// The primary monitor, the only screen the program ever considers.

#include <QPoint>
#include <QSize>

namespace fw {

struct ScreenInfo {
    int Width = 0, Height = 0;                                      // full size
    int AvailableLeft = 0, AvailableWidth = 0, AvailableHeight = 0; // less panels and docks
};

// Where a window of the given size stands centred on the primary monitor, kept in its work area.
QPoint centredOnScreen0(const QSize &size);

} // namespace fw
