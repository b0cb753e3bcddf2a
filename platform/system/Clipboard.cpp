#include "platform/system/Clipboard.h"

#include "platform/core/Logging.h"
#include "platform/core/X11.h"
#include "platform/system/SelectionReader.h"

#include <QBuffer>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QThread>
#include <cstdlib>
#include <xcb/xcb.h>

namespace fw {

namespace {

const char *const kPreferred[] = {"image/png",
                                  "image/bmp",
                                  "image/x-bmp",
                                  "image/tiff",
                                  "image/jpeg",
                                  "image/gif",
                                  "image/x-portable-pixmap"};

} // namespace

quint32 Clipboard::owner()
{
    xcb_connection_t *conn = x11::connection();
    const xcb_atom_t clipboard = conn ? x11::atom(conn, "CLIPBOARD") : xcb_atom_t(XCB_ATOM_NONE);
    if (clipboard == XCB_ATOM_NONE) return 0;
    xcb_get_selection_owner_reply_t *reply =
        xcb_get_selection_owner_reply(conn, xcb_get_selection_owner(conn, clipboard), nullptr);
    const quint32 window = reply ? reply->owner : 0;
    std::free(reply);
    return window;
}

static void waitForNewOwner(quint32 before)
{
    QElapsedTimer waited;
    waited.start();
    while (Clipboard::owner() == before && waited.elapsed() < 500) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 2);
        QThread::msleep(2);
    }
}

bool Clipboard::readThroughX11()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return false;
    SelectionReader reader{QDeadlineTimer(2000)};
    if (!reader.isValid()) return false;
    // The capture helper's PNG asked for at once; else one request for the types and one for
    // the best picture type. All within 2 seconds. Some owners answer any type with what they
    // hold (xclip with text does): only a PNG's signature counts as the PNG.
    m_bytes = reader.read("image/png");
    if (m_bytes.startsWith("\x89PNG\r\n\x1a\n")) return m_available = true;
    m_bytes.clear();
    const QList<QByteArray> targets = reader.read("TARGETS").split('\n');
    QByteArray best;
    for (const char *f : kPreferred)
        if (best.isEmpty() && targets.contains(QByteArray(f))) best = f;
    for (const QByteArray &t : targets)
        if (best.isEmpty() && t.startsWith("image/")) best = t;
    if (best.isEmpty()) return true;
    m_bytes = reader.read(best);
    m_available = !m_bytes.isEmpty();
    qCDebug(lcCapture) << "clipboard offers" << best << "," << m_bytes.size() << "bytes";
    return true;
}

Clipboard::Clipboard(std::optional<quint32> ownerBefore)
{
    if (ownerBefore && QGuiApplication::platformName() == QLatin1String("xcb"))
        waitForNewOwner(*ownerBefore);
    if (readThroughX11()) return;
    // The capture helper has just handed the selection over; let the ownership change arrive so
    // that we don't read our own stale copy.
    QCoreApplication::processEvents();
    const QMimeData *md = QGuiApplication::clipboard()->mimeData();
    if (!md) return;
    QStringList formats;
    for (const char *f : kPreferred)
        formats << QString::fromLatin1(f);
    for (const QString &f : md->formats())
        if (f.startsWith("image/") && !formats.contains(f)) formats << f;
    for (const QString &f : formats) {
        if (!md->formats().contains(f)) continue;
        QByteArray bytes = md->data(f);
        if (!bytes.isEmpty()) {
            m_available = true;
            m_bytes = bytes;
            return;
        }
    }
    if (md->hasImage()) {
        // In-process clipboards (no X server) hand over the image itself.
        m_image = qvariant_cast<QImage>(md->imageData());
        m_available = !m_image.isNull();
    }
}

QImage Clipboard::Picture() const
{
    if (!m_image.isNull() || m_bytes.isEmpty()) return m_image;
    QBuffer buf;
    buf.setData(m_bytes);
    buf.open(QIODevice::ReadOnly);
    QImageReader reader(&buf);
    // A picture beyond QImageReader's allocation limit reads as nil.
    return reader.read();
}

} // namespace fw
