#pragma once
// A look at the system clipboard as it is when the object is made. On X11 the clipboard is read
// once, on a connection of our own, and the whole read is bounded: an owner that never answers
// costs two seconds and reads as no picture. Qt's own clipboard asks each type with a 5 s
// timeout.

#include <QByteArray>
#include <QImage>
#include <optional>

namespace fw {

class Clipboard {
public:
    // The X window that owns the clipboard now (0: none, or not on X11).
    static quint32 owner();
    // ownerBefore: the owner before a capture command ran. The command may return before the
    // program it started owns the clipboard (xclip does): while the owner is still the one from
    // before, the read waits a little (half a second at most).
    explicit Clipboard(std::optional<quint32> ownerBefore = std::nullopt);
    // True when the clipboard offers picture data (bytes of an image type, or an image).
    bool PictureAvailable() const { return m_available; }
    // The decoded picture, or a null image (nil) when the data can't be decoded, e.g. a corrupt
    // file or one beyond the image allocation limit.
    QImage Picture() const;

private:
    // False where X11 is not in use (offscreen, Wayland); the Qt clipboard is read then.
    bool readThroughX11();

    bool m_available = false;
    QByteArray m_bytes;
    QImage m_image;
};

} // namespace fw
