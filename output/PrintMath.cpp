#include "output/PrintMath.h"

#include "editor/EditorMath.h"

namespace output {
QSize printedSize(QSize picture, QSize page)
{
    double scale = 1.0;
    if (page.width() < picture.width()) scale = double(page.width()) / picture.width();
    if (page.height() < picture.height()) scale = double(page.height()) / picture.height();
    return QSize(editor::toInt(picture.width() * scale), editor::toInt(picture.height() * scale));
}
} // namespace output
