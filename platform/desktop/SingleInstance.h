#pragma once
// One resident program per session. The first to start owns the session bus name
// com.Morlane.Vantrel, with an object /com/Morlane/Vantrel that offers Capture(),
// ShowPreferences() and Quit(); a later start hands its request to it and exits. Without a
// session bus every start runs on its own, as if alone.

#include <QObject>
#include <functional>

namespace fw {

class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.Morlane.Vantrel")
public:
    enum class Role { Alone, First, Later };
    // Tries to own the name; Later when another program owns it.
    Role claim();
    // From a later start: the request to the first, by its method name ("" asks for nothing).
    static bool send(const QString &method);

    std::function<void()> onCapture, onShowPreferences, onQuit;

public slots:
    void Capture();
    void ShowPreferences();
    void Quit();
};

} // namespace fw
