#include "output/ClipboardPicture.h"

#include "output/export/ImageMetadata.h"

#include <QBuffer>
#include <QImageWriter>

namespace output {

namespace {

class DescribedPicture : public QMimeData {
public:
    explicit DescribedPicture(const QString &description) : m_description(description) {}

protected:
    // Every other type is rendered from the picture by Qt, as for a plain picture.
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override
    {
        if (mimeType != QLatin1String("image/png")) return QMimeData::retrieveData(mimeType, type);
        if (m_png.isEmpty()) {
            QByteArray png;
            QBuffer buffer(&png);
            buffer.open(QIODevice::WriteOnly);
            if (!QImageWriter(&buffer, "png").write(qvariant_cast<QImage>(imageData()))) return {};
            m_png = fw::metadata::withDescription(png, fw::ExportFormat::PNG, m_description);
        }
        return m_png;
    }

private:
    QString m_description;
    mutable QByteArray m_png;
};

} // namespace

QMimeData *clipboardPicture(const QImage &picture, const QString &description)
{
    QMimeData *data =
        description.trimmed().isEmpty() ? new QMimeData : new DescribedPicture(description);
    data->setImageData(picture);
    return data;
}

} // namespace output
