#pragma once
// The caption band burned into the scaled picture: a black plate, 57 % opaque with rounded
// corners, with the caption in opaque white, wrapped to the plate's width.

#include <QFont>
#include <QImage>
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
    // Measures, builds and places the band on the picture. Throws the nil failure when the band
    // can't be made (a picture 10 pixels wide or less).
    static void burnInto(QImage &picture, const QString &text);
};

} // namespace editor
