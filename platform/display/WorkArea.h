#pragma once
// The part of the primary monitor that windows may use. Qt knows it only while there is one
// monitor (it reads the window manager's one work area); with several monitors it gives the
// whole monitor, panels included. Worked out here from the monitor and what the window manager
// keeps free: its work area and the panels' struts.

#include <QList>
#include <QRect>
#include <QSize>

class QScreen;

namespace fw {

// What a panel keeps free along each edge of the root window (_NET_WM_STRUT_PARTIAL): the
// depth at the edge and the stretch of that edge it covers, first to last pixel.
struct Strut {
    int left = 0, right = 0, top = 0, bottom = 0;
    int leftFrom = 0, leftTo = 0, rightFrom = 0, rightTo = 0;
    int topFrom = 0, topTo = 0, bottomFrom = 0, bottomTo = 0;
};

// The monitor less every strut that reaches into it, in the root window's pixels. workArea is
// the window manager's one rectangle over all monitors: an edge it keeps deeper than any panel
// asks is the window manager's own margin, which applies to every monitor along that edge.
QRect usableArea(const QRect &monitor, const QSize &root, const QRect &workArea,
                 const QList<Strut> &struts);

// A monitor's usable area in the program's coordinates; the whole monitor where nothing says
// otherwise.
QRect workArea(const QScreen *screen);
QRect primaryWorkArea();

} // namespace fw
