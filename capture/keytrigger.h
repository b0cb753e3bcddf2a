#pragma once
// Hears the application's events, among them the hot key, and runs one capture per press: the
// capture command, then the clipboard. What it takes is announced twice: the picture as the
// clipboard gave it (for the drawer, before anything can fail for the editor), then the opaque
// capture made of it. One capture at a time: a press during a capture, or made while a dialog
// holds the program (the splash excepted), starts none.

#include <QImage>
#include <QObject>

namespace fw {
class HotKeyService;
struct Services;
} // namespace fw

class keytrigger : public QObject {
    Q_OBJECT
public:
    keytrigger(fw::HotKeyService &events, fw::Services &services, QObject *parent = nullptr);
    // Starts delivery of hot key events to this object.
    void Listen();
    void Event_HotKeyPressed(quint32 hotkeysignature, int hotkeyid);

signals:
    // The clipboard's picture, as it came.
    void pictureTaken(const QImage &picture);
    // The capture made of it, opaque; nil when it could not be made.
    void captured(const QImage &mypic);

private:
    fw::HotKeyService &m_events;
    fw::Services &m_services;
    bool m_listening = false;
    bool m_capturing = false;
};

// The signature every press of our key carries.
quint32 captureSignature();
