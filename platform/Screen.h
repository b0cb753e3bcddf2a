#pragma once
// The main screen's sizes, the only screen the program ever considers.

namespace fw {

struct ScreenInfo {
    int Width = 0, Height = 0;                             // full size
    int AvailableLeft = 0, AvailableWidth = 0, AvailableHeight = 0; // less panels and docks
};

ScreenInfo Screen0();

} // namespace fw
