#include "app/App.h"

#include "app/FileTypes.h"
#include "app/splash.h"
#include "platform/core/Failure.h"
#include "editor/Window1.h"
#include "prefs/HideDockIcon.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QApplication>

namespace {
App *g_app = nullptr;
}

App::App(fw::Services &services) : fw::Application(services) { g_app = this; }

App::~App()
{
    windows().destroyAll();
    if (g_app == this) g_app = nullptr;
}

App &App::instance() { return *fw::nilCheck(g_app); }
bool App::exists() { return g_app != nullptr; }

void App::_Startup()
{
    _InitFileTypes();
    _NewAppInstance();
    _ApplicationAddMenuHandlers();
    fw::guarded([this] { showTrayIconUnlessHidden(); });
    // Event_Open comes ahead of the default window, so the default view finds Window1 made.
    start();
    fw::guarded([this] { _MakeDefaultView(); });
}

void App::showTrayIconUnlessHidden()
{
    if (isDockIconHiddenAtLaunch()) return;
    m_tray = std::make_unique<fw::TrayIcon>(*this, services().bundle.resources() + "/Vantrel.svg");
}

void App::_NewAppInstance()
{
    // The menu bar lives in Window1 and the tray menu; nothing to make here.
}

void App::_ApplicationAddMenuHandlers()
{
    AddMenuHandler("FileQuit", [this] { return _FileQuit_Action(); });
    AddMenuHandler("FilePreferences", [this] { return _FilePreferences_Action(); });
}

void App::_MakeDefaultView() { (void)Window1::instance(); }

void App::Event_Open()
{
    Preferences::module().initprefs();
    (void)Window1::instance();
    if (showSplash) showSplash();
}

void App::showTheSplash() { splash::instance().ShowModal(); }

bool App::Event_UnhandledException(std::exception_ptr)
{
    MsgBox(QStringLiteral("An Error Ocurred at ") + process);
    Quit(0);
    return true;
}

bool App::_FileQuit_Action()
{
    quitting = true;
    Quit(0);
    return false;
}

bool App::_FilePreferences_Action()
{
    prefwin &p = prefwin::instance();
    p.Show();
    p.raise();
    p.activateWindow();
    return true;
}

void App::gotofront()
{
    // Bring our front window forward; without a window manager this also gives it the focus.
    // The editor comes first: it is what a capture just showed, whatever else is open.
    if (fw::Window *editor = windows().existing<Window1>(); editor && editor->isVisible()) {
        editor->raise();
        editor->activateWindow();
        return;
    }
    if (QWidget *w = QApplication::activeWindow()) {
        w->raise();
        w->activateWindow();
        return;
    }
    for (fw::Window *w : windows().windows()) {
        if (w->isVisible()) {
            w->raise();
            w->activateWindow();
            return;
        }
    }
}
