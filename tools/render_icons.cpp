// Renders an SVG into the two pictures a toolbar item is made of: the picture on white, and its
// mask (black where the picture is opaque, white where it is transparent); or, given one output,
// into a picture with its transparency (for the icon theme).
//   render_icons SVG SIZE PICTURE.png MASK.png
//   render_icons SVG SIZE ICON.png

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 5 && argc != 4) {
        std::fprintf(stderr, "usage: render_icons SVG SIZE PICTURE [MASK]\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) return 1;
    const int size = QByteArray(argv[2]).toInt();
    QImage rgba(size, size, QImage::Format_ARGB32);
    rgba.fill(Qt::transparent);
    {
        QPainter p(&rgba);
        p.setRenderHint(QPainter::Antialiasing);
        svg.render(&p);
    }
    if (argc == 4) return rgba.save(QString::fromLocal8Bit(argv[3])) ? 0 : 1;
    QImage picture(size, size, QImage::Format_RGB32), mask(size, size, QImage::Format_RGB32);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const QRgb c = rgba.pixel(x, y);
            const int a = qAlpha(c), inv = 255 - a;
            // Colour over white where the picture is part-transparent.
            picture.setPixel(x, y,
                             qRgb((qRed(c) * a + 255 * inv) / 255,
                                  (qGreen(c) * a + 255 * inv) / 255,
                                  (qBlue(c) * a + 255 * inv) / 255));
            mask.setPixel(x, y, qRgb(inv, inv, inv));
        }
    return picture.save(QString::fromLocal8Bit(argv[3])) &&
                   mask.save(QString::fromLocal8Bit(argv[4]))
               ? 0
               : 1;
}
