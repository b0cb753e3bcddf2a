#pragma once
// The command that starts this program from a desktop's settings (a key binding, say).

#include <QString>
#include <QStringList>

namespace fw {

// "vantrel" where the first one of that name on the search path is this very program (an
// installed package leads it there through a link); else the program's own full path, quoted
// for a shell where it needs to be (a build tree, an unpacked bundle, an older install).
QString launchCommand(const QString &program, const QStringList &searchPath);

} // namespace fw
