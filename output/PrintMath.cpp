#include "output/PrintMath.h"

#include "platform/core/Numbers.h"

namespace output {
QSize printedSize(QSize picture, QSize page)
{
    double scale = 1.0;
    if (page.width() < picture.width()) scale = double(page.width()) / picture.width();
    if (page.height() < picture.height()) scale = double(page.height()) / picture.height();
    return QSize(fw::toInt(picture.width() * scale), fw::toInt(picture.height() * scale));
}
} // namespace output
