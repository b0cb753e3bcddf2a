#pragma once
// The drawer's column of thumbnails: cells of 155 pixels, each thumbnail fitted into 150.

#include <QRect>
#include <QSize>

namespace recent {

inline constexpr int kCellPitch = 155;
inline constexpr int kThumbBox = 150;

struct Thumbnail {
    int x, y; // top left of the drawing
    double drawnWidth, drawnHeight;
    int sourceSide; // the square source taken from the picture's top left
    QRect frame;    // the outline in grey 50
};
Thumbnail thumbnailFor(QSize picture, int index, int scrollValue);
// The entry under a release at y; may be negative or past the end.
int rowAt(int y, int scrollValue);
// The scroll range for a number of entries in a drawer of that height.
int scrollMaximum(int entries, int windowHeight);

} // namespace recent
