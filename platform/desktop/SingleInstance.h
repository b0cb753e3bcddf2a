#pragma once
// One resident program per session. The first to start owns the session bus name
// com.Morlane.Vantrel, with an object /com/Morlane/Vantrel that offers Capture(),
// ShowPreferences() and Quit(); a later start hands its request to it and exits. Without a
// session bus every start runs on its own, as if alone. Requests are answered from a thread of
// their own, so a later start never waits on a capture; one that comes during a capture is
// carried out after it, and one that comes while the program ends is dropped.

#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

class QDBusConnection;

namespace fw {

class SingleInstance : public QObject {
    Q_OBJECT
public:
    enum class Role { Alone, First, Later };
    SingleInstance();
    ~SingleInstance() override;
    // Tries to own the name; Later when another program owns it.
    Role claim();
    // From a later start: the request to the first, by its method name ("" asks for nothing).
    static bool send(const QString &method);

    std::function<void()> onCapture, onShowPreferences, onQuit;

    // The requests as the bus delivers them; each is carried out from the event loop.
    void Capture();
    void ShowPreferences();
    void Quit();

private:
    Role own(QDBusConnection &bus);
    // A bus that went away and came back (a restarted session bus) is joined again.
    void rejoin();
    class Receiver;
    std::unique_ptr<Receiver> m_receiver;
    QThread m_answering; // where m_receiver lives: the main thread may stand still

    bool m_owner = false;
    QString m_bus; // the connection that holds the name
};

} // namespace fw
