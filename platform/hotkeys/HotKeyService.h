#pragma once
// System-wide hot keys. The object that claims a key (AddKey) and the object that hears the
// press (a listener of hotKeyPressed) are linked by the signature alone. Presses are delivered
// through the event loop, on the main thread.

#include <QObject>

namespace fw {

// Modifier bits of AddKey: Command (Control here) and Shift.
inline constexpr int kCmdKey = 256;
inline constexpr int kShiftKey = 512;
inline constexpr int kOptionKey = 2048;
inline constexpr int kControlKey = 4096;

class HotKeyService : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // The key code that types the character in the layout in force; -1 when none does.
    virtual int AsciiToKeyCode(int ascii) = 0;
    // Claims a combination. A claim that fails is silent: the key simply never fires.
    virtual void AddKey(int keycode, int modifiers, quint32 signature, int id) = 0;
    // Presses made until now have been served: those still on their way are dropped.
    virtual void pressesHandledUntilNow() {}
    // What the user should do to get the key, when the desktop has not given it; empty when
    // the key is claimed (or the claim is silent, as on X11).
    virtual QString unboundHint() const { return {}; }

signals:
    void hotKeyPressed(quint32 signature, int id);
    void unboundHintChanged();
};

// Where no global key can be had (no X server): accepts everything, never fires.
class NullHotKeyService : public HotKeyService {
public:
    using HotKeyService::HotKeyService;
    int AsciiToKeyCode(int) override { return -1; }
    void AddKey(int, int, quint32, int) override {}
};

// Four characters packed into an integer, first character in the top byte.
constexpr quint32 OSTypeFromString(const char (&s)[5])
{
    return (quint32(quint8(s[0])) << 24) | (quint32(quint8(s[1])) << 16) |
           (quint32(quint8(s[2])) << 8) | quint32(quint8(s[3]));
}

} // namespace fw
