#include "platform/Screen.h"

#include <QGuiApplication>
#include <QScreen>

namespace fw {

ScreenInfo Screen0()
{
    ScreenInfo s;
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen) return s;
    const QRect full = screen->geometry();
    const QRect avail = screen->availableGeometry();
    s.Width = full.width();
    s.Height = full.height();
    s.AvailableLeft = avail.left();
    s.AvailableWidth = avail.width();
    s.AvailableHeight = avail.height();
    return s;
}

} // namespace fw
