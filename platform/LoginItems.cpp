#include "platform/LoginItems.h"

#include "platform/Bundle.h"
#include "platform/DesktopEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace fw {

LoginItems::LoginItems(QString autostartFolder) : m_folder(std::move(autostartFolder)) {}

QStringList LoginItems::entries() const
{
    QStringList out;
    const QDir dir(m_folder);
    for (const QString &name : dir.entryList({"*.desktop"}, QDir::Files, QDir::Name))
        out << dir.filePath(name);
    return out;
}

static QString readText(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(f.read(1 << 20));
}

QString LoginItems::launchedPath(const QStringList &argv)
{
    if (argv.isEmpty()) return {};
    const QString program = QDir::cleanPath(argv.first());
    const QString marker = QStringLiteral(".app/Contents/MacOS/");
    const int at = program.lastIndexOf(marker, -1, Qt::CaseInsensitive);
    if (at >= 0 && !program.mid(at + marker.size()).contains('/')) return program.left(at + 4);
    return program;
}

int LoginItems::OldCountOfLoginItems(bool) const { return int(entries().size()); }

QString LoginItems::OldLoginItemPropertyAtIndex(int property, int index, bool) const
{
    const QStringList list = entries();
    if (index < 0 || index >= list.size()) return {};
    const QString text = readText(list[index]);
    if (property == 2) return desktopentry::unescaped(desktopentry::value(text, "Name"));
    if (property == 1) return launchedPath(desktopentry::parseExec(desktopentry::value(text, "Exec")));
    return {};
}

bool LoginItems::OldRemoveLoginItem(const QString &bundlePath, bool)
{
    const QStringList list = entries();
    for (int i = 0; i < list.size(); ++i)
        if (OldLoginItemPropertyAtIndex(1, i, false).compare(bundlePath, Qt::CaseInsensitive) == 0)
            return QFile::remove(list[i]);
    return false;
}

bool LoginItems::OldRemoveLoginItemAtIndex(int index, bool)
{
    const QStringList list = entries();
    if (index < 0 || index >= list.size()) return false;
    return QFile::remove(list[index]);
}

bool LoginItems::OldAddLoginItem(const QString &bundlePath, bool, bool)
{
    const QFileInfo bundle(bundlePath);
    QString base = bundle.completeBaseName();
    base.replace(QRegularExpression("[^A-Za-z0-9._-]"), "_");
    if (base.isEmpty()) base = QStringLiteral("login-item");
    QDir().mkpath(m_folder);
    const QString exe = Bundle::executableOf(bundle.absoluteFilePath());
    const QByteArray text =
        desktopentry::applicationEntry(bundle.fileName(), {exe}, QStringLiteral("Screen capture"))
            .toUtf8();
    // A new file of its own, never another program's entry and never through a link.
    for (int n = 1; n < 1000; ++n) {
        const QString name = n == 1 ? base : QStringLiteral("%1-%2").arg(base).arg(n);
        const QByteArray path = QFile::encodeName(m_folder + "/" + name + ".desktop");
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0644);
        if (fd < 0) {
            if (errno == EEXIST) continue;
            return false;
        }
        const bool ok = ::write(fd, text.constData(), size_t(text.size())) == text.size();
        ::close(fd);
        return ok;
    }
    return false;
}

} // namespace fw
