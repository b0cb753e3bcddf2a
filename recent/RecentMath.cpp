#include "recent/RecentMath.h"

#include "platform/core/Numbers.h"

namespace recent {

using fw::toInt;

Thumbnail thumbnailFor(QSize p, int index, int V)
{
    double r = p.width() / 150.0;
    if (r < p.height() / 150.0) r = p.height() / 150.0;
    Thumbnail t{};
    t.drawnWidth = p.width() / r;
    t.drawnHeight = p.height() / r;
    t.x = toInt((150.0 - t.drawnWidth) / 2.0);
    t.y = toInt(double(index * kCellPitch - V) + (150.0 - t.drawnHeight) / 2.0);
    t.sourceSide = toInt(150.0 * r);
    t.frame = QRect(t.x, t.y, toInt(t.drawnWidth + 2.0), toInt(t.drawnHeight + 1.0));
    return t;
}

int rowAt(int y, int V)
{
    return toInt(double(y + V) / 155.0);
}

int scrollMaximum(int entries, int windowHeight)
{
    return qMax(0, entries * kCellPitch - windowHeight + 40);
}

} // namespace recent
