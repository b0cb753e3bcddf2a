#pragma once
// The one exporter: bound to a format by its four-character code, carrying opaque settings,
// with a modal settings dialog per format, and writing a picture to a file. JPEG, PNG and BMP
// go through Qt's writers where those are faster at the same settings; TIFF, PICT, Photoshop
// and Targa (and what Qt can't write, such as interlaced PNG or 32-bit BMP) through ImageMagick.

#include "output/export/ExporterSettings.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <functional>

namespace fw {

// What an export came to. Nothing is written unless it says Written.
enum class ExportStatus {
    Written,
    NoFormat,    // the exporter was opened for no format
    NoFile,      // no output file was given
    NotEncoded,  // the picture could not be encoded in the format (nil, or beyond the writer)
    WriteFailed, // the file could not be written
    NameTaken,   // something stands at a name that had to be new
    Ending,      // the session is ending: the user confirmed no file
};
const char *describe(ExportStatus status);

class GraphicsExporter {
public:
    // The settings dialog for a format; true when the user confirmed it. Tests swap it.
    using SettingsDialog = std::function<bool(ExportFormat, ExporterSettings &)>;
    explicit GraphicsExporter(SettingsDialog dialog);

    void OpenExporter(const QString &type);
    ExportFormat format() const { return m_format; }

    QByteArray Settings() const;
    void setSettings(const QByteArray &settings);
    bool RequestSettings();
    // Without a leading point; empty when no format is open.
    QString GetDefaultFileNameExtension() const;

    QImage InputPicture;
    // The picture's description (the caption), written into the formats that hold one; empty
    // for none.
    QString Description;
    QString OutputFile;
    // When set, Export never replaces anything at OutputFile and answers NameTaken instead.
    bool OutputFileMustBeNew = false;
    ExportStatus Export();

    // The encoded file for the current format and settings, empty when it can't be made.
    QByteArray encode(const QImage &picture) const;
    // Which writer takes the current format and settings.
    enum class Writer { Qt, Magick, None };
    Writer writerFor(const QImage &picture) const;

private:
    // The last encoding, kept so that a retry under another name doesn't encode again.
    struct Encoded {
        qint64 picture = 0;
        QByteArray settings;
        QByteArray bytes;
    };
    QByteArray encodeCached(const QImage &picture);

    SettingsDialog m_dialog;
    Encoded m_last;
    ExportFormat m_format = ExportFormat::None;
    ExporterSettings m_settings;
};

} // namespace fw
