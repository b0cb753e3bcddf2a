// The one derived picture: the capture at the current scale with the caption burned in. Every
// output reads this picture; painting only copies from it.

#include "editor/Caption.h"
#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "platform/core/Failure.h"
#include "platform/core/Picture.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QLineEdit>
#include <QPainter>
#include <cmath>

editor::ScaledPicture Window1::getscaledimage()
{
    const double factor = editor::scaleFactor(currentscale);
    if (mypic.isNull()) return {};
    const bool smooth = prefwin::live().quartz();
    const bool banded = !captionText->isHidden() && !captionText->text().isEmpty();

    if (factor > 1.0) {
        // Larger than the capture: described, not drawn. The preview renders what it shows and
        // the outputs the whole, with the same pixels.
        const QSize size = editor::scaledSize(mypic.size(), factor);
        editor::Caption::Placed band;
        if (banded) band = editor::Caption::make(captionText->text(), size);
        return editor::ScaledPicture::described(
            mypic, factor, size, smooth ? editor::ScalingPath::Smooth : editor::ScalingPath::Plain,
            band.band, band.at);
    }

    QImage result;
    if (smooth) {
        // Smooth: the capture scaled in one pass to a rectangle that keeps its fractions; the
        // partial last column and row fall outside the result. Scaling down averages areas.
        const QRectF rect(0, 0, mypic.width() * factor, mypic.height() * factor);
        const QSize size(editor::toInt(rect.width()), editor::toInt(rect.height()));
        // No picture of a size below one pixel can be made.
        if (size.width() < 1 || size.height() < 1) throw fw::NilObjectException();
        const QSize whole(editor::toInt(std::ceil(rect.width())),
                          editor::toInt(std::ceil(rect.height())));
        result = mypic.scaled(whole, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (result.size() != size) result = result.copy(0, 0, size.width(), size.height());
        if (result.format() != QImage::Format_RGB32)
            result = result.convertToFormat(QImage::Format_RGB32);
        fw::nilCheck(result);
    } else {
        // The capture at full size (its pixels as they are), stretched over the whole result
        // without smoothing.
        const QImage temp = mypic;
        const QSize size = editor::scaledSize(temp.size(), factor);
        if (size == temp.size()) {
            result = temp; // one to one: the pixels as they are (shared until written)
        } else {
            result = fw::nilCheck(fw::NewPicture(size.width(), size.height()));
            QPainter p(&result);
            p.setCompositionMode(QPainter::CompositionMode_Source);
            p.drawImage(QRect(0, 0, result.width(), result.height()), temp, temp.rect());
        }
    }

    if (banded) editor::Caption::burnInto(result, captionText->text());
    return editor::ScaledPicture::fromPixels(result);
}

QImage Window1::getoutputimage() const
{
    if (ScaledImage.isNull()) return {};
    // The whole picture of a large scale is made here; one that can't be held is a nil picture.
    return fw::nilCheck(ScaledImage.toImage());
}
