#pragma once
// The editor's arithmetic, apart from any widget: window size and place for a picture, the
// scale factor, the caption band's geometry, the scroll ranges and where the preview draws.
// Every conversion from a real number to an integer drops the fraction.

#include "platform/core/Numbers.h"
#include "platform/display/Screen.h"

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

namespace editor {

using fw::toInt;
using fw::Val;

struct WindowPlacement {
    int Height, Width, Left, Top, MaxHeight, MaxWidth;
};
// Size and place of the editor's content area for a picture of the given size.
WindowPlacement loadImageGeometry(QSize picture, const fw::ScreenInfo &screen);

// The formulas' screen on this desktop. The formulas keep 100 pixels above the content (the
// height less 100, the top at 100 at least) for what stands above a window's content on the
// desktop they were written for: menu bar, title bar and tool bar. Here that room is the window's
// own frame and bars, so it is counted once: the formulas' screen is the work area less the
// window's frame and bars around its content (chrome), with those 100 rows added above it.
struct FormulaScreen {
    fw::ScreenInfo screen;
    QPoint origin; // where the formulas' 0,0 lies on the desktop
};
FormulaScreen formulaScreen(const QRect &workArea, const QMargins &chrome);
// The content's place on the desktop; where the floors ask for more than the work area holds
// (a small screen at a large scale factor), the content's size gives way.
QRect onDesktop(const WindowPlacement &p, const FormulaScreen &f);

// The factor for a scale in percent: 0 and anything above 1000 draw at 1.0.
double scaleFactor(int currentscale);
// The source size times the factor, each side on its own.
QSize scaledSize(QSize source, double factor);

struct BandGeometry {
    int width, height, x, y;
};
int bandWidth(double textWidth, int pictureWidth);
// The band centred across the picture, its bottom 5 pixels above the picture's bottom.
BandGeometry placeBand(QSize picture, int bandWidth, int bandHeight);

struct ScrollRanges {
    int hMaximum, vMaximum, hValue, vValue;
};
// The scroll bars for the capture's size at the scale in the field's text, keeping the view's
// relative place; a bar without a range before starts in the middle.
ScrollRanges scrollRanges(QSize capture, const QString &scaleText, QSize canvas, int hValue,
                          int hMaximum, int vValue, int vMaximum);

struct PaintPlacement {
    QRect destination; // where the copy lands on the canvas
    QPoint source;     // top left of the copied part of the picture
};
PaintPlacement paintPlacement(QSize picture, QSize canvas, int hValue, int vValue);

} // namespace editor
