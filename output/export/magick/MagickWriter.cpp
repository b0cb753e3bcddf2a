// Built as its own module (libvantrel-magick.so beside the program), loaded on the first export
// that needs it: ImageMagick and the libraries it pulls in cost start-up time and memory that
// most runs never use. Only the two entry points at the end are visible outside.

#include "output/export/MagickWriter.h"

#include <Magick++.h>
#include <QCoreApplication>
#include <mutex>

namespace fw::magick {

static void initOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Magick::InitializeMagick(QCoreApplication::applicationFilePath().toLocal8Bit().constData());
    });
}

bool fitsLimits(int width, int height)
{
    initOnce();
    using namespace MagickCore;
    if (width < 1 || height < 1) return false;
    const double w = width, h = height;
    if (w > double(GetMagickResourceLimit(WidthResource))) return false;
    if (h > double(GetMagickResourceLimit(HeightResource))) return false;
    if (w * h > double(GetMagickResourceLimit(AreaResource))) return false;
    // The pixel cache takes 8 bytes a pixel and must fit in memory and the memory map.
    const double cache = double(GetMagickResourceLimit(MemoryResource)) +
                         double(GetMagickResourceLimit(MapResource));
    return w * h * 8.0 <= cache;
}

QByteArray encode(const QImage &picture, ExportFormat format, const ExporterSettings &s)
{
    if (picture.isNull() || !fitsLimits(picture.width(), picture.height())) return {};
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    try {
        // RGB32 is B, G, R and a pad byte in memory, rows without gaps.
        Magick::Image img(size_t(rgb.width()), size_t(rgb.height()), "BGRP", Magick::CharPixel,
                          rgb.constBits());
        img.depth(8);
        // 72 dots per inch wherever the format carries a resolution.
        img.resolutionUnits(Magick::PixelsPerInchResolution);
        img.density(Magick::Geometry(72, 72));
        switch (format) {
        case ExportFormat::JPEG:
            img.magick("JPEG");
            img.quality(size_t(s.jpegQuality));
            img.interlaceType(s.jpegProgressive ? Magick::PlaneInterlace : Magick::NoInterlace);
            break;
        case ExportFormat::TIFF:
            img.magick("TIFF");
            img.compressType(s.tiffCompression == TiffCompression::None  ? Magick::NoCompression
                             : s.tiffCompression == TiffCompression::Zip ? Magick::ZipCompression
                                                                         : Magick::LZWCompression);
            break;
        case ExportFormat::PICT:
            img.magick("PICT");
            break;
        case ExportFormat::PSD:
            img.magick("PSD");
            img.compressType(s.psdRle ? Magick::RLECompression : Magick::NoCompression);
            break;
        case ExportFormat::PNG:
            img.magick("PNG");
            img.defineValue("png", "compression-level", std::to_string(s.pngCompression));
            img.interlaceType(s.pngInterlaced ? Magick::LineInterlace : Magick::NoInterlace);
            break;
        case ExportFormat::BMP:
            if (s.bmpDepth == 32) {
                // The version 3 coder never writes 32 bits; the current one does, with an
                // opaque alpha channel.
                img.magick("BMP");
                img.alphaChannel(Magick::OpaqueAlphaChannel);
                img.type(Magick::TrueColorMatteType);
            } else {
                img.magick("BMP3");
                img.type(Magick::TrueColorType);
            }
            break;
        case ExportFormat::Targa:
            img.magick("TGA");
            // Rows are written top row first: the header must say so, or readers other than
            // ImageMagick show the picture upside down.
            img.orientation(Magick::TopLeftOrientation);
            img.compressType(s.targaRle ? Magick::RLECompression : Magick::NoCompression);
            break;
        case ExportFormat::None:
            return {};
        }
        Magick::Blob blob;
        img.write(&blob);
        return QByteArray(static_cast<const char *>(blob.data()), qsizetype(blob.length()));
    } catch (const std::exception &e) {
        qWarning("vantrel.output: ImageMagick could not encode the picture: %s", e.what());
        return {};
    }
}

} // namespace fw::magick

extern "C" __attribute__((visibility("default"))) bool vantrel_magick_fitsLimits(int width,
                                                                                 int height)
{
    return fw::magick::fitsLimits(width, height);
}

extern "C" __attribute__((visibility("default"))) void
vantrel_magick_encode(const QImage &picture, fw::ExportFormat format, const fw::ExporterSettings &s,
                      QByteArray &out)
{
    out = fw::magick::encode(picture, format, s);
}
