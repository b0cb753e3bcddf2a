#include "output/export/GraphicsExporter.h"

#include "output/export/ImageMetadata.h"
#include "output/export/MagickWriter.h"
#include "platform/files/AtomicFile.h"
#include "platform/framework/Application.h"

#include <QBuffer>
#include <QImageWriter>
#include <QtEndian>

namespace fw {

GraphicsExporter::GraphicsExporter(SettingsDialog dialog) : m_dialog(std::move(dialog)) {}

void GraphicsExporter::OpenExporter(const QString &type)
{
    m_format = formatForCode(type);
}

QByteArray GraphicsExporter::Settings() const
{
    return m_settings.toText(m_format);
}

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

QString GraphicsExporter::GetDefaultFileNameExtension() const
{
    return extensionFor(m_format);
}

GraphicsExporter::Writer GraphicsExporter::writerFor(const QImage &picture) const
{
    // Asked only where ImageMagick may write: asking loads it.
    const auto magickFits = [&] { return magick::fitsLimits(picture.width(), picture.height()); };
    switch (m_format) {
    case ExportFormat::JPEG:
        return Writer::Qt; // libjpeg-turbo: about twice as fast at the same quality
    case ExportFormat::PNG:
        // Qt writes no interlaced PNG.
        return m_settings.pngInterlaced ? (magickFits() ? Writer::Magick : Writer::None)
                                        : Writer::Qt;
    case ExportFormat::BMP:
        // Qt writes 24-bit BMP only.
        return m_settings.bmpDepth == 24 ? Writer::Qt
                                         : (magickFits() ? Writer::Magick : Writer::None);
    case ExportFormat::TIFF:
    case ExportFormat::PICT:
    case ExportFormat::PSD:
    case ExportFormat::Targa:
        return magickFits() ? Writer::Magick : Writer::None;
    case ExportFormat::None:
        break;
    }
    return Writer::None;
}

namespace {

// Qt 6 takes a PNG's compression as 0..100 and hands zlib (value * 9) / 91: the smallest value
// that gives each zlib level.
int qtPngCompression(int zlibLevel)
{
    return (zlibLevel * 91 + 8) / 9;
}

// 72 dots per inch, which readers show as the picture's print size. Qt's writers take the
// resolution only from the picture, and setting it there copies the whole picture (5-40 ms at
// 4K), so it is written into the file's header instead.
constexpr quint32 kDotsPerInch = 72, kDotsPerMeter = 2835;

void putBigEndian(QByteArray &b, int at, quint32 v, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        b[at + i] = char(v >> (8 * (bytes - 1 - i)));
}

void stampResolution(QByteArray &file, ExportFormat f)
{
    if (f == ExportFormat::JPEG && file.size() > 18 && file.mid(6, 5) == QByteArray("JFIF", 5)) {
        file[13] = 1; // dots per inch
        putBigEndian(file, 14, kDotsPerInch, 2);
        putBigEndian(file, 16, kDotsPerInch, 2);
    } else if (f == ExportFormat::BMP && file.size() > 46) {
        for (int at : {38, 42})
            for (int i = 0; i < 4; ++i)
                file[at + i] = char(kDotsPerMeter >> (8 * i));
    } else if (f == ExportFormat::PNG && file.size() > 33 && file.mid(12, 4) == "IHDR") {
        QByteArray xyUnit(9, '\0'); // x, y, unit (metre)
        putBigEndian(xyUnit, 0, kDotsPerMeter, 4);
        putBigEndian(xyUnit, 4, kDotsPerMeter, 4);
        xyUnit[8] = 1;
        const QByteArray chunk = metadata::pngChunk("pHYs", xyUnit);
        // Qt writes one from the picture's own resolution: replace it, or add one after the
        // header chunk.
        for (qsizetype at = 8; at + 12 <= file.size();) {
            const quint32 len = qFromBigEndian<quint32>(file.constData() + at);
            if (file.mid(at + 4, 4) == "pHYs" && len == 9) {
                file.replace(at, 21, chunk);
                return;
            }
            if (file.mid(at + 4, 4) == "IDAT") break;
            at += 12 + qsizetype(len);
        }
        file.insert(33, chunk);
    }
}

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
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    QImageWriter w(&buf, m_format == ExportFormat::JPEG  ? "jpeg"
                         : m_format == ExportFormat::PNG ? "png"
                                                         : "bmp");
    if (m_format == ExportFormat::JPEG) {
        w.setQuality(m_settings.jpegQuality);
        w.setProgressiveScanWrite(m_settings.jpegProgressive);
        w.setOptimizedWrite(true);
    } else if (m_format == ExportFormat::PNG) {
        w.setCompression(qtPngCompression(m_settings.pngCompression));
    }
    if (!w.write(rgb)) return {};
    stampResolution(out, m_format);
    return out;
}

QByteArray GraphicsExporter::encodeCached(const QImage &picture)
{
    const QByteArray settings = Settings();
    if (m_last.bytes.isEmpty() || m_last.picture != picture.cacheKey() ||
        m_last.settings != settings)
        m_last = {picture.cacheKey(), settings, encode(picture)};
    return m_last.bytes;
}

const char *describe(ExportStatus status)
{
    switch (status) {
    case ExportStatus::Written:
        return "written";
    case ExportStatus::NoFormat:
        return "no format";
    case ExportStatus::NoFile:
        return "no file";
    case ExportStatus::NotEncoded:
        return "not encoded";
    case ExportStatus::WriteFailed:
        return "write failed";
    case ExportStatus::NameTaken:
        return "name taken";
    case ExportStatus::Ending:
        return "session ending";
    }
    return "?";
}

ExportStatus GraphicsExporter::Export()
{
    // The session is ending: the user confirmed no file.
    if (Application::ending()) return ExportStatus::Ending;
    if (m_format == ExportFormat::None) return ExportStatus::NoFormat;
    if (OutputFile.isEmpty()) return ExportStatus::NoFile;
    const QByteArray bytes =
        metadata::withDescription(encodeCached(InputPicture), m_format, Description);
    if (bytes.isEmpty()) return ExportStatus::NotEncoded;
    NewFileResult result = NewFileResult::Failed;
    if (!OutputFileMustBeNew)
        result =
            writeFileReplacing(OutputFile, bytes) ? NewFileResult::Written : NewFileResult::Failed;
    else
        result = writeNewFile(OutputFile, bytes);
    // Kept only for a retry under the next free name: a large picture's file is not held on.
    if (result != NewFileResult::Taken) m_last = {};
    switch (result) {
    case NewFileResult::Written:
        return ExportStatus::Written;
    case NewFileResult::Taken:
        return ExportStatus::NameTaken;
    case NewFileResult::Failed:
        break;
    }
    return ExportStatus::WriteFailed;
}

} // namespace fw
