#pragma once
// Reading and writing the few parts of freedesktop desktop entries that login items need: the
// Name, and an Exec line of quoted arguments.

#include <QString>
#include <QStringList>

namespace fw::desktopentry {

// One argument quoted for an Exec line (before the value is escaped as a string).
QString quoteExecArg(const QString &arg);
// The Exec value as written in the file: arguments quoted, then string escapes (\\, \n, …).
QString execValue(const QStringList &argv);
// The arguments of an Exec value as read from the file; field codes (%f, %U …) are dropped.
QStringList parseExec(const QString &fileValue);

// The value of a key in the [Desktop Entry] group as written (escaped); empty when absent.
QString value(const QString &fileText, const QString &key);
// A string value with its escapes (\s, \n, \t, \r, \\) resolved.
QString unescaped(const QString &raw);

// A whole entry that starts a program.
QString applicationEntry(const QString &name, const QStringList &argv, const QString &comment);
// A login item: shown as displayName with its icon, known to the login-item walk as itemName.
QString loginEntry(const QString &displayName, const QString &itemName, const QStringList &argv,
                   const QString &iconPath);

} // namespace fw::desktopentry
