#include "app/App.h"

#include "app/MenuBar1.h"
#include "app/splash.h"
#include "editor/Window1.h"
#include "output/Toolbar.h"
#include "platform/core/Failure.h"
#include "prefs/HideDockIcon.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QApplication>
#include <QSlider>

App::App(fw::Services &services, Preferences &prefs, Session &session)
    : fw::Application(services), m_commands(services, session, prefs, m_editorSource)
{
    setMenuItems(MenuBar1::items());
    joinWindows();
}

App::~App()
{
    windows().destroyAll();
}

App &App::instance()
{
    return static_cast<App &>(fw::Application::instance());
}

void App::joinWindows()
{
    windows().onMade<Window1>([this](Window1 &w) {
        w.setToolBar(new output::Toolbar(m_commands));
        fw::connectGuarded(&w, &Window1::printRequested, this,
                           [this] { m_commands._FilePrint_Action(); });
        fw::connectGuarded(&w, &Window1::pageSetupRequested, this,
                           [this] { m_commands._FilePageSetup_Action(); });
    });
    // The drawer belongs to the editor: it follows it, and a thumbnail goes back into it at the
    // slider's scale.
    windows().onMade<recentwin>([](recentwin &drawer) {
        Window1 &editor = Window1::instance();
        drawer.attachTo(&editor);
        fw::connectGuarded(
            &drawer, &recentwin::captureChosen, &editor, [&editor](const QImage &capture) {
                editor.takeCapture(capture, QString::number(editor.Slider1->value()));
            });
    });
}

void App::_Startup()
{
    _ApplicationAddMenuHandlers();
    fw::guarded([this] { showTrayIconUnlessHidden(); });
    // Event_Open comes ahead of the default window, so the editor is made there.
    start();
}

void App::showTrayIconUnlessHidden()
{
    if (isDockIconHiddenAtLaunch()) return;
    // The picture drawn from the SVG at build time: drawing the SVG itself would keep Qt's SVG
    // engine in the resident process for good.
    m_tray = std::make_unique<fw::TrayIcon>(services().bundle.resources() + "/icon.png");
    connect(m_tray.get(), &fw::TrayIcon::commandChosen, this,
            [this](const QString &name) { dispatchMenuCommand(name); });
}

void App::_ApplicationAddMenuHandlers()
{
    AddMenuHandler("FileQuit", [this] { return _FileQuit_Action(); });
    AddMenuHandler("FilePreferences", [this] { return _FilePreferences_Action(); });
}

void App::Event_Open()
{
    Preferences::module().initprefs();
    (void)Window1::instance();
    if (showSplash) showSplash();
}

void App::showTheSplash()
{
    splash::instance().ShowModal();
}

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
