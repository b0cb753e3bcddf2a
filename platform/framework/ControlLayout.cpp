#include "platform/framework/ControlLayout.h"

#include <QWidget>

namespace fw {

static void lockAxis(int &pos, int &len, bool lockLow, bool lockHigh, int delta)
{
    if (lockLow && lockHigh)
        len += delta;
    else if (lockHigh)
        pos += delta;
}

QRect lockedGeometry(const QRect &design, int locks, const QSize &designSize, const QSize &size)
{
    int x = design.x(), y = design.y(), w = design.width(), h = design.height();
    lockAxis(x, w, locks & LockLeft, locks & LockRight, size.width() - designSize.width());
    lockAxis(y, h, locks & LockTop, locks & LockBottom, size.height() - designSize.height());
    return QRect(x, y, qMax(0, w), qMax(0, h));
}

void ControlLayout::add(QWidget *control, const QRect &design, int locks)
{
    m_items.append({control, design, locks});
    control->setGeometry(design);
}

void ControlLayout::apply(const QSize &size) const
{
    for (const Item &it : m_items)
        it.control->setGeometry(lockedGeometry(it.design, it.locks, m_designSize, size));
}

} // namespace fw
