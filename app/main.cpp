// Vantrel: a resident capture utility. Started once, it waits with no window; Shift+Ctrl+2
// anywhere runs an interactive capture and opens the editor on it.

#include "app/App.h"
#include "platform/Services.h"
#include "prefs/Preferences.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char **argv)
{
    QApplication qapp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setOrganizationDomain(QStringLiteral("Morlane.com"));
    // A resident program: hiding or closing its last window never ends it.
    QApplication::setQuitOnLastWindowClosed(false);

    auto services = fw::Services::forThisMachine();
    // Taskbars group the windows under the launcher's name and icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("com.Morlane.Vantrel"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("com.Morlane.Vantrel"),
                                                 QIcon(services->bundle.resources() + "/Vantrel.svg")));
    Preferences preferences(services->preferenceDomains);
    App app(*services);
    preferences.msgBox = [&app](const QString &text) { app.MsgBox(text); };
    app.showSplash = [&app] { app.showTheSplash(); };
    app._Startup();
    // A quit during start-up (a signal, the tray's Quit during the splash) has ended the loops
    // that ran then; it must not be forgotten by a loop that starts afterwards.
    const int code = app.quitRequested() ? 0 : QApplication::exec();
    app.finish();
    return code;
}
