#include "platform/display/Screen.h"

#include <QGuiApplication>
#include <QScreen>

namespace fw {

ScreenInfo usableScreen0(int chromeAcross, int chromeDown, int *originX, int *originY)
{
    ScreenInfo s;
    *originX = *originY = 0;
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) return s;
    const QRect work = screen->availableGeometry();
    *originX = work.left();
    *originY = work.top();
    s.Width = s.AvailableWidth = work.width() - chromeAcross;
    s.Height = s.AvailableHeight = work.height() - chromeDown;
    return s;
}

QPoint centredOnScreen0(const QSize &size)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) return {};
    const QRect full = screen->geometry();
    return full.topLeft() + QPoint((full.width() - size.width()) / 2, (full.height() - size.height()) / 2);
}

} // namespace fw
