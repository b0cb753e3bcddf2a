#include "editor/Caption.h"

#include "editor/EditorMath.h"
#include "platform/core/Failure.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <cmath>

namespace editor {

QFont Caption::font()
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(11);
    f.setStyleHint(QFont::SansSerif);
    return f;
}

double Caption::StringWidth(const QString &text)
{
    return QFontMetricsF(font()).horizontalAdvance(text);
}

// Lays the text out in lines no wider than the width; returns the number of lines.
static int layoutLines(QTextLayout &layout, double wrapWidth)
{
    QTextOption opt;
    opt.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(opt);
    layout.beginLayout();
    const double lineHeight = QFontMetricsF(layout.font()).lineSpacing();
    int n = 0;
    for (;;) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(std::max(1.0, wrapWidth));
        line.setPosition(QPointF(0, n * lineHeight));
        ++n;
    }
    layout.endLayout();
    return n;
}

int Caption::StringHeight(const QString &text, int wrapWidth)
{
    QTextLayout layout(text, font());
    const int lines = std::max(1, layoutLines(layout, wrapWidth));
    return toInt(std::ceil(lines * QFontMetricsF(font()).lineSpacing()));
}

QImage Caption::band(const QString &text, int width, int height)
{
    if (width < 1 || height < 1) return {};
    QImage band(width, height, QImage::Format_ARGB32_Premultiplied);
    if (band.isNull()) return band;
    band.fill(Qt::transparent);
    QPainter p(&band);
    // The plate: black, 110 of 255 grey in the mask, so 145/255 opaque; arcs of 10.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 145));
    p.drawRoundedRect(QRectF(0, 0, width, height), 5, 5);
    // The letters replace the plate: fully opaque white.
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.setRenderHint(QPainter::TextAntialiasing, true);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::white);
    QTextLayout layout(text, font());
    layoutLines(layout, width - 4);
    const double ascent = QFontMetricsF(font()).ascent();
    layout.draw(&p, QPointF(3, 14 - ascent));
    return band;
}

Caption::Placed Caption::make(const QString &text, QSize picture)
{
    const int W = picture.width();
    const int bw = bandWidth(StringWidth(text), W);
    const int bh = StringHeight(text, W - 14) + 6;
    const BandGeometry g = placeBand(picture, bw, bh);
    return {fw::nilCheck(band(text, bw, bh)), QPoint(g.x, g.y)};
}

void Caption::blend(QImage &picture, QPoint at, const QImage &band)
{
    const QRect r = QRect(at, band.size()) & picture.rect();
    for (int y = r.top(); y <= r.bottom(); ++y) {
        auto *d = reinterpret_cast<quint32 *>(picture.scanLine(y));
        const auto *s = reinterpret_cast<const quint32 *>(band.constScanLine(y - at.y()));
        for (int x = r.left(); x <= r.right(); ++x) {
            const quint32 src = s[x - at.x()], inv = 255 - qAlpha(src);
            if (inv == 255) continue;
            const quint32 dst = d[x];
            // Premultiplied "over": source plus destination times what the source leaves.
            auto channel = [&](int shift) {
                quint32 t = ((dst >> shift) & 0xff) * inv + 128;
                t = (t + (t >> 8)) >> 8;
                return (((src >> shift) & 0xff) + t) << shift;
            };
            d[x] = 0xff000000u | channel(16) | channel(8) | channel(0);
        }
    }
}

void Caption::burnInto(QImage &picture, const QString &text)
{
    const Placed p = make(text, picture.size());
    if (picture.format() != QImage::Format_RGB32)
        picture = picture.convertToFormat(QImage::Format_RGB32);
    blend(picture, p.at, p.band);
}

} // namespace editor
