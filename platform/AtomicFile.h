#pragma once
// Replacing a file whole: the bytes go to a temporary file in the same folder, are synced, and
// the temporary file is renamed over the target. A failed write leaves what was there, and a
// link at the target's name is replaced, never written through.

#include <QByteArray>
#include <QString>

namespace fw {
// mode: the new file's permissions; negative means 0666 less the umask.
bool writeFileReplacing(const QString &path, const QByteArray &bytes, int mode = -1);
} // namespace fw
