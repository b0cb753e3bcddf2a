#pragma once
// The editor's arithmetic, apart from any widget: window size and place for a picture, the
// scale factor, the caption band's geometry, the scroll ranges and where the preview draws.
// Every conversion from a real number to an integer drops the fraction.

#include "platform/core/Numbers.h"
#include "platform/display/Screen.h"

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
