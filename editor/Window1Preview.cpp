// The preview: a one-to-one copy out of the scaled picture, centred when smaller than the
// canvas, moved by the scroll bars or by grabbing it with the mouse.

#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "platform/Canvas.h"
#include "platform/Failure.h"
#include "platform/Services.h"

#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>

void Window1::Canvas1_Paint(QPainter &g, int width, int height)
{
    if (ScaledImage.isNull()) return;
    const editor::PaintPlacement pl = editor::paintPlacement(
        ScaledImage.size(), QSize(width, height), ScrollBarH->value(), ScrollBarV->value());
    ScaledImage.draw(g, pl.destination.topLeft(), QRect(pl.source, pl.destination.size()));
}

bool Window1::pannable() const { return ScrollBarH->maximum() > 0 || ScrollBarV->maximum() > 0; }

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
            mypic.size(), scaleField->text(), Canvas1->size(), ScrollBarH->value(),
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
    setScrollValue(ScrollBarH, ScrollBarH->value() + xdown - x);
    setScrollValue(ScrollBarV, ScrollBarV->value() + ydown - y);
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
