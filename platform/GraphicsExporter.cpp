#include "platform/GraphicsExporter.h"

#include "platform/AtomicFile.h"
#include "platform/MagickWriter.h"

#include <QBuffer>
#include <QImageWriter>

namespace fw {

GraphicsExporter::GraphicsExporter(SettingsDialog dialog) : m_dialog(std::move(dialog)) {}

void GraphicsExporter::OpenExporter(const QString &type) { m_format = formatForCode(type); }

QByteArray GraphicsExporter::Settings() const { return m_settings.toText(m_format); }

void GraphicsExporter::setSettings(const QByteArray &settings)
{
    m_settings = ExporterSettings::fromText(settings, m_format);
}

bool GraphicsExporter::RequestSettings()
{
    if (m_format == ExportFormat::None || !m_dialog) return false;
    ExporterSettings edited = m_settings;
    if (!m_dialog(m_format, edited)) return false;
    m_settings = edited;
    return true;
}

QString GraphicsExporter::GetDefaultFileNameExtension() const { return extensionFor(m_format); }

GraphicsExporter::Writer GraphicsExporter::writerFor(const QImage &picture) const
{
    const bool magickFits = magick::fitsLimits(picture.width(), picture.height());
    switch (m_format) {
    case ExportFormat::JPEG:
        return Writer::Qt; // libjpeg-turbo: about twice as fast at the same quality
    case ExportFormat::PNG:
        // Qt writes no interlaced PNG.
        return m_settings.pngInterlaced ? (magickFits ? Writer::Magick : Writer::None) : Writer::Qt;
    case ExportFormat::BMP:
        // Qt writes 24-bit BMP only.
        return m_settings.bmpDepth == 24 ? Writer::Qt : (magickFits ? Writer::Magick : Writer::None);
    case ExportFormat::TIFF:
    case ExportFormat::PICT:
    case ExportFormat::PSD:
    case ExportFormat::Targa:
        return magickFits ? Writer::Magick : Writer::None;
    case ExportFormat::None:
        break;
    }
    return Writer::None;
}

namespace {

// Qt 6 takes a PNG's compression as 0..100 and hands zlib (value * 9) / 91: the smallest value
// that gives each zlib level.
int qtPngCompression(int zlibLevel) { return (zlibLevel * 91 + 8) / 9; }

// 72 dots per inch, which readers show as the picture's print size.
constexpr int kDotsPerMeter = 2835;

} // namespace

QByteArray GraphicsExporter::encode(const QImage &picture) const
{
    if (picture.isNull()) return {};
    switch (writerFor(picture)) {
    case Writer::None:
        return {};
    case Writer::Magick:
        return magick::encode(picture, m_format, m_settings);
    case Writer::Qt:
        break;
    }
    QByteArray out;
    QBuffer buf(&out);
    buf.open(QIODevice::WriteOnly);
    QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    rgb.setDotsPerMeterX(kDotsPerMeter);
    rgb.setDotsPerMeterY(kDotsPerMeter);
    QImageWriter w(&buf, m_format == ExportFormat::JPEG ? "jpeg" : m_format == ExportFormat::PNG ? "png" : "bmp");
    if (m_format == ExportFormat::JPEG) {
        w.setQuality(m_settings.jpegQuality);
        w.setProgressiveScanWrite(m_settings.jpegProgressive);
        w.setOptimizedWrite(true);
    } else if (m_format == ExportFormat::PNG) {
        w.setCompression(qtPngCompression(m_settings.pngCompression));
    }
    return w.write(rgb) ? out : QByteArray();
}

QByteArray GraphicsExporter::encodeCached(const QImage &picture)
{
    const QByteArray settings = Settings();
    if (m_last.bytes.isEmpty() || m_last.picture != picture.cacheKey() || m_last.settings != settings)
        m_last = {picture.cacheKey(), settings, encode(picture)};
    return m_last.bytes;
}

int GraphicsExporter::Export()
{
    if (m_format == ExportFormat::None) return -1;
    if (OutputFile.isEmpty()) return -2;
    const QByteArray bytes = encodeCached(InputPicture);
    if (bytes.isEmpty()) return -3;
    if (!OutputFileMustBeNew) return writeFileReplacing(OutputFile, bytes) ? 0 : -4;
    switch (writeNewFile(OutputFile, bytes)) {
    case NewFileResult::Written: return 0;
    case NewFileResult::Taken: return NameTaken;
    case NewFileResult::Failed: break;
    }
    return -4;
}

} // namespace fw
