#pragma once
// The platform stand-ins the program uses, made once by the composition root (app's
// servicesForThisMachine, or a test) and handed to every window. Tests swap any of them for a
// fake.

#include "platform/desktop/Bundle.h"
#include "platform/display/Cursors.h"
#include "platform/hotkeys/HotKeyService.h"
#include "platform/store/CFPreferences.h"
#include "platform/system/Shell.h"

#include <functional>

#include <memory>

class QWidget;
class QPrinter;

namespace fw {

struct Services {
    Services(Bundle bundle, QString configFolder);
    ~Services();

    Bundle bundle;
    PreferenceDomains preferenceDomains;
    Cursors cursors;
    std::unique_ptr<HotKeyService> hotKeys;
    std::unique_ptr<CommandRunner> commands;
    std::function<QString()> osVersionString;
    std::function<QString()> desktopFolder;
    // The system's folder chooser, modal; empty on cancel.
    std::function<QString(QWidget *parent, const QString &start)> selectFolder;
    // The save dialog, modal: a path, or empty on cancel.
    std::function<QString(QWidget *parent, const QString &folder, const QString &suggested)>
        saveAsDialog;
    // Whether Shift is down at the moment of asking.
    std::function<bool()> shiftKeyDown;
    // The print dialog: a printer ready for one page, or null on cancel.
    std::function<std::unique_ptr<QPrinter>(QWidget *parent)> printDialog;
    // The page setup dialog on a printer; true when confirmed.
    std::function<bool(QPrinter &)> pageSetupDialog;
    // The per-user private folder for temporary files; empty (nil) when it can't be had safely.
    std::function<QString()> temporaryFolder;
};

// Whether the desktop session is a Wayland one (the program may still be an X11 client in it).
bool isWaylandSession(const QString &sessionType, const QString &waylandDisplay);
// $XDG_CONFIG_HOME, or ~/.config.
QString configHome();
// The user's Desktop folder: $XDG_DESKTOP_DIR, the user-dirs file, or ~/Desktop.
QString userDesktopFolder();

} // namespace fw
