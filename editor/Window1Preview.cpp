// The preview: a one-to-one copy out of the scaled picture, centred when smaller than the
// canvas, moved by the scroll bars or by grabbing it with the mouse.

#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "platform/core/Failure.h"
#include "platform/framework/Canvas.h"
#include "platform/framework/Services.h"

#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>

// The preview counts in the screen's own pixels: on a scaled (HiDPI) screen a capture still
// shows one to one, while the window and its controls scale.
qreal Window1::canvasPixelRatio() const
{
    return Canvas1->devicePixelRatioF();
}

QSize Window1::canvasPixels() const
{
    const qreal r = canvasPixelRatio();
    return QSize(editor::toInt(Canvas1->width() * r), editor::toInt(Canvas1->height() * r));
}

void Window1::Canvas1_Paint(QPainter &g, int width, int height)
{
    if (ScaledImage.isNull()) return;
    const qreal r = canvasPixelRatio();
    const QSize pixels(editor::toInt(width * r), editor::toInt(height * r));
    const editor::PaintPlacement pl = editor::paintPlacement(
        ScaledImage.size(), pixels, ScrollBarH->value(), ScrollBarV->value());
    g.save();
    g.scale(1 / r, 1 / r);
    ScaledImage.draw(g, pl.destination.topLeft(), QRect(pl.source, pl.destination.size()));
    g.restore();
}

bool Window1::pannable() const
{
    return ScrollBarH->maximum() > 0 || ScrollBarV->maximum() > 0;
}

void Window1::setCanvasCursor(const QCursor *cursor)
{
    if (cursor)
        Canvas1->setCursor(*cursor);
    else
        Canvas1->unsetCursor();
}

void Window1::setscroll()
{
    if (mypic.isNull()) {
        setScrollMaximum(ScrollBarV, 0);
        setScrollMaximum(ScrollBarH, 0);
    } else {
        const editor::ScrollRanges r = editor::scrollRanges(
            mypic.size(), scaleField->text(), canvasPixels(), ScrollBarH->value(),
            ScrollBarH->maximum(), ScrollBarV->value(), ScrollBarV->maximum());
        setScrollMaximum(ScrollBarH, r.hMaximum);
        setScrollMaximum(ScrollBarV, r.vMaximum);
        setScrollValue(ScrollBarH, r.hValue);
        setScrollValue(ScrollBarV, r.vValue);
    }
    setCanvasCursor(pannable() ? &services().cursors.handcurs() : nullptr);
}

bool Window1::Canvas1_MouseDown(int x, int y)
{
    xdown = x;
    ydown = y;
    if (!pannable()) return false;
    setCanvasCursor(&services().cursors.closedhandcurs());
    return true;
}

void Window1::Canvas1_MouseDrag(int x, int y)
{
    holdupdate = true;
    // The hand's travel in the screen's pixels, which the picture is shown in.
    const qreal r = canvasPixelRatio();
    setScrollValue(ScrollBarH, ScrollBarH->value() + editor::toInt((xdown - x) * r));
    setScrollValue(ScrollBarV, ScrollBarV->value() + editor::toInt((ydown - y) * r));
    ydown = y;
    xdown = x;
    holdupdate = false;
    Canvas1->Refresh(true);
}

void Window1::Canvas1_MouseUp(int, int)
{
    setCanvasCursor(pannable() ? &services().cursors.handcurs() : nullptr);
}

void Window1::Canvas1_MouseMove(int, int)
{
    setCanvasCursor(pannable() ? &services().cursors.handcurs() : nullptr);
}

void Window1::ScrollBarH_ValueChanged()
{
    if (!holdupdate) Canvas1->Refresh(true);
}

void Window1::ScrollBarV_ValueChanged()
{
    if (!holdupdate) Canvas1->Refresh(true);
}

void Window1::setScrollMaximum(QScrollBar *bar, int v)
{
    bar->setMaximum(v);
    fw::rethrowPending();
}

void Window1::setScrollValue(QScrollBar *bar, int v)
{
    bar->setValue(v);
    fw::rethrowPending();
}
