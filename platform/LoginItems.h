#pragma once
// The user's login items: the XDG autostart entries in $XDG_CONFIG_HOME/autostart, seen as a list
// in file-name order. Property 2 of an entry is its name, property 1 the path it launches: for a
// program inside an application bundle (…/X.app/Contents/MacOS/x) the bundle's path.

#include <QString>
#include <QStringList>

namespace fw {

class LoginItems {
public:
    explicit LoginItems(QString autostartFolder);

    int OldCountOfLoginItems(bool) const;
    // Empty past the end of the list.
    QString OldLoginItemPropertyAtIndex(int property, int index, bool) const;
    // Removes the first entry that launches this bundle (paths compared ignoring case).
    bool OldRemoveLoginItem(const QString &bundlePath, bool);
    bool OldRemoveLoginItemAtIndex(int index, bool);
    // Adds an entry named after the bundle folder that starts the bundle's program.
    bool OldAddLoginItem(const QString &bundlePath, bool, bool);

    // The entry files, in list order.
    QStringList entries() const;

    static QString launchedPath(const QStringList &argv);

private:
    QString m_folder;
};

} // namespace fw
