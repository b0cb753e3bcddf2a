#pragma once
// Hot keys on X11: a passive key grab on the root window, read through Qt's native event filter.

#include "platform/HotKeyService.h"

#include <QAbstractNativeEventFilter>
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
    void AddKey(int keycode, int modifiers, quint32 signature, int id) override;
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
    xcb_connection_t *m_conn;
    quint32 m_root;
    QList<Grab> m_grabs;
};

} // namespace fw
