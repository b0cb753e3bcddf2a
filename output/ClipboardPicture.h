#pragma once
// What Copy hands to the clipboard: the picture, and with a description the PNG that other
// programs ask for carries it. That PNG is encoded when a program first asks, as Qt does for a
// plain picture, so Copy stays as quick as without a caption.

#include <QImage>
#include <QMimeData>
#include <QString>

namespace output {

// For QClipboard::setMimeData, which takes it over. Without a description, a plain picture.
QMimeData *clipboardPicture(const QImage &picture, const QString &description);

} // namespace output
