#include "editor/ScaledPicture.h"

#include "editor/Caption.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace editor {

struct ScaledPicture::Data {
    QImage pixels; // set when the picture holds its pixels
    QImage source;
    double factor = 1.0;
    QSize size;
    ScalingPath path = ScalingPath::Smooth;
    QImage band;
    QPoint bandAt;
    QImage whole; // the whole picture of a description, once an output asked for it
};

namespace {

// Where each output column (or row) of a rectangle samples the source: the left (top) source
// pixel and the weight of its right (lower) neighbour in 256ths. Pixel centres map to pixel
// centres, as in any bilinear scaling.
struct Taps {
    std::vector<int> first;
    std::vector<int> weight;
};

Taps bilinearTaps(int from, int count, double factor, int sourceLength)
{
    Taps t;
    t.first.resize(size_t(count));
    t.weight.resize(size_t(count));
    for (int i = 0; i < count; ++i) {
        const double s = std::max(0.0, (from + i + 0.5) / factor - 0.5);
        int first = int(s);
        int w = int((s - first) * 256.0 + 0.5);
        if (first >= sourceLength - 1) first = sourceLength - 1, w = 0;
        t.first[size_t(i)] = first;
        t.weight[size_t(i)] = std::clamp(w, 0, 256);
    }
    return t;
}

// Two rows mixed byte by byte with one weight: the bulk of the work, written so that the
// compiler can do it 16 bytes at a time.
void mixRows(const quint8 *__restrict a, const quint8 *__restrict b, quint8 *__restrict o, int n,
             quint32 w)
{
    const quint16 wb = quint16(w), wa = quint16(256 - w);
    for (int i = 0; i < n; ++i)
        o[i] = quint8((a[i] * wa + b[i] * wb) >> 8);
}

// The same with a weight per pixel, given per byte.
void mixRowsEach(const quint8 *__restrict a, const quint8 *__restrict b,
                 const quint16 *__restrict w, quint8 *__restrict o, int n)
{
    for (int i = 0; i < n; ++i)
        o[i] = quint8((a[i] * (256 - w[i]) + b[i] * w[i]) >> 8);
}

void renderSmooth(const QImage &src, double factor, const QRect &r, QImage &out)
{
    const Taps xs = bilinearTaps(r.left(), r.width(), factor, src.width());
    const Taps ys = bilinearTaps(r.top(), r.height(), factor, src.height());
    const int n = r.width();
    const int last = src.width() - 1;
    std::vector<quint16> weights(size_t(n) * 4);
    for (int i = 0; i < n * 4; ++i)
        weights[size_t(i)] = quint16(xs.weight[size_t(i / 4)]);
    std::vector<quint32> left(static_cast<size_t>(n)), right(static_cast<size_t>(n));
    // Source rows mixed across, each once: the two that the current output row mixes down.
    std::vector<quint32> across[2] = {std::vector<quint32>(size_t(n)),
                                      std::vector<quint32>(size_t(n))};
    int held[2] = {-1, -1};
    auto rowAcross = [&](int sy) -> const quint32 * {
        for (int k = 0; k < 2; ++k)
            if (held[k] == sy) return across[k].data();
        const int k = held[0] < held[1] ? 0 : 1; // rows only go down: drop the upper one
        const auto *line = reinterpret_cast<const quint32 *>(src.constScanLine(sy));
        for (int i = 0; i < n; ++i) {
            const int x0 = xs.first[size_t(i)];
            left[size_t(i)] = line[x0];
            right[size_t(i)] = line[std::min(x0 + 1, last)];
        }
        mixRowsEach(reinterpret_cast<const quint8 *>(left.data()),
                    reinterpret_cast<const quint8 *>(right.data()), weights.data(),
                    reinterpret_cast<quint8 *>(across[k].data()), n * 4);
        held[k] = sy;
        return across[k].data();
    };
    const int lastRow = src.height() - 1;
    for (int j = 0; j < r.height(); ++j) {
        const int y0 = ys.first[size_t(j)];
        const quint32 w = quint32(ys.weight[size_t(j)]);
        const quint32 *a = rowAcross(y0);
        auto *o = reinterpret_cast<quint32 *>(out.scanLine(j));
        if (w == 0) {
            std::memcpy(o, a, size_t(n) * 4);
            continue;
        }
        // Rows only go down, so fetching the lower row never drops the upper one.
        const quint32 *b = rowAcross(std::min(y0 + 1, lastRow));
        mixRows(reinterpret_cast<const quint8 *>(a), reinterpret_cast<const quint8 *>(b),
                reinterpret_cast<quint8 *>(o), n * 4, w);
    }
}

int nearestTap(int i, double factor, int sourceLength)
{
    return std::min(int((i + 0.5) / factor), sourceLength - 1);
}

void renderPlain(const QImage &src, double factor, const QRect &r, QImage &out)
{
    std::vector<int> xs(size_t(r.width()));
    for (int i = 0; i < r.width(); ++i)
        xs[size_t(i)] = nearestTap(r.left() + i, factor, src.width());
    int previous = -1;
    for (int j = 0; j < r.height(); ++j) {
        const int sy = nearestTap(r.top() + j, factor, src.height());
        auto *o = reinterpret_cast<quint32 *>(out.scanLine(j));
        if (sy == previous) {
            std::memcpy(o, out.constScanLine(j - 1), size_t(r.width()) * 4);
            continue;
        }
        const auto *line = reinterpret_cast<const quint32 *>(src.constScanLine(sy));
        for (int i = 0; i < r.width(); ++i)
            o[i] = line[xs[size_t(i)]];
        previous = sy;
    }
}

// One screenful kept from paint to paint: fresh pages for every slider step cost more than the
// rendering itself.
QImage &screenful()
{
    static QImage scratch;
    return scratch;
}

} // namespace

void ScaledPicture::releaseScratch()
{
    screenful() = QImage();
}

ScaledPicture ScaledPicture::fromPixels(const QImage &pixels)
{
    ScaledPicture p;
    if (pixels.isNull()) return p;
    p.d = std::make_shared<Data>();
    p.d->pixels = pixels;
    p.d->size = pixels.size();
    return p;
}

ScaledPicture ScaledPicture::described(const QImage &source, double factor, QSize size,
                                       ScalingPath path, const QImage &band, QPoint bandAt)
{
    ScaledPicture p;
    p.d = std::make_shared<Data>();
    p.d->source = source.format() == QImage::Format_RGB32
                      ? source
                      : source.convertToFormat(QImage::Format_RGB32);
    p.d->factor = factor;
    p.d->size = size;
    p.d->path = path;
    p.d->band = band;
    p.d->bandAt = bandAt;
    return p;
}

QSize ScaledPicture::size() const
{
    return d ? d->size : QSize();
}

bool ScaledPicture::holdsPixels() const
{
    return d && !d->pixels.isNull();
}

void ScaledPicture::renderInto(QImage &out, const QRect &r) const
{
    if (d->path == ScalingPath::Smooth)
        renderSmooth(d->source, d->factor, r, out);
    else
        renderPlain(d->source, d->factor, r, out);
    if (!d->band.isNull()) Caption::blend(out, d->bandAt - r.topLeft(), d->band);
}

QImage ScaledPicture::render(const QRect &rect) const
{
    if (!d) return {};
    const QRect r = rect & QRect(QPoint(0, 0), d->size);
    if (r.isEmpty()) return {};
    if (holdsPixels()) return d->pixels.copy(r).convertToFormat(QImage::Format_RGB32);
    if (!d->whole.isNull()) return d->whole.copy(r);
    QImage out(r.size(), QImage::Format_RGB32);
    if (!out.isNull()) renderInParallel(out, r);
    return out;
}

// A whole output picture is rendered in bands, one a core: each pixel depends on its position
// alone, so the bands join without a seam. The preview's screenful stays on one thread.
void ScaledPicture::renderInParallel(QImage &out, const QRect &r) const
{
    constexpr qint64 kBandPixels = qint64(1) << 20;
    const int cores = int(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
    const int bands =
        int(std::clamp<qint64>(qint64(r.width()) * r.height() / kBandPixels, 1, cores));
    if (bands == 1) {
        renderInto(out, r);
        return;
    }
    // Each band writes its own rows of `out` in place, through a view of them.
    uchar *const bits = out.bits();
    const qsizetype stride = out.bytesPerLine();
    // A band that fails (out of memory) is rethrown here once every thread has ended, as the
    // failure of the whole.
    std::vector<std::exception_ptr> failed(static_cast<size_t>(bands));
    const auto renderBand = [&, bits, stride](int i, int top, int height) {
        try {
            QImage band(bits + top * stride, out.width(), height, stride, out.format());
            renderInto(band, QRect(r.left(), r.top() + top, r.width(), height));
        } catch (...) {
            failed[size_t(i)] = std::current_exception();
        }
    };
    std::vector<std::thread> workers;
    workers.reserve(failed.size());
    const int rows = (r.height() + bands - 1) / bands;
    for (int top = 0, i = 0; top < r.height(); top += rows, ++i) {
        const int height = std::min(rows, r.height() - top);
        if (top + rows >= r.height()) {
            renderBand(i, top, height); // the last band on this thread
            continue;
        }
        try {
            workers.emplace_back(renderBand, i, top, height);
        } catch (const std::system_error &) { // no thread to be had: this one does it
            renderBand(i, top, height);
        }
    }
    for (std::thread &w : workers)
        w.join();
    for (const std::exception_ptr &e : failed)
        if (e) std::rethrow_exception(e);
}

void ScaledPicture::draw(QPainter &painter, QPoint at, const QRect &source) const
{
    if (!d) return;
    const QRect r = source & QRect(QPoint(0, 0), d->size);
    if (r.isEmpty()) return;
    const QPoint to = at + (r.topLeft() - source.topLeft());
    if (holdsPixels()) {
        painter.drawImage(to, d->pixels, r);
    } else if (!d->whole.isNull()) {
        painter.drawImage(to, d->whole, r);
    } else {
        QImage &scratch = screenful();
        if (scratch.size() != r.size()) scratch = QImage(r.size(), QImage::Format_RGB32);
        if (scratch.isNull()) return;
        renderInto(scratch, r);
        painter.drawImage(to, scratch);
    }
}

QImage ScaledPicture::toImage() const
{
    if (!d) return {};
    if (holdsPixels()) return d->pixels;
    if (d->whole.isNull()) d->whole = render(QRect(QPoint(0, 0), d->size));
    return d->whole;
}

} // namespace editor
