#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fw {

static bool writeAll(int fd, const char *data, size_t len)
{
    while (len > 0) {
        const ssize_t n = ::write(fd, data, len);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        len -= size_t(n);
    }
    return true;
}

bool writeFileReplacing(const QString &path, const QByteArray &bytes, int mode)
{
    const QFileInfo info(path);
    QDir().mkpath(info.absolutePath());
    QByteArray tmpl = QFile::encodeName(info.absolutePath() + "/." + info.fileName() + ".XXXXXX");
    const int fd = ::mkstemp(tmpl.data());
    if (fd < 0) return false;
    if (mode < 0) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = int(0666 & ~mask);
    }
    ::fchmod(fd, mode_t(mode));
    bool ok = writeAll(fd, bytes.constData(), size_t(bytes.size())) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok) ok = ::rename(tmpl.constData(), QFile::encodeName(info.absoluteFilePath()).constData()) == 0;
    if (!ok) {
        ::unlink(tmpl.constData());
        return false;
    }
    // Make the rename itself durable.
    const int dfd = ::open(QFile::encodeName(info.absolutePath()).constData(), O_RDONLY | O_DIRECTORY);
    if (dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
    return true;
}

} // namespace fw
