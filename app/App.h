#pragma once
// The application object: the order of start, the breadcrumb of the failure message, and the
// two menu commands that work with every window hidden.

#include "platform/framework/Application.h"
#include "platform/desktop/TrayIcon.h"

#include <QString>

class App : public fw::Application {
    Q_OBJECT
public:
    explicit App(fw::Services &services);
    ~App() override;

    // The one application object.
    static App &instance();
    static bool exists();

    bool quitting = false;
    QString process;

    // Runs the start-up steps and delivers Event_Open.
    void _Startup();

    void Event_Open() override;
    bool Event_UnhandledException(std::exception_ptr error) override;
    bool _FileQuit_Action();
    bool _FilePreferences_Action();
    void gotofront();

    // The splash's place in the start-up order: the program shows the splash there
    // (showTheSplash); tests leave it empty.
    std::function<void()> showSplash;
    void showTheSplash();

    // The tray icon, made at launch unless the bundle says the icon is hidden.
    fw::TrayIcon *trayIcon() const { return m_tray.get(); }

private:
    void showTrayIconUnlessHidden();
    std::unique_ptr<fw::TrayIcon> m_tray;
    void _NewAppInstance();
    void _ApplicationAddMenuHandlers();
    void _MakeDefaultView();
};
