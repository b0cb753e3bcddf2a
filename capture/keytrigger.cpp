#include "capture/keytrigger.h"

#include "platform/core/Picture.h"
#include "capture/CaptureCommand.h"
#include "editor/Window1.h"
#include "platform/framework/Application.h"
#include "platform/system/Clipboard.h"
#include "platform/core/Failure.h"
#include "platform/hotkeys/HotKeyService.h"
#include "platform/framework/Services.h"
#include "platform/framework/StandStill.h"
#include "recent/recentwin.h"

#include <QApplication>
#include <QPainter>
#include <QScopeGuard>
#include <QWidget>

quint32 captureSignature() { return fw::OSTypeFromString("sccp"); }

keytrigger::keytrigger(fw::HotKeyService &events, QObject *parent)
    : QObject(parent), m_events(events)
{
}

void keytrigger::Listen()
{
    if (m_listening) return;
    m_listening = true;
    connect(&m_events, &fw::HotKeyService::hotKeyPressed, this, [this](quint32 sig, int id) {
        fw::guarded([&] { Event_HotKeyPressed(sig, id); });
    });
}

void keytrigger::Event_HotKeyPressed(quint32 hotkeysignature, int)
{
    if (hotkeysignature != captureSignature()) return;
    // The blocking command keeps a capture from starting inside another; so must the clipboard
    // read, which serves other events while it waits. A capture made behind a modal dialog (a
    // Save's settings, say) would change what that dialog is about.
    if (m_capturing || fw::Application::ending()) return;
    if (QWidget *modal = QApplication::activeModalWidget(); modal && !modal->inherits("splash")) return;
    m_capturing = true;
    const fw::StandStill still; // a later start's request waits for the end
    const auto done = qScopeGuard([this] {
        m_capturing = false;
        // Presses made while this one was served were for it: none is served afterwards.
        m_events.pressesHandledUntilNow();
    });
    Window1 &w = Window1::instance();
    fw::Services &services = w.services();

    fw::Shell shell(*services.commands);
    shell.Mode = 0;
    const quint32 ownerBefore = fw::Clipboard::owner();
    // The main thread stands still until the user has finished the selection.
    shell.Execute(capture::captureCommandFor(services.osVersionString()));
    if (fw::Application::ending()) return; // a signal ended the selection: the clipboard stays

    fw::Clipboard clipboard(ownerBefore);
    if (!clipboard.PictureAvailable()) return;
    const QImage p = clipboard.Picture();
    // A picture that can't be decoded fails here, before it could reach the drawer.
    fw::nilCheck(p);
    recentwin::instance().addimage(p);

    QImage mask = fw::nilCheck(fw::NewPicture(p.width(), p.height()));
    mask.fill(QColor(0, 0, 0));

    w.mypic = fw::CGCreateImage(fw::BitmapOf(p), mask);
    if (w.mypic.isNull()) return;
    w.loadimage(QString());
}
