#include "platform/framework/Application.h"

#include "platform/core/Ending.h"
#include "platform/core/Failure.h"
#include "platform/system/Shell.h"

#include <QApplication>
#include <QMessageBox>
#include <QSocketNotifier>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace fw {

namespace {
Application *g_application = nullptr;
int g_signalFds[2] = {-1, -1};
bool g_ending = false;

void onSignal(int)
{
    // Set by the handler itself: the capture's helper is killed here, and what the capture would
    // do next is not done, before the event loop has run the quit.
    setProcessEnding(true);
    ProcessRunner::stopRunning();
    const char c = 1;
    [[maybe_unused]] auto n = ::write(g_signalFds[0], &c, 1);
}
} // namespace

Application::Application(Services &services) : m_services(services), m_windows(services)
{
    g_application = this;
    g_ending = false; // one application object a process, but tests make several in turn
    setProcessEnding(false);
    setUnhandledHandler([this](std::exception_ptr e) { Event_UnhandledException(e); });
}

Application::~Application()
{
    m_windows.destroyAll();
    setUnhandledHandler(nullptr);
    if (g_application == this) g_application = nullptr;
}

Application &Application::instance()
{
    return *nilCheck(g_application);
}

void Application::start()
{
    installSignalHandlers();
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this] { systemQuit(); });
    guarded([this] { Event_Open(); });
}

void Application::installSignalHandlers()
{
    if (g_signalFds[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalFds) != 0) return;
    m_signalNotifier = new QSocketNotifier(g_signalFds[1], QSocketNotifier::Read, this);
    connect(m_signalNotifier, &QSocketNotifier::activated, this, [this] {
        char c;
        [[maybe_unused]] auto n = ::read(g_signalFds[1], &c, 1);
        systemQuit();
    });
    struct sigaction sa = {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    sa.sa_flags = SA_RESTART;
    for (int sig : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(sig, &sa, nullptr);
}

void Application::Quit(int code)
{
    if (!m_windows.closeAll()) return;
    m_quitRequested = true;
    QCoreApplication::exit(code);
}

void Application::systemQuit()
{
    if (g_ending) return;
    g_ending = true;
    setProcessEnding(true);
    m_quitRequested = true;
    // The handlers below on the stack (a Save whose settings dialog is open, the splash) resume
    // and return; the windows they use stay alive until then.
    QCoreApplication::exit(0);
}

void Application::finish()
{
    if (g_ending) m_windows.forceCloseAll();
}

bool Application::ending()
{
    return processEnding();
}

void Application::MsgBox(const QString &text)
{
    if (g_ending) return;
    QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Vantrel"), text, QMessageBox::Ok);
    box.exec();
}

void Application::AddMenuHandler(const QString &name, std::function<bool()> handler)
{
    m_menuHandlers.insert(name, std::move(handler));
}

Window *Application::frontWindow() const
{
    for (Window *w : const_cast<WindowRegistry &>(m_windows).windows())
        if (w->isVisible() && w->isActiveWindow()) return w;
    return nullptr;
}

bool Application::dispatchMenuCommand(const QString &name)
{
    bool handled = false;
    guarded([&] {
        if (Window *w = frontWindow()) {
            if (auto r = w->runMenuHandler(name)) {
                handled = true;
                if (*r) return;
            }
        }
        auto it = m_menuHandlers.find(name);
        if (it != m_menuHandlers.end()) {
            handled = true;
            (*it)();
        }
    });
    return handled;
}

} // namespace fw
