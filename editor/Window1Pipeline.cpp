// The one derived picture: the capture at the current scale with the caption burned in. Every
// output reads this picture; painting only copies from it.

#include "editor/Caption.h"
#include "editor/EditorMath.h"
#include "editor/Window1.h"

#include "capture/CGImage.h"
#include "platform/Failure.h"
#include "prefs/prefwin.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPainter>

QImage Window1::getscaledimage()
{
    const double factor = editor::scaleFactor(currentscale);
    if (mypic.isNull()) return {};

    QImage result;
    if (prefwin::instance().quartz->isChecked()) {
        // Smooth: the capture drawn once into a rectangle that keeps its fractions.
        const QRectF rect(0, 0, mypic.width() * factor, mypic.height() * factor);
        result = fw::nilCheck(capture::NewPicture(editor::toInt(rect.width()),
                                                  editor::toInt(rect.height())));
        QPainter p(&result);
        p.setCompositionMode(QPainter::CompositionMode_Source);
        p.setRenderHint(QPainter::SmoothPixmapTransform, true);
        p.drawImage(rect, mypic);
    } else {
        // The capture at full size (its pixels as they are), stretched over the whole result
        // without smoothing.
        const QImage temp = mypic;
        const QSize size = editor::scaledSize(temp.size(), factor);
        result = fw::nilCheck(capture::NewPicture(size.width(), size.height()));
        QPainter p(&result);
        p.setCompositionMode(QPainter::CompositionMode_Source);
        p.drawImage(QRect(0, 0, result.width(), result.height()), temp, temp.rect());
    }

    if (!captionText->isHidden() && !captionText->text().isEmpty())
        editor::Caption::burnInto(result, captionText->text());
    return result;
}

QImage Window1::getoutputimage() const { return ScaledImage; }
