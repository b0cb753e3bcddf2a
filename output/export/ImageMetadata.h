#pragma once
// A picture's description added to a file already encoded, in the form each format's readers
// look for: PNG's iTXt, JPEG's EXIF and XMP, TIFF's ImageDescription and XMP tags, Photoshop's
// XMP resource and Targa's extension-area comments. Only metadata is added; the bytes that hold
// the pixels and the settings are left as the encoder wrote them.

#include "output/export/ExporterSettings.h"

#include <QByteArray>
#include <QString>

namespace fw::metadata {

// The file with the description in it. The file as it was when the description is blank, when
// the format holds none (BMP, PICT) or when the bytes are not the format's.
QByteArray withDescription(const QByteArray &file, ExportFormat format, const QString &description);

// A PNG chunk: its length, type, data and CRC.
QByteArray pngChunk(const char *type, const QByteArray &data);

} // namespace fw::metadata
