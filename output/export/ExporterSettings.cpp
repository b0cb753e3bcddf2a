#include "output/export/ExporterSettings.h"

#include <QList>

namespace fw {

ExportFormat formatForCode(const QString &code)
{
    if (code == "JPEG") return ExportFormat::JPEG;
    if (code == "TIFF") return ExportFormat::TIFF;
    if (code == "PICT") return ExportFormat::PICT;
    if (code == "8BPS") return ExportFormat::PSD;
    if (code == "PNGf") return ExportFormat::PNG;
    if (code == "BMPf") return ExportFormat::BMP;
    if (code == "TPIC") return ExportFormat::Targa;
    return ExportFormat::None;
}

QString extensionFor(ExportFormat f)
{
    switch (f) {
    case ExportFormat::JPEG:
        return "jpg";
    case ExportFormat::TIFF:
        return "tif";
    case ExportFormat::PICT:
        return "pict";
    case ExportFormat::PSD:
        return "psd";
    case ExportFormat::PNG:
        return "png";
    case ExportFormat::BMP:
        return "bmp";
    case ExportFormat::Targa:
        return "tga";
    case ExportFormat::None:
        break;
    }
    return {};
}

static const char *kHeader = "vantrel-export-settings 1";

QByteArray ExporterSettings::toText(ExportFormat f) const
{
    QByteArray out = QByteArray(kHeader) + "\n";
    auto put = [&](const char *k, const QByteArray &v) { out += QByteArray(k) + "=" + v + "\n"; };
    auto yes = [](bool b) { return QByteArray(b ? "1" : "0"); };
    switch (f) {
    case ExportFormat::JPEG:
        put("jpeg.quality", QByteArray::number(jpegQuality));
        put("jpeg.progressive", yes(jpegProgressive));
        break;
    case ExportFormat::PNG:
        put("png.compression", QByteArray::number(pngCompression));
        put("png.interlaced", yes(pngInterlaced));
        break;
    case ExportFormat::TIFF:
        put("tiff.compression", tiffCompression == TiffCompression::None  ? "none"
                                : tiffCompression == TiffCompression::Zip ? "zip"
                                                                          : "lzw");
        break;
    case ExportFormat::PSD:
        put("psd.rle", yes(psdRle));
        break;
    case ExportFormat::Targa:
        put("targa.rle", yes(targaRle));
        break;
    case ExportFormat::BMP:
        put("bmp.depth", QByteArray::number(bmpDepth));
        break;
    case ExportFormat::PICT:
    case ExportFormat::None:
        break;
    }
    return out;
}

ExporterSettings ExporterSettings::fromText(const QByteArray &text, ExportFormat)
{
    ExporterSettings s;
    if (!text.startsWith(kHeader)) return s;
    for (const QByteArray &line : text.split('\n')) {
        const int eq = line.indexOf('=');
        if (eq <= 0) continue;
        const QByteArray k = line.left(eq).trimmed(), v = line.mid(eq + 1).trimmed();
        bool ok = false;
        const int n = v.toInt(&ok);
        if (k == "jpeg.quality" && ok && n >= 1 && n <= 100)
            s.jpegQuality = n;
        else if (k == "jpeg.progressive")
            s.jpegProgressive = v == "1";
        else if (k == "png.compression" && ok && n >= 0 && n <= 9)
            s.pngCompression = n;
        else if (k == "png.interlaced")
            s.pngInterlaced = v == "1";
        else if (k == "tiff.compression" && (v == "none" || v == "lzw" || v == "zip"))
            s.tiffCompression = v == "none"  ? TiffCompression::None
                                : v == "zip" ? TiffCompression::Zip
                                             : TiffCompression::LZW;
        else if (k == "psd.rle")
            s.psdRle = v == "1";
        else if (k == "targa.rle")
            s.targaRle = v == "1";
        else if (k == "bmp.depth" && ok && (n == 24 || n == 32))
            s.bmpDepth = n;
    }
    return s;
}

} // namespace fw
