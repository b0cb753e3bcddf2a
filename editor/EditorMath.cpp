#include "editor/EditorMath.h"

#include <algorithm>
#include <cmath>

namespace editor {

WindowPlacement loadImageGeometry(QSize picture, const fw::ScreenInfo &s)
{
    WindowPlacement p{};
    p.Height =
        toInt(std::max(std::min(double(s.Height - 100), double(picture.height() + 91)), 250.0));
    p.Width =
        toInt(std::max(std::min(double(s.AvailableWidth), double(picture.width() + 16)), 300.0));
    p.Left = toInt(std::max((s.Width - p.Width) / 2.0, double(s.AvailableLeft)));
    p.Top = toInt(std::max((s.Height - p.Height) / 2.0, 100.0));
    p.MaxHeight = s.AvailableHeight - 25;
    p.MaxWidth = s.AvailableWidth;
    return p;
}

FormulaScreen formulaScreen(const QRect &work, const QMargins &chrome)
{
    FormulaScreen f{};
    f.screen.Width = f.screen.AvailableWidth = work.width() - chrome.left() - chrome.right();
    f.screen.Height = work.height() - chrome.top() - chrome.bottom() + 100;
    // The maximum height (available less 25) is then all the room there is.
    f.screen.AvailableHeight = f.screen.Height - 100 + 25;
    f.origin = QPoint(work.left() + chrome.left(), work.top() + chrome.top() - 100);
    return f;
}

QRect onDesktop(const WindowPlacement &p, const FormulaScreen &f)
{
    const int width = std::max(std::min(p.Width, f.screen.AvailableWidth), 1);
    const int height = std::max(std::min(p.Height, f.screen.Height - 100), 1);
    return QRect(f.origin + QPoint(p.Left, p.Top), QSize(width, height));
}

double scaleFactor(int currentscale)
{
    const double f = currentscale / 100.0;
    return (f == 0.0 || f > 10.0) ? 1.0 : f;
}

QSize scaledSize(QSize source, double factor)
{
    return QSize(toInt(source.width() * factor), toInt(source.height() * factor));
}

int bandWidth(double textWidth, int pictureWidth)
{
    return toInt(std::min(textWidth + 10.0, double(pictureWidth - 10)));
}

BandGeometry placeBand(QSize picture, int bw, int bh)
{
    return {bw, bh, toInt(double(picture.width() - bw) / 2.0), picture.height() - bh - 5};
}

ScrollRanges scrollRanges(QSize capture, const QString &scaleText, QSize canvas, int hValue,
                          int hMaximum, int vValue, int vMaximum)
{
    double hRatio = hMaximum == 0 ? 0.5 : double(hValue) / hMaximum;
    double vRatio = vMaximum == 0 ? 0.5 : double(vValue) / vMaximum;
    double factor = Val(scaleText) / 100.0;
    if (factor == 0.0) factor = 1.0;
    ScrollRanges r{};
    r.hMaximum = toInt(std::max(capture.width() * factor - canvas.width() + 1.0, 0.0));
    r.vMaximum = toInt(std::max(capture.height() * factor - canvas.height() + 1.0, 0.0));
    r.hValue = toInt(r.hMaximum * hRatio);
    r.vValue = toInt(r.vMaximum * vRatio);
    return r;
}

PaintPlacement paintPlacement(QSize picture, QSize canvas, int hValue, int vValue)
{
    const double W = canvas.width(), H = canvas.height();
    double x = 0.0, y = 0.0;
    if (picture.width() < W) x = (W - picture.width()) / 2.0;
    if (picture.height() < H) y = (H - picture.height()) / 2.0;
    return {QRect(toInt(x + 1.0), toInt(y + 1.0), toInt(W - 2.0), toInt(H - 2.0)),
            QPoint(hValue, vValue)};
}

} // namespace editor
