#include "platform/files/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fw {

namespace {

// ".<name>.~vantrel.<pid>.XXXXXX": hidden, and naming the writer, so that what a dead writer
// left can be told from a write in progress.
constexpr char kMarker[] = ".~vantrel.";

bool writeAll(int fd, const char *data, size_t len, off_t offset = -1)
{
    while (len > 0) {
        const ssize_t n = offset < 0 ? ::write(fd, data, len) : ::pwrite(fd, data, len, offset);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        len -= size_t(n);
        if (offset >= 0) offset += n;
    }
    return true;
}

void syncFolder(const QByteArray &folder)
{
    const int dfd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    if (dfd < 0) return;
    ::fsync(dfd);
    ::close(dfd);
}

int defaultMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return int(0666 & ~mask);
}

// The writer's process id in one of our temporary names; 0 when the name is not ours.
pid_t writerOf(const QString &fileName)
{
    if (!fileName.startsWith('.')) return 0;
    const int at = fileName.lastIndexOf(QLatin1String(kMarker));
    if (at <= 0) return 0;
    const QStringList rest = fileName.mid(at + int(sizeof kMarker) - 1).split('.');
    if (rest.size() != 2 || rest[1].size() != 6) return 0;
    bool ok = false;
    const long pid = rest[0].toLong(&ok);
    return ok && pid > 0 ? pid_t(pid) : 0;
}

} // namespace

// A file of this process's own pid is a leftover of an earlier process with the same pid.
void removeTemporaryLeftovers(const QString &folder)
{
    const QStringList names =
        QDir(folder).entryList(QStringList{QStringLiteral(".*") + kMarker + "*"},
                               QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : names) {
        const pid_t pid = writerOf(name);
        if (pid == 0) continue;
        if (pid != ::getpid() && (::kill(pid, 0) == 0 || errno != ESRCH)) continue;
        ::unlink(QFile::encodeName(QDir(folder).filePath(name)).constData());
    }
}

namespace {

// A synced temporary file holding the bytes, beside the target; empty on failure.
QByteArray writeTemporary(const QFileInfo &target, const QByteArray &bytes, int mode, uid_t uid,
                          gid_t gid, bool *ownerKept)
{
    removeTemporaryLeftovers(target.absolutePath());
    QByteArray tmpl = QFile::encodeName(target.absolutePath() + "/." + target.fileName() + kMarker +
                                        QString::number(::getpid()) + ".XXXXXX");
    const int fd = ::mkstemp(tmpl.data());
    if (fd < 0) return {};
    ::fchmod(fd, mode_t(mode));
    if (ownerKept)
        *ownerKept = (uid == ::geteuid() && gid == ::getegid()) || ::fchown(fd, uid, gid) == 0;
    bool ok = writeAll(fd, bytes.constData(), size_t(bytes.size())) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (!ok) {
        ::unlink(tmpl.constData());
        return {};
    }
    return tmpl;
}

// The path a chain of symbolic links leads to (the path itself when it is no link).
QString throughLinks(const QString &path)
{
    QString p = QFileInfo(path).absoluteFilePath();
    for (int hops = 0; hops < 40; ++hops) {
        const QFileInfo info(p);
        if (!info.isSymLink()) return p;
        const QByteArray raw = QFile::encodeName(p);
        char buf[4096];
        const ssize_t n = ::readlink(raw.constData(), buf, sizeof buf - 1);
        if (n <= 0) return {};
        const QString target = QFile::decodeName(QByteArray(buf, n));
        p = QDir::cleanPath(QDir::isAbsolutePath(target) ? target
                                                         : info.absolutePath() + "/" + target);
    }
    return {}; // a loop
}

// Rewrites a file in place, keeping its identity (its other hard links, its owner, its
// attributes). The space is reserved before the first byte changes, so a full disk leaves the
// old contents whole.
bool rewriteInPlace(const QByteArray &path, const QByteArray &bytes)
{
    const int fd = ::open(path.constData(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return false;
    bool ok = true;
    if (!bytes.isEmpty()) {
        const int r = ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, off_t(bytes.size()));
        ok = r == 0 || errno == EOPNOTSUPP || errno == ENOSYS;
    }
    ok = ok && writeAll(fd, bytes.constData(), size_t(bytes.size()), 0) &&
         ::ftruncate(fd, off_t(bytes.size())) == 0 && ::fsync(fd) == 0;
    return (::close(fd) == 0) && ok;
}

} // namespace

bool isTemporaryName(const QString &fileName)
{
    return writerOf(fileName) != 0;
}

bool writeFileReplacing(const QString &path, const QByteArray &bytes, int mode)
{
    const QString resolved = throughLinks(path);
    if (resolved.isEmpty()) return false;
    const QFileInfo target(resolved);
    const QByteArray targetPath = QFile::encodeName(resolved);

    struct stat st = {};
    const bool exists = ::lstat(targetPath.constData(), &st) == 0;
    if (exists && !S_ISREG(st.st_mode)) return false;
    if (exists && st.st_nlink > 1) return rewriteInPlace(targetPath, bytes);

    bool ownerKept = true;
    const QByteArray tmp =
        exists ? writeTemporary(target, bytes, int(st.st_mode & 07777), st.st_uid, st.st_gid,
                                &ownerKept)
               : writeTemporary(target, bytes, mode < 0 ? defaultMode() : mode, 0, 0, nullptr);
    if (tmp.isEmpty()) return false;
    if (!ownerKept) {
        // Someone else's file in a folder we may write: replacing it would make it ours.
        ::unlink(tmp.constData());
        return rewriteInPlace(targetPath, bytes);
    }
    if (::rename(tmp.constData(), targetPath.constData()) != 0) {
        ::unlink(tmp.constData());
        return false;
    }
    syncFolder(QFile::encodeName(target.absolutePath()));
    return true;
}

NewFileResult writeNewFile(const QString &path, const QByteArray &bytes)
{
    const QFileInfo target(QFileInfo(path).absoluteFilePath());
    const QByteArray targetPath = QFile::encodeName(target.absoluteFilePath());
    const QByteArray tmp = writeTemporary(target, bytes, defaultMode(), 0, 0, nullptr);
    if (tmp.isEmpty()) return NewFileResult::Failed;
    int r =
        ::renameat2(AT_FDCWD, tmp.constData(), AT_FDCWD, targetPath.constData(), RENAME_NOREPLACE);
    if (r != 0 && (errno == EINVAL || errno == ENOSYS)) {
        // A file system without that flag: a hard link is just as exclusive.
        r = ::link(tmp.constData(), targetPath.constData());
        const int saved = errno;
        ::unlink(tmp.constData());
        errno = saved;
    }
    if (r != 0) {
        const int saved = errno;
        ::unlink(tmp.constData());
        return saved == EEXIST ? NewFileResult::Taken : NewFileResult::Failed;
    }
    syncFolder(QFile::encodeName(target.absolutePath()));
    return NewFileResult::Written;
}

} // namespace fw
