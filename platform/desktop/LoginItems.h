#pragma once
// The user's login items: the XDG autostart entries in $XDG_CONFIG_HOME/autostart, seen as a list
// in file-name order. An entry that the desktop has switched off (Hidden=true,
// X-GNOME-Autostart-enabled=false) starts nothing and is no login item. Property 2 of an entry is
// its name (X-Vantrel-Item-Name where we wrote one, else Name), property 1 the path it launches:
// for a program inside an application bundle (…/X.app/Contents/MacOS/x) the bundle's path, also
// through a symbolic link.
//
// Launchers read Exec lines differently: GLib takes no "%" in a program's path and dex no "$",
// "`", '"' or "\". A program whose path holds one of those is started through a link of a plain
// path, kept beside the autostart folder in Vantrel/login-items/.

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
    // Adds an entry named after the bundle folder that starts the bundle's program; a switched
    // off entry of ours for the same bundle is switched on again rather than doubled. Written
    // whole or not at all.
    bool OldAddLoginItem(const QString &bundlePath, bool, bool);

    // The entry files that are login items, in list order.
    QStringList entries() const;
    // Whether a desktop entry's text says it is switched off.
    static bool switchedOff(const QString &entryText);

    static QString launchedPath(const QStringList &argv);

private:
    // The path an entry's Exec names for the program: the program, or a link to it.
    QString programPath(const QString &program) const;
    void removeEntry(const QString &file) const;

    QString m_folder;
    QString m_links;
};

} // namespace fw
