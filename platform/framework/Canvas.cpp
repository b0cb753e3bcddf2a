#include "platform/framework/Canvas.h"

#include "platform/core/Failure.h"

#include <QMouseEvent>
#include <QPainter>

namespace fw {

Canvas::Canvas(QWidget *parent) : QWidget(parent)
{
    setMouseTracking(true);
    setAutoFillBackground(true); // the erase before each paint
}

void Canvas::Refresh(bool)
{
    repaint();
}

void Canvas::paintEvent(QPaintEvent *)
{
    if (!onPaint) return;
    QPainter painter(this);
    guarded([&] { onPaint(painter, width(), height()); });
}

void Canvas::mousePressEvent(QMouseEvent *e)
{
    const QPoint p = e->position().toPoint();
    m_claimed = false;
    if (onMouseDown) guarded([&] { m_claimed = onMouseDown(p.x(), p.y()); });
    if (!m_claimed) e->ignore();
}

void Canvas::mouseMoveEvent(QMouseEvent *e)
{
    const QPoint p = e->position().toPoint();
    if (e->buttons() != Qt::NoButton) {
        if (m_claimed && onMouseDrag) guarded([&] { onMouseDrag(p.x(), p.y()); });
    } else if (onMouseMove) {
        guarded([&] { onMouseMove(p.x(), p.y()); });
    }
}

void Canvas::mouseReleaseEvent(QMouseEvent *e)
{
    const QPoint p = e->position().toPoint();
    if (m_claimed && onMouseUp) guarded([&] { onMouseUp(p.x(), p.y()); });
    m_claimed = false;
}

} // namespace fw
