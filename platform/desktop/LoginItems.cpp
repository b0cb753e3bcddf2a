#include "platform/desktop/LoginItems.h"

#include "platform/desktop/Bundle.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/files/AtomicFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace fw {

static QString readText(const QString &path);

LoginItems::LoginItems(QString autostartFolder)
    : m_folder(std::move(autostartFolder)),
      m_links(QFileInfo(m_folder).absolutePath() + "/Vantrel/login-items")
{
}

// Whether every launcher reads this path in an Exec line as it is.
static bool plainForLaunchers(const QString &path)
{
    for (QChar c : path)
        if (c < QChar(' ') || QStringLiteral("$`\"\\%").contains(c)) return false;
    return true;
}

QString LoginItems::programPath(const QString &program) const
{
    if (plainForLaunchers(program)) return program;
    const QString folder =
        m_links + "/" +
        QCryptographicHash::hash(program.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
    if (!plainForLaunchers(folder)) return program;
    const QString link = folder + "/" + QFileInfo(program).fileName();
    QDir().mkpath(folder);
    QFile::remove(link);
    return QFile::link(program, link) ? link : program;
}

void LoginItems::removeEntry(const QString &file) const
{
    const QStringList argv = desktopentry::parseExec(desktopentry::value(readText(file), "Exec"));
    if (QFile::remove(file) && !argv.isEmpty() && argv.first().startsWith(m_links + "/")) {
        QFile::remove(argv.first());
        QDir().rmdir(QFileInfo(argv.first()).absolutePath());
    }
}

static QString readText(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(f.read(1 << 20));
}

bool LoginItems::switchedOff(const QString &text)
{
    return desktopentry::value(text, "Hidden").compare("true", Qt::CaseInsensitive) == 0 ||
           desktopentry::value(text, "X-GNOME-Autostart-enabled")
                   .compare("false", Qt::CaseInsensitive) == 0;
}

QStringList LoginItems::entries() const
{
    QStringList out;
    const QDir dir(m_folder);
    for (const QString &name : dir.entryList({"*.desktop"}, QDir::Files, QDir::Name))
        if (!switchedOff(readText(dir.filePath(name)))) out << dir.filePath(name);
    return out;
}

QString LoginItems::launchedPath(const QStringList &argv)
{
    if (argv.isEmpty()) return {};
    const QFileInfo first(argv.first());
    const QString program =
        QDir::cleanPath(first.isSymLink() ? first.symLinkTarget() : argv.first());
    const QString marker = QStringLiteral(".app/Contents/MacOS/");
    const int at = program.lastIndexOf(marker, -1, Qt::CaseInsensitive);
    if (at >= 0 && !program.mid(at + marker.size()).contains('/')) return program.left(at + 4);
    return program;
}

int LoginItems::OldCountOfLoginItems(bool) const
{
    return int(entries().size());
}

QString LoginItems::OldLoginItemPropertyAtIndex(int property, int index, bool) const
{
    const QStringList list = entries();
    if (index < 0 || index >= list.size()) return {};
    const QString text = readText(list[index]);
    if (property == 2) {
        const QString own = desktopentry::value(text, "X-Vantrel-Item-Name");
        return desktopentry::unescaped(own.isEmpty() ? desktopentry::value(text, "Name") : own);
    }
    if (property == 1)
        return launchedPath(desktopentry::parseExec(desktopentry::value(text, "Exec")));
    return {};
}

bool LoginItems::OldRemoveLoginItem(const QString &bundlePath, bool)
{
    const QStringList list = entries();
    for (int i = 0; i < list.size(); ++i)
        if (OldLoginItemPropertyAtIndex(1, i, false).compare(bundlePath, Qt::CaseInsensitive) ==
            0) {
            removeEntry(list[i]);
            return !QFile::exists(list[i]);
        }
    return false;
}

bool LoginItems::OldRemoveLoginItemAtIndex(int index, bool)
{
    const QStringList list = entries();
    if (index < 0 || index >= list.size()) return false;
    removeEntry(list[index]);
    return !QFile::exists(list[index]);
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
        desktopentry::loginEntry(bundle.completeBaseName(), bundle.fileName(), {programPath(exe)},
                                 bundle.absoluteFilePath() + "/Contents/Resources/Vantrel.svg")
            .toUtf8();
    // A file of its own, never another program's entry and never through a link; written whole
    // through a temporary file, so a full disk leaves no empty entry.
    for (int n = 1; n < 1000; ++n) {
        const QString name = n == 1 ? base : QStringLiteral("%1-%2").arg(base).arg(n);
        const QString path = m_folder + "/" + name + ".desktop";
        const QFileInfo existing(path);
        if (existing.isFile() && !existing.isSymLink()) {
            const QString old = readText(path);
            if (switchedOff(old) &&
                launchedPath(desktopentry::parseExec(desktopentry::value(old, "Exec")))
                        .compare(bundle.absoluteFilePath(), Qt::CaseInsensitive) == 0)
                return writeFileReplacing(path, text);
        }
        switch (writeNewFile(path, text)) {
        case NewFileResult::Written:
            return true;
        case NewFileResult::Taken:
            continue;
        case NewFileResult::Failed:
            return false;
        }
    }
    return false;
}

} // namespace fw
