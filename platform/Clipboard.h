#pragma once
// A look at the system clipboard as it is when the object is made.

#include <QByteArray>
#include <QImage>

namespace fw {

class Clipboard {
public:
    Clipboard();
    // True when the clipboard offers picture data (bytes of an image type, or an image).
    bool PictureAvailable() const { return m_available; }
    // The decoded picture, or a null image (nil) when the data can't be decoded, e.g. a corrupt
    // file or one beyond the image allocation limit.
    QImage Picture() const;

private:
    bool m_available = false;
    QByteArray m_bytes;
    QImage m_image;
};

} // namespace fw
