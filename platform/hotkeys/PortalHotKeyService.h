#pragma once
// Hot keys on a Wayland session, through the desktop's GlobalShortcuts portal where it offers
// one (the compositor owns the keyboard there; an X11 grab would fire only while one of our
// windows had focus). The session is opened asynchronously under a stable token, so the desktop
// recognises the program from one start to the next and keeps the key the user confirmed.
// Where the portal is missing or refuses, nothing fires and unboundHint() says what to bind.
// When the portal restarts, the session is opened again and the desktop gives the key back.

#include "platform/hotkeys/HotKeyService.h"

#include <QDBusMessage>
#include <QTimer>
#include <QVariantMap>
#include <functional>

namespace fw {

// The portal's trigger text: modifiers as SHIFT/CTRL/ALT upper case joined with '+', then the
// keysym the key types. Shift is used up by the shifted keysym when the key has one (Shift+2
// arrives as "at" on a US layout, as "quotedbl" on a German one).
QString portalTrigger(int modifiers, const QString &plainKeysym, const QString &shiftedKeysym);

class PortalHotKeyService : public HotKeyService {
    Q_OBJECT
public:
    // keysymName(keycode, shifted): the name of what the key types, empty when unknown.
    using KeysymNames = std::function<QString(int keycode, bool shifted)>;
    PortalHotKeyService(std::function<int(int ascii)> keyCodeOf, KeysymNames keysymName,
                        QObject *parent = nullptr);

    int AsciiToKeyCode(int ascii) override;
    void AddKey(int keycode, int modifiers, quint32 signature, int id) override;
    QString unboundHint() const override;

    // The token under which the desktop keeps our shortcuts from one start to the next.
    static constexpr const char *kSessionToken = "vantrel";

private slots:
    void onActivated(const QDBusMessage &signal);

private:
    void openSession();
    void portalOwnerChanged(const QString &name, const QString &before, const QString &now);
    void sessionCreated(uint response, const QVariantMap &results);
    void shortcutsListed(uint response, const QVariantMap &results);
    QVariant shortcuts() const;
    void setBound(bool bound);

    std::function<int(int)> m_keyCodeOf;
    KeysymNames m_keysymName;
    QString m_trigger;
    quint32 m_signature = 0;
    int m_id = 0;
    bool m_asked = false;
    bool m_bindAsked = false;
    bool m_opening = false;
    int m_generation = 0; // counts the portal's departures
    int m_tries = 0;
    QString m_session;
    QString m_lostSession;
    QTimer m_reopen;
    bool m_bound = false;
};

} // namespace fw
