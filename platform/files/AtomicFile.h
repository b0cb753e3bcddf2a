#pragma once
// Writing files whole, so that a failed or interrupted write never leaves a half-written file
// where the user's file was. The bytes go to a temporary file in the target's folder, are
// synced, and the temporary file is renamed into place. A temporary file left behind by a writer
// that died is removed at the next write in that folder.

#include <QByteArray>
#include <QString>

namespace fw {

// Replaces the file at path, or creates it. What the user had is kept: an existing file's mode
// and owner; a symbolic link is written through to its target; a file with other hard links is
// rewritten in place (its space reserved first), so that every name still shows the same file.
// mode: a new file's permissions; negative means 0666 less the umask. The folder is never made.
bool writeFileReplacing(const QString &path, const QByteArray &bytes, int mode = -1);

enum class NewFileResult { Written, Taken, Failed };
// Creates a file at path that did not exist: whatever stands at that name (also something that
// arrived while the bytes were written) is never replaced, and the answer is Taken.
NewFileResult writeNewFile(const QString &path, const QByteArray &bytes);

// Whether a name in a folder is one of our temporary files (for tests and listings).
bool isTemporaryName(const QString &fileName);
// Removes the temporary files that writers no longer running left in the folder. This process
// writes one file at a time: between writes, its own are leftovers too.
void removeTemporaryLeftovers(const QString &folder);

} // namespace fw
