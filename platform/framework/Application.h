#pragma once
// The application object of the framework layer: start-up, the one road of unhandled failures,
// Quit, message boxes and the menu command chain (front window first, then the application,
// until a handler returns true).

#include "platform/framework/MenuBar.h"
#include "platform/framework/Services.h"
#include "platform/framework/WindowRegistry.h"

#include <QObject>
#include <exception>

class QMenuBar;
class QSocketNotifier;

namespace fw {

class Application : public QObject {
    Q_OBJECT
public:
    explicit Application(Services &services);
    ~Application() override;

    // The one application object of the process.
    static Application &instance();

    // Set once the user has given the Quit command; it turns a close of the editor into a real
    // close. Never cleared.
    bool quitting = false;
    // The breadcrumb: the last guarded stage that began, named by the one failure message.
    QString process;

    // Delivers Event_Open (guarded), then returns; the caller runs the event loop.
    void start();

    virtual void Event_Open() {}
    virtual bool Event_UnhandledException(std::exception_ptr error) = 0;

    // Closes the windows, asking each through Event_CancelClose; a refusal cancels the quit and
    // the program lives on. With every window closed, the event loop ends with `code`.
    void Quit(int code);
    // A quit the system asks for (SIGTERM, SIGINT, SIGHUP, the session ending): every event loop
    // on the stack returns (a dialog's as if cancelled), nothing more is written or started, and
    // once the stack has unwound the windows close whatever they answer (finish()).
    void systemQuit();
    // After the event loop: closes what a system quit left open. The caller ends the process.
    void finish();
    // Whether the process is ending on the system's word: output commands write nothing then.
    static bool ending();

    // A modal message box with one button.
    virtual void MsgBox(const QString &text);
    // Brings the program's front window forward.
    virtual void gotofront() {}

    // The menu bar's items; windows build their bars and Quit shortcuts from them.
    void setMenuItems(QList<MenuItemSpec> items) { m_menuItems = std::move(items); }
    QMenuBar *buildMenuBar(QWidget *parent) { return menus::build(*this, m_menuItems, parent); }
    void addQuitShortcut(QWidget *window) { menus::addQuitShortcut(*this, m_menuItems, window); }

    void AddMenuHandler(const QString &name, std::function<bool()> handler);
    // Runs a menu command: the front window's handler, then the application's, until one
    // returns true. Returns whether any handler existed.
    bool dispatchMenuCommand(const QString &name);
    bool hasMenuHandler(const QString &name) const { return m_menuHandlers.contains(name); }
    // The program's window that is active, if any.
    Window *frontWindow() const;

    WindowRegistry &windows() { return m_windows; }
    Services &services() { return m_services; }

    // Whether the event loop was asked to end, and with which code.
    bool quitRequested() const { return m_quitRequested; }

private:
    void installSignalHandlers();
    Services &m_services;
    WindowRegistry m_windows;
    QHash<QString, std::function<bool()>> m_menuHandlers;
    QList<MenuItemSpec> m_menuItems;
    QSocketNotifier *m_signalNotifier = nullptr;
    bool m_quitRequested = false;
};

} // namespace fw
