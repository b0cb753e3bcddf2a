#pragma once
// The application object: the order of start, the one failure message, the two menu commands
// that work with every window hidden, and the composition root's joins between the editor, the
// drawer, the preferences and the outputs.

#include "app/EditorSource.h"
#include "output/Commands.h"
#include "platform/desktop/TrayIcon.h"
#include "platform/framework/Application.h"

#include <QString>

class Preferences;
class Session;

class App : public fw::Application {
    Q_OBJECT
public:
    App(fw::Services &services, Preferences &prefs, Session &session);
    ~App() override;

    // The one application object.
    static App &instance();

    // Runs the start-up steps and delivers Event_Open.
    void _Startup();

    void Event_Open() override;
    bool Event_UnhandledException(std::exception_ptr error) override;
    bool _FileQuit_Action();
    bool _FilePreferences_Action();
    void gotofront() override;

    // The splash's place in the start-up order: the program shows the splash there
    // (showTheSplash); tests leave it empty.
    std::function<void()> showSplash;
    void showTheSplash();

    // The tray icon, made at launch unless the bundle says the icon is hidden.
    fw::TrayIcon *trayIcon() const { return m_tray.get(); }
    output::Commands &commands() { return m_commands; }

private:
    void showTrayIconUnlessHidden();
    void _ApplicationAddMenuHandlers();
    // What each window is joined to when it is made.
    void joinWindows();

    std::unique_ptr<fw::TrayIcon> m_tray;
    EditorSource m_editorSource;
    output::Commands m_commands;
};
