#include "platform/files/TemporaryFolder.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace fw {

static bool ownPrivateDir(const QByteArray &path)
{
    struct stat st = {};
    if (::lstat(path.constData(), &st) != 0) return false;
    return S_ISDIR(st.st_mode) && st.st_uid == ::geteuid() && (st.st_mode & 077) == 0;
}

QString privateTemporaryFolder()
{
    QString base = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (base.isEmpty() || !QDir::isAbsolutePath(base) || !ownPrivateDir(QFile::encodeName(base))) {
        base = qEnvironmentVariable("XDG_CACHE_HOME");
        if (base.isEmpty() || !QDir::isAbsolutePath(base)) base = QDir::homePath() + "/.cache";
        QDir().mkpath(base);
    }
    const QString folder = base + "/Vantrel";
    const QByteArray path = QFile::encodeName(folder);
    if (::mkdir(path.constData(), 0700) != 0 && errno != EEXIST) return {};
    struct stat st = {};
    if (::lstat(path.constData(), &st) != 0) return {};
    // A link or a folder of someone else is never used.
    if (!S_ISDIR(st.st_mode) || st.st_uid != ::geteuid()) return {};
    if ((st.st_mode & 077) != 0 && ::chmod(path.constData(), 0700) != 0) return {};
    return folder;
}

} // namespace fw
