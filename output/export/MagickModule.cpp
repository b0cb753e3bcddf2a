// The program's side of the ImageMagick writer: the module is loaded from beside the program (or
// from the build's bundle, for the test and benchmark programs beside it) on first use.

#include "output/export/MagickWriter.h"

#include "platform/core/Logging.h"

#include <QCoreApplication>
#include <QLibrary>

namespace fw::magick {

namespace {

struct Module {
    bool (*fits)(int, int) = nullptr;
    void (*encode)(const QImage &, ExportFormat, const ExporterSettings &, QByteArray &) = nullptr;
};

const Module &module()
{
    static const Module m = [] {
        Module found;
        const QString here = QCoreApplication::applicationDirPath();
        for (const QString &dir : {here, here + QStringLiteral("/../Vantrel.app/Contents/MacOS")}) {
            QLibrary lib(dir + QStringLiteral("/libvantrel-magick"));
            if (!lib.load()) continue;
            found.fits =
                reinterpret_cast<decltype(found.fits)>(lib.resolve("vantrel_magick_fitsLimits"));
            found.encode =
                reinterpret_cast<decltype(found.encode)>(lib.resolve("vantrel_magick_encode"));
            if (found.fits && found.encode) return found;
            found = Module();
        }
        qCWarning(lcOutput) << "the ImageMagick writer can't be loaded from" << here;
        return found;
    }();
    return m;
}

} // namespace

bool fitsLimits(int width, int height)
{
    const Module &m = module();
    return m.fits && m.fits(width, height);
}

QByteArray encode(const QImage &picture, ExportFormat format, const ExporterSettings &s)
{
    QByteArray out;
    if (const Module &m = module(); m.encode) m.encode(picture, format, s, out);
    return out;
}

} // namespace fw::magick
