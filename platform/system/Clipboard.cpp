#include "platform/system/Clipboard.h"

#include "platform/core/Logging.h"
#include "platform/core/X11.h"

#include <QBuffer>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <algorithm>
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

// One conversion of the clipboard by xclip, given up at the deadline. Events other than user
// input go on meanwhile, so that a selection we own ourselves is still served.
QByteArray xclipOut(const QString &target, const QDeadlineTimer &deadline)
{
    QProcess p;
    p.setStandardInputFile(QProcess::nullDevice());
    p.setStandardErrorFile(QProcess::nullDevice());
    QEventLoop loop;
    QObject::connect(&p, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&p, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    p.start(QStringLiteral("xclip"), {"-o", "-selection", "clipboard", "-t", target});
    timer.start(std::max<qint64>(0, deadline.remainingTime()));
    if (p.state() != QProcess::NotRunning) loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (p.state() != QProcess::NotRunning) {
        // An owner that doesn't answer: the read is over, and the picture not available.
        p.kill();
        p.waitForFinished(500);
        return {};
    }
    return p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0 ? p.readAllStandardOutput()
                                                                       : QByteArray();
}

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
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 20);
        QThread::msleep(10);
    }
}

bool Clipboard::readThroughX11()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return false;
    if (QStandardPaths::findExecutable(QStringLiteral("xclip")).isEmpty()) return false;
    // The capture helper's PNG asked for at once; else one request for the types and one for
    // the best picture type. All within 2 seconds. Some owners answer any type with what they
    // hold (xclip with text does): only a PNG's signature counts as the PNG.
    const QDeadlineTimer deadline(2000);
    m_bytes = xclipOut(QStringLiteral("image/png"), deadline);
    if (m_bytes.startsWith("\x89PNG\r\n\x1a\n")) return m_available = true;
    m_bytes.clear();
    const QList<QByteArray> targets = xclipOut(QStringLiteral("TARGETS"), deadline).split('\n');
    QByteArray best;
    for (const char *f : kPreferred)
        if (best.isEmpty() && targets.contains(QByteArray(f))) best = f;
    for (const QByteArray &t : targets)
        if (best.isEmpty() && t.startsWith("image/")) best = t;
    if (best.isEmpty()) return true;
    m_bytes = xclipOut(QString::fromLatin1(best), deadline);
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
