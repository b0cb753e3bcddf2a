#pragma once
// Encoding through ImageMagick (Magick++). A picture beyond ImageMagick's resource limits is
// refused here: importing it would abort the whole process. The writer lives in a module loaded
// on first use (MagickModule.cpp); where it can't be loaded nothing fits and nothing is encoded.

#include "output/export/ExporterSettings.h"

#include <QByteArray>
#include <QImage>

namespace fw::magick {

// Whether ImageMagick can take a picture of this size within its limits.
bool fitsLimits(int width, int height);
// The encoded file, or an empty array when the picture can't be encoded.
QByteArray encode(const QImage &picture, ExportFormat format, const ExporterSettings &s);

} // namespace fw::magick
