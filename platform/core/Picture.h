#pragma once
// Pictures at depth 32 and the opaque image made of a picture and a mask.

#include <QImage>

namespace fw {
// A new picture filled white, or a null image (nil) when the size is below 1 or too large.
QImage NewPicture(int width, int height);
// A plain pixel copy of a picture at depth 32 (sharing the pixels where it can).
QImage BitmapOf(const QImage &picture);
// The image of `picture` seen through `mask` (black opaque, white transparent). With an
// all-black mask it is the picture itself, opaque. Nil when the sizes differ or either is nil.
QImage CGCreateImage(const QImage &picture, const QImage &mask);
} // namespace fw
