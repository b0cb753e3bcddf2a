#include "output/OutputNaming.h"

#include "output/export/GraphicsExporter.h"
#include "platform/core/EventLoop.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace output {

bool nameTaken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

QString quickSaveName(const QString &extension, const Exists &exists)
{
    QString name = "Capture." + extension;
    for (int counter = 1; exists(name); ++counter) {
        name = "Capture" + QString::number(counter) + "." + extension;
        fw::yieldOnce();
    }
    return name;
}

QString mailFileName(const Exists &exists)
{
    QString name = "vtp1";
    // The first pass builds vtp1 again; 2 comes on the second pass.
    for (int counter = 1; exists(name); ++counter) {
        name = "vtp" + QString::number(counter);
        fw::yieldOnce();
    }
    return name;
}

fw::ExportStatus exportUnderFreeName(fw::GraphicsExporter &exporter,
                                     const std::function<void()> &nextName)
{
    fw::ExportStatus status = exporter.Export();
    // Bounded: a name that stays taken though no search sees it must not hang the program.
    for (int tries = 0; status == fw::ExportStatus::NameTaken && tries < 100; ++tries) {
        nextName();
        status = exporter.Export();
    }
    return status;
}

QString saveAsSuggestion(const QString &extension)
{
    return "capture." + extension.toLower();
}

QString unixPath(const QString &path)
{
    return QDir::cleanPath(QDir(path).absolutePath());
}

QString absolutePath(const QString &path)
{
    QByteArray url = QUrl::fromLocalFile(unixPath(path)).toEncoded();
    // Quotes and commas are legal in a URL, but mail programs' command lines split on them.
    url.replace("'", "%27").replace(",", "%2C").replace("\"", "%22");
    return QString::fromLatin1(url);
}

} // namespace output
