#pragma once
// The caption band burned into the scaled picture: a black plate, 57 % opaque with rounded
// corners, with the caption in opaque white, wrapped to the plate's width.

#include <QFont>
#include <QImage>
#include <QPoint>
#include <QSize>
#include <QString>

namespace editor {

class Caption {
public:
    // One font for measuring and drawing, so a first baseline at 14 fits a band of the text's
    // height plus 6.
    static QFont font();
    // Width of the text on one line.
    static double StringWidth(const QString &text);
    // Height of the text wrapped at the given width.
    static int StringHeight(const QString &text, int wrapWidth);
    // The band of the given size with the text drawn at x 3, baseline 14, wrapped at width - 4.
    // A null image when the size is not positive.
    static QImage band(const QString &text, int width, int height);
    struct Placed {
        QImage band;
        QPoint at;
    };
    // Measures and builds the band for a picture of the given size, and places it. Throws the
    // nil failure when the band can't be made (a picture 10 pixels wide or less).
    static Placed make(const QString &text, QSize picture);
    // Lays the band over an RGB32 picture with its top left at `at`, each pixel by itself (so
    // that any part of a picture gets the same pixels as the whole).
    static void blend(QImage &picture, QPoint at, const QImage &band);
    static void burnInto(QImage &picture, const QString &text);
};

} // namespace editor
