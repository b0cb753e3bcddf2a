#pragma once
// Hot keys on X11: a passive key grab on the root window, read through Qt's native event filter.
// One press is one press: the repeats of a held key are not (whether the server reports them as
// presses alone or as release-press pairs of one time), nor presses made before the last one was
// served. A combination is claimed whole or not at all. A served press lets go of the keyboard at
// once, so that what the press starts can take it.

#include "platform/hotkeys/HotKeyService.h"

#include <QAbstractNativeEventFilter>
#include <QElapsedTimer>
#include <QList>

struct xcb_connection_t;

namespace fw {

class X11HotKeyService : public HotKeyService, public QAbstractNativeEventFilter {
public:
    // Null when the application does not run on X11.
    static std::unique_ptr<HotKeyService> createIfAvailable(QObject *parent = nullptr);

    X11HotKeyService(xcb_connection_t *connection, quint32 rootWindow, QObject *parent);
    ~X11HotKeyService() override;

    int AsciiToKeyCode(int ascii) override;
    // The XKB name of what the key types, with Shift or without; empty when nothing.
    QString keysymName(int keycode, bool shifted);
    void AddKey(int keycode, int modifiers, quint32 signature, int id) override;
    void pressesHandledUntilNow() override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *) override;

    // The X modifier mask for AddKey's modifier bits.
    static quint16 xModifiers(int modifiers);

private:
    struct Grab {
        quint8 keycode;
        quint16 mask;
        quint32 signature;
        int id;
    };
    // Whether a press in server time is a new press, given what came before.
    bool isNewPress(quint32 time);
    // After a change of the keyboard mapping: the same keys claimed anew.
    void grabAgain();
    bool keyDown(quint8 keycode) const;

    xcb_connection_t *m_conn;
    quint32 m_root;
    QList<Grab> m_grabs;
    bool m_held = false;
    quint32 m_lastRelease = 0, m_lastKeyTime = 0;
    quint32 m_lastServed = 0;    // server time of the last press delivered
    QElapsedTimer m_sinceServed; // local time since then
    quint32 m_dropUntil = 0;     // server time up to which presses were for earlier captures
    quint8 m_servedKey = 0;      // the key of the last press served
};

} // namespace fw
