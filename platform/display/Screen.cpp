#include "platform/display/Screen.h"

#include "platform/display/WorkArea.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>

namespace fw {

QPoint centredOnScreen0(const QSize &size)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) return {};
    const QRect full = screen->geometry(), work = primaryWorkArea();
    const QPoint centred = full.topLeft() + QPoint((full.width() - size.width()) / 2,
                                                   (full.height() - size.height()) / 2);
    return QPoint(qMax(work.left(), qMin(centred.x(), work.right() + 1 - size.width())),
                  qMax(work.top(), qMin(centred.y(), work.bottom() + 1 - size.height())));
}

} // namespace fw
