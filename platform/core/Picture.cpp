#include "platform/core/Picture.h"

#include <QColor>

namespace fw {

QImage NewPicture(int width, int height)
{
    if (width < 1 || height < 1) return {};
    QImage img(width, height, QImage::Format_RGB32);
    if (!img.isNull()) img.fill(Qt::white);
    return img;
}

QImage BitmapOf(const QImage &picture)
{
    if (picture.isNull()) return {};
    // Pictures are never changed in place, so a shared copy is as good as a deep one.
    return picture.convertToFormat(QImage::Format_RGB32);
}

static bool allBlack(const QImage &mask)
{
    for (int y = 0; y < mask.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
        for (int x = 0; x < mask.width(); ++x)
            if ((line[x] & 0x00ffffff) != 0) return false;
    }
    return true;
}

QImage CGCreateImage(const QImage &picture, const QImage &mask)
{
    if (picture.isNull() || mask.isNull() || picture.size() != mask.size()) return {};
    const QImage m =
        mask.format() == QImage::Format_RGB32 ? mask : mask.convertToFormat(QImage::Format_RGB32);
    QImage pic = picture.format() == QImage::Format_RGB32
                     ? picture
                     : picture.convertToFormat(QImage::Format_RGB32);
    if (allBlack(m)) return pic;
    QImage out = pic.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < out.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        const auto *ml = reinterpret_cast<const QRgb *>(m.constScanLine(y));
        for (int x = 0; x < out.width(); ++x)
            line[x] = qRgba(qRed(line[x]), qGreen(line[x]), qBlue(line[x]), 255 - qGray(ml[x]));
    }
    return out;
}

} // namespace fw
