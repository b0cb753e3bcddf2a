#include "output/ToolbarPictures.h"

#include "platform/core/Picture.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"

#include <QHash>

namespace {
QImage cached(const QString &file)
{
    static QHash<QString, QImage> cache;
    auto it = cache.find(file);
    if (it != cache.end() && !it->isNull()) return *it;
    const QString resources = fw::Application::instance().services().bundle.resources();
    QImage img(resources + "/" + file);
    if (!img.isNull()) cache.insert(file, img);
    return img;
}
} // namespace

QImage HD()
{
    return cached("Toolbar/disk.png");
}
QImage HDMask()
{
    return cached("Toolbar/disk-mask.png");
}
QImage mail()
{
    return cached("Toolbar/letter.png");
}
QImage mailmask()
{
    return cached("Toolbar/letter-mask.png");
}
QImage copyimg()
{
    return cached("Toolbar/copy.png");
}
QImage copymask()
{
    return cached("Toolbar/copy-mask.png");
}
QImage drawericon()
{
    return cached("Toolbar/drawer.png");
}
QImage drawermask()
{
    return cached("Toolbar/drawer-mask.png");
}
QImage preficon()
{
    return cached("Toolbar/preferences.png");
}
QImage prefmask()
{
    return cached("Toolbar/preferences-mask.png");
}
QImage icon()
{
    // Where the icon is white, what lies behind shows.
    return withMask(cached("icon.png"), cached("icon-mask.png"));
}

QImage withMask(const QImage &picture, const QImage &mask)
{
    if (picture.isNull()) return {};
    if (mask.isNull()) return picture;
    return fw::CGCreateImage(picture, mask.scaled(picture.size()));
}
