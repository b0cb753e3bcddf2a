#pragma once
// The settings of one export format, and their opaque text form. The text carries every
// format's keys it was given; a reader takes the keys of its own format and ignores the rest,
// so bytes of another format or plain garbage only leave the defaults in place.

#include <QByteArray>
#include <QString>

namespace fw {

enum class ExportFormat { None, JPEG, TIFF, PICT, PSD, PNG, BMP, Targa };

// The four-character codes of the format table ("JPEG", "TIFF", "PICT", "8BPS", "PNGf", "BMPf",
// "TPIC"), case-sensitive. Anything else is None.
ExportFormat formatForCode(const QString &code);
QString extensionFor(ExportFormat f);

enum class TiffCompression { None, LZW, Zip };

struct ExporterSettings {
    int jpegQuality = 85; // 1..100
    bool jpegProgressive = false;
    int pngCompression = 6; // 0..9
    bool pngInterlaced = false;
    TiffCompression tiffCompression = TiffCompression::LZW;
    bool psdRle = true;
    bool targaRle = true;
    int bmpDepth = 24; // 24 or 32

    // The text form of the settings that matter to the format.
    QByteArray toText(ExportFormat f) const;
    // Reads what it recognises for the format; everything else is ignored.
    static ExporterSettings fromText(const QByteArray &text, ExportFormat f);
};

} // namespace fw
