#pragma once
// Hears the application's events, among them the hot key, and runs one capture per press:
// the capture command, the clipboard, the drawer, the editor. One capture at a time: a press
// during a capture, or made while a dialog holds the program (the splash excepted), starts none.

#include <QObject>

namespace fw {
class HotKeyService;
}

class keytrigger : public QObject {
    Q_OBJECT
public:
    explicit keytrigger(fw::HotKeyService &events, QObject *parent = nullptr);
    // Starts delivery of hot key events to this object.
    void Listen();
    void Event_HotKeyPressed(quint32 hotkeysignature, int hotkeyid);

private:
    fw::HotKeyService &m_events;
    bool m_listening = false;
    bool m_capturing = false;
};

// The signature every press of our key carries.
quint32 captureSignature();
