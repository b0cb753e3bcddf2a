// Vantrel: a resident capture utility. Started once, it waits with no window; Shift+Ctrl+2
// anywhere runs an interactive capture and opens the editor on it.

#include "app/App.h"
#include "app/CommandLine.h"
#include "app/MachineServices.h"
#include "capture/keytrigger.h"
#include "platform/desktop/SingleInstance.h"
#include "platform/hotkeys/HotKeyService.h"
#include "platform/system/Memory.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>
#include <cstdio>

int main(int argc, char **argv)
{
    fw::keepLargeBlocksApart();
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const CommandLine command = parseCommandLine(arguments);
    if (command.kind == CommandLine::Kind::Help || command.kind == CommandLine::Kind::Bad) {
        std::fputs(commandLineHelp().toLocal8Bit().constData(),
                   command.kind == CommandLine::Kind::Help ? stdout : stderr);
        return command.kind == CommandLine::Kind::Help ? 0 : 2;
    }
    // On a Wayland session the program stays an X11 client (XWayland), unless the user chose.
    if (shouldStayX11(qEnvironmentVariable("QT_QPA_PLATFORM"),
                      qEnvironmentVariable("XDG_SESSION_TYPE"),
                      qEnvironmentVariable("WAYLAND_DISPLAY"), qEnvironmentVariable("DISPLAY")))
        qputenv("QT_QPA_PLATFORM", "xcb");

    QApplication qapp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setOrganizationDomain(QStringLiteral("Morlane.com"));
    // A resident program: hiding or closing its last window never ends it.
    QApplication::setQuitOnLastWindowClosed(false);

    // One resident program a session: a later start hands its request over and is gone.
    fw::SingleInstance instance;
    if (instance.claim() == fw::SingleInstance::Role::Later)
        return fw::SingleInstance::send(command.method()) ? 0 : 1;
    if (command.kind == CommandLine::Kind::Quit) return 0; // nothing runs that could quit

    auto services = servicesForThisMachine();
    // Taskbars group the windows under the launcher's name and icon (in the bundle, a picture:
    // see the tray icon).
    QGuiApplication::setDesktopFileName(QStringLiteral("com.Morlane.Vantrel"));
    QApplication::setWindowIcon(QIcon::fromTheme(
        QStringLiteral("com.Morlane.Vantrel"), QIcon(services->bundle.resources() + "/icon.png")));
    Preferences preferences(services->preferenceDomains);
    Session session;
    App app(*services, preferences, session);
    preferences.msgBox = [&app](const QString &text) { app.MsgBox(text); };
    app.showSplash = [&app] { app.showTheSplash(); };
    // The same roads as the hot key, the Preferences item and Quit.
    instance.onCapture = [&services] {
        emit services->hotKeys->hotKeyPressed(captureSignature(), 1);
    };
    instance.onShowPreferences = [&app] {
        app.dispatchMenuCommand(QStringLiteral("FilePreferences"));
    };
    instance.onQuit = [&app] { app.dispatchMenuCommand(QStringLiteral("FileQuit")); };
    if (command.kind == CommandLine::Kind::Capture)
        QTimer::singleShot(0, [&instance] { instance.Capture(); });
    if (command.kind == CommandLine::Kind::Preferences)
        QTimer::singleShot(0, [&instance] { instance.ShowPreferences(); });
    app._Startup();
    // A quit during start-up (a signal, the tray's Quit during the splash) has ended the loops
    // that ran then; it must not be forgotten by a loop that starts afterwards.
    const int code = app.quitRequested() ? 0 : QApplication::exec();
    app.finish();
    return code;
}
