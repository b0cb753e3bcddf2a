#include "platform/Clipboard.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>

namespace fw {

Clipboard::Clipboard()
{
    // The capture helper has just handed the selection over; let the ownership change arrive so
    // that we don't read our own stale copy.
    QCoreApplication::processEvents();
    const QMimeData *md = QGuiApplication::clipboard()->mimeData();
    if (!md) return;
    static const char *preferred[] = {"image/png", "image/bmp", "image/x-bmp", "image/tiff",
                                      "image/jpeg", "image/gif", "image/x-portable-pixmap"};
    QStringList formats;
    for (const char *f : preferred) formats << QString::fromLatin1(f);
    for (const QString &f : md->formats())
        if (f.startsWith("image/") && !formats.contains(f)) formats << f;
    for (const QString &f : formats) {
        if (!md->formats().contains(f)) continue;
        QByteArray bytes = md->data(f);
        if (!bytes.isEmpty()) {
            m_available = true;
            m_bytes = bytes;
            return;
        }
    }
    if (md->hasImage()) {
        // In-process clipboards (no X server) hand over the image itself.
        m_image = qvariant_cast<QImage>(md->imageData());
        m_available = !m_image.isNull();
    }
}

QImage Clipboard::Picture() const
{
    if (!m_image.isNull() || m_bytes.isEmpty()) return m_image;
    QBuffer buf;
    buf.setData(m_bytes);
    buf.open(QIODevice::ReadOnly);
    QImageReader reader(&buf);
    // A picture beyond QImageReader's allocation limit reads as nil.
    return reader.read();
}

} // namespace fw
