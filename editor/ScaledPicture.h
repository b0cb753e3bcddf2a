#pragma once
// The one derived picture of the editor. Up to 100 % it holds its pixels. Above, where the whole
// picture would be up to a hundred times the capture, it is a description (the capture, the
// size, the scaling path and the caption band) from which any rectangle is rendered on demand:
// the preview renders only what is visible, and the outputs render the whole picture once.
// Every pixel is a function of its own position alone, so a rectangle rendered by itself equals
// the same rectangle of the whole picture.

#include <QImage>
#include <QPoint>
#include <QRect>
#include <memory>

class QPainter;

namespace editor {

enum class ScalingPath { Smooth, Plain };

class ScaledPicture {
public:
    ScaledPicture() = default; // nil
    // A picture that holds its pixels.
    static ScaledPicture fromPixels(const QImage &pixels);
    // The source scaled by factor (> 1) to size, with the band drawn at bandAt (a null band is
    // none).
    static ScaledPicture described(const QImage &source, double factor, QSize size,
                                   ScalingPath path, const QImage &band, QPoint bandAt);

    bool isNull() const { return !d; }
    QSize size() const;
    int width() const { return size().width(); }
    int height() const { return size().height(); }
    bool holdsPixels() const;

    // The pixels of a rectangle of the picture (clipped to it), as RGB32.
    QImage render(const QRect &rect) const;
    // Draws the part of the picture within source with its top left at `at`.
    void draw(QPainter &painter, QPoint at, const QRect &source) const;
    // The whole picture, built on first use and kept for later outputs; null when it can't be
    // held.
    QImage toImage() const;
    // Lets go of the screenful the preview renders into (made again by the next paint).
    static void releaseScratch();

private:
    void renderInto(QImage &out, const QRect &r) const;
    void renderInParallel(QImage &out, const QRect &r) const;

    struct Data;
    std::shared_ptr<Data> d;
};

} // namespace editor
