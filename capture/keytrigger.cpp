#include "capture/keytrigger.h"

#include "capture/CaptureCommand.h"
#include "platform/core/Failure.h"
#include "platform/core/Logging.h"
#include "platform/core/Picture.h"
#include "platform/core/StandStill.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"
#include "platform/hotkeys/HotKeyService.h"
#include "platform/system/Clipboard.h"
#include "platform/system/Shell.h"

#include <QApplication>
#include <QPainter>
#include <QScopeGuard>
#include <QWidget>

quint32 captureSignature()
{
    return fw::OSTypeFromString("sccp");
}

keytrigger::keytrigger(fw::HotKeyService &events, fw::Services &services, QObject *parent)
    : QObject(parent), m_events(events), m_services(services)
{
}

void keytrigger::Listen()
{
    if (m_listening) return;
    m_listening = true;
    fw::connectGuarded(&m_events, &fw::HotKeyService::hotKeyPressed, this,
                       [this](quint32 sig, int id) { Event_HotKeyPressed(sig, id); });
}

void keytrigger::Event_HotKeyPressed(quint32 hotkeysignature, int)
{
    if (hotkeysignature != captureSignature()) return;
    qCDebug(lcCapture) << "hot key pressed";
    // The blocking command keeps a capture from starting inside another; so must the clipboard
    // read, which serves other events while it waits. A capture made behind a modal dialog (a
    // Save's settings, say) would change what that dialog is about.
    if (m_capturing || fw::Application::ending()) return;
    if (QWidget *modal = QApplication::activeModalWidget(); modal && !modal->inherits("splash")) {
        qCDebug(lcCapture) << "no capture while a dialog holds the program:"
                           << modal->windowTitle();
        return;
    }
    m_capturing = true;
    const fw::StandStill still; // a later start's request waits for the end
    const auto done = qScopeGuard([this] {
        m_capturing = false;
        // Presses made while this one was served were for it: none is served afterwards.
        m_events.pressesHandledUntilNow();
    });
    fw::Shell shell(*m_services.commands);
    shell.Mode = 0;
    const quint32 ownerBefore = fw::Clipboard::owner();
    // The main thread stands still until the user has finished the selection.
    const QString command = capture::captureCommandFor(m_services.osVersionString());
    qCDebug(lcCapture) << "running" << command;
    shell.Execute(command);
    if (fw::Application::ending()) return; // a signal ended the selection: the clipboard stays

    fw::Clipboard clipboard(ownerBefore);
    if (!clipboard.PictureAvailable()) {
        qCDebug(lcCapture) << "no picture on the clipboard";
        return;
    }
    const QImage p = clipboard.Picture();
    if (p.isNull()) qCWarning(lcCapture) << "the clipboard's picture does not decode";
    // A picture that can't be decoded fails here, before it could reach the drawer.
    fw::nilCheck(p);
    qCDebug(lcCapture) << "picture taken:" << p.size();
    emit pictureTaken(p);
    fw::rethrowPending(); // what a listener failed with ends this press too

    // Seen through an all-black mask the picture is itself, opaque: no mask is made. A copy
    // that can't be had fails here like a picture that can't be decoded.
    emit captured(fw::nilCheck(fw::BitmapOf(p)));
    fw::rethrowPending();
}
