#include "recent/RecentStore.h"

#include "recent/RecentMath.h"

#include "platform/core/Logging.h"
#include "platform/system/Memory.h"

#include <QCoreApplication>
#include <QPainter>
#include <QThreadPool>
#include <atomic>
#include <zstd.h>

namespace recent {

struct RecentStore::Entry {
    QSize size;
    QImage::Format format = QImage::Format_Invalid;
    QList<QRgb> colours;
    QImage thumbnail;
    QImage raw;        // until the packed copy is made (main thread only)
    QByteArray packed; // written by the worker before `ready`
    std::atomic<bool> ready = false;
};

namespace {

// zstd's fastest level: 1920x1080 in ~15 ms on a worker, back in ~5 ms, typically to a tenth.
constexpr int kLevel = 1;

QImage thumbnailOf(const QImage &picture)
{
    // What the drawer used to draw from the whole picture, drawn once: the cell's square is
    // transparent wherever the picture doesn't reach.
    QImage t(kThumbBox, kThumbBox, QImage::Format_ARGB32_Premultiplied);
    if (t.isNull()) return t;
    t.fill(Qt::transparent);
    QPainter p(&t);
    p.setRenderHint(QPainter::SmoothPixmapTransform, true);
    const int side = thumbnailFor(picture.size(), 0, 0).sourceSide;
    p.drawImage(QRect(0, 0, kThumbBox, kThumbBox), picture, QRect(0, 0, side, side));
    return t;
}

// Rows without padding: anything else is kept as it is.
bool packable(const QImage &picture)
{
    return !picture.isNull() &&
           picture.bytesPerLine() == ((picture.width() * picture.depth() + 31) >> 5) << 2;
}

} // namespace

void RecentStore::append(const QImage &picture)
{
    auto e = std::make_shared<Entry>();
    e->size = picture.size();
    e->format = picture.format();
    e->colours = picture.colorTable();
    e->thumbnail = thumbnailOf(picture);
    e->raw = picture;
    m_entries.append(e);
    if (m_entries.size() > kCapacity) m_entries.removeFirst();
    if (!packable(picture)) return;
    std::weak_ptr<Entry> weak = e;
    QThreadPool::globalInstance()->start([weak, picture] {
        const size_t bytes = size_t(picture.sizeInBytes());
        QByteArray out(qsizetype(ZSTD_compressBound(bytes)), Qt::Uninitialized);
        const size_t n =
            ZSTD_compress(out.data(), size_t(out.size()), picture.constBits(), bytes, kLevel);
        if (ZSTD_isError(n)) {
            qCWarning(lcRecent) << "a capture can't be packed:" << ZSTD_getErrorName(n);
            return;
        }
        out.resize(qsizetype(n));
        out.squeeze();
        if (auto entry = weak.lock()) {
            entry->packed = std::move(out);
            entry->ready.store(true, std::memory_order_release);
        }
        // The raw copy goes on the main thread, which alone touches it.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [weak] {
                if (auto entry = weak.lock()) {
                    entry->raw = QImage();
                    qCDebug(lcRecent)
                        << "packed" << entry->size << "in" << entry->packed.size() << "bytes";
                }
                fw::returnFreedMemory();
            },
            Qt::QueuedConnection);
    });
}

void RecentStore::clear()
{
    m_entries.clear();
    fw::returnFreedMemory();
}

QSize RecentStore::pictureSize(int i) const
{
    return m_entries.at(i)->size;
}

QImage RecentStore::picture(int i) const
{
    const Entry &e = *m_entries.at(i);
    if (!e.raw.isNull() || !e.ready.load(std::memory_order_acquire)) return e.raw;
    QImage out(e.size, e.format);
    if (out.isNull()) return out; // beyond what can be held now: nil
    const size_t n = ZSTD_decompress(out.bits(), size_t(out.sizeInBytes()), e.packed.constData(),
                                     size_t(e.packed.size()));
    if (ZSTD_isError(n) || n != size_t(out.sizeInBytes())) {
        qCWarning(lcRecent) << "a packed capture can't be read back";
        return {};
    }
    out.setColorTable(e.colours);
    return out;
}

bool RecentStore::isPacked(int i) const
{
    return m_entries.at(i)->ready.load(std::memory_order_acquire) && m_entries.at(i)->raw.isNull();
}

void RecentStore::drawThumbnail(QPainter &g, int i, QPoint at) const
{
    g.drawImage(at, m_entries.at(i)->thumbnail);
}

} // namespace recent
