#include "platform/hotkeys/X11HotKeyService.h"

#include "platform/core/X11.h"

#include <QCoreApplication>
#include <cstdlib>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xkbcommon/xkbcommon.h>

namespace fw {

// Lock (CapsLock) and Mod2 (NumLock) must not stop the combination from firing.
static constexpr quint16 kIgnoredMasks[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                            XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

std::unique_ptr<HotKeyService> X11HotKeyService::createIfAvailable(QObject *parent)
{
    xcb_connection_t *conn = x11::connection();
    if (!conn) return std::make_unique<NullHotKeyService>(parent);
    return std::make_unique<X11HotKeyService>(conn, x11::root(conn), parent);
}

X11HotKeyService::X11HotKeyService(xcb_connection_t *connection, quint32 rootWindow,
                                   QObject *parent)
    : HotKeyService(parent), m_conn(connection), m_root(rootWindow)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeyService::~X11HotKeyService()
{
    if (QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
}

quint16 X11HotKeyService::xModifiers(int modifiers)
{
    quint16 mask = 0;
    if (modifiers & kCmdKey) mask |= XCB_MOD_MASK_CONTROL;
    if (modifiers & kShiftKey) mask |= XCB_MOD_MASK_SHIFT;
    if (modifiers & kOptionKey) mask |= XCB_MOD_MASK_1;
    if (modifiers & kControlKey) mask |= XCB_MOD_MASK_4;
    return mask;
}

int X11HotKeyService::AsciiToKeyCode(int ascii)
{
    xcb_key_symbols_t *syms = xcb_key_symbols_alloc(m_conn);
    if (!syms) return -1;
    // Latin-1 characters have keysyms equal to their codes.
    xcb_keycode_t *codes = xcb_key_symbols_get_keycode(syms, static_cast<xcb_keysym_t>(ascii));
    int code = (codes && codes[0] != XCB_NO_SYMBOL) ? codes[0] : -1;
    std::free(codes);
    xcb_key_symbols_free(syms);
    return code;
}

QString X11HotKeyService::keysymName(int keycode, bool shifted)
{
    if (keycode <= 0 || keycode > 255) return {};
    xcb_key_symbols_t *syms = xcb_key_symbols_alloc(m_conn);
    if (!syms) return {};
    const xcb_keysym_t sym =
        xcb_key_symbols_get_keysym(syms, static_cast<xcb_keycode_t>(keycode), shifted ? 1 : 0);
    xcb_key_symbols_free(syms);
    char name[64];
    if (sym == XCB_NO_SYMBOL || xkb_keysym_get_name(sym, name, sizeof name) <= 0) return {};
    return QString::fromLatin1(name);
}

void X11HotKeyService::AddKey(int keycode, int modifiers, quint32 signature, int id)
{
    if (keycode <= 0 || keycode > 255) return;
    const quint16 mask = xModifiers(modifiers);
    const auto key = static_cast<xcb_keycode_t>(keycode);
    QList<quint16> held;
    for (quint16 extra : kIgnoredMasks) {
        auto cookie = xcb_grab_key_checked(m_conn, 1, m_root, mask | extra, key,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        if (xcb_generic_error_t *err = xcb_request_check(m_conn, cookie)) {
            std::free(err);
            // Another client holds the combination in some form: let go of ours too, so its
            // owner gets the key whatever the lock keys say. Silent, as claimed keys should be.
            for (quint16 m : held)
                xcb_ungrab_key(m_conn, key, m_root, m);
            xcb_flush(m_conn);
            return;
        }
        held << quint16(mask | extra);
    }
    m_grabs.append({static_cast<quint8>(keycode), mask, signature, id});
}

void X11HotKeyService::pressesHandledUntilNow()
{
    if (m_sinceServed.isValid()) m_dropUntil = m_lastServed + quint32(m_sinceServed.elapsed());
    // The served press's release went elsewhere (its grab was let go): ask whether the key is up.
    if (m_held && m_servedKey != 0 && !keyDown(m_servedKey)) m_held = false;
}

bool X11HotKeyService::keyDown(quint8 keycode) const
{
    xcb_query_keymap_reply_t *reply =
        xcb_query_keymap_reply(m_conn, xcb_query_keymap(m_conn), nullptr);
    const bool down = reply && (reply->keys[keycode / 8] & (1 << (keycode % 8)));
    std::free(reply);
    return down;
}

// Server times are milliseconds that wrap around: compare by difference.
static bool notAfter(quint32 a, quint32 b)
{
    return qint32(a - b) <= 0;
}

bool X11HotKeyService::isNewPress(quint32 time)
{
    // Repeats come as presses while the key is held, or as a release and a press of one time. A
    // key held for over a second without a repeat has lost its release elsewhere.
    const bool heldRepeat = m_held && notAfter(time, m_lastKeyTime + 1000);
    const bool pairedRepeat = time == m_lastRelease;
    m_held = true;
    m_lastKeyTime = time;
    if (heldRepeat || pairedRepeat) return false;
    return !(m_dropUntil != 0 && notAfter(time, m_dropUntil));
}

void X11HotKeyService::grabAgain()
{
    // The same keys as at start (the key that typed "2" then), claimed anew: a new keyboard
    // mapping can leave a passive grab without effect.
    const QList<Grab> grabs = m_grabs;
    for (const Grab &g : grabs)
        for (quint16 extra : kIgnoredMasks)
            xcb_ungrab_key(m_conn, g.keycode, m_root, g.mask | extra);
    m_grabs.clear();
    for (const Grab &g : grabs) {
        const int modifiers = ((g.mask & XCB_MOD_MASK_CONTROL) ? kCmdKey : 0) |
                              ((g.mask & XCB_MOD_MASK_SHIFT) ? kShiftKey : 0) |
                              ((g.mask & XCB_MOD_MASK_1) ? kOptionKey : 0) |
                              ((g.mask & XCB_MOD_MASK_4) ? kControlKey : 0);
        AddKey(g.keycode, modifiers, g.signature, g.id);
    }
}

bool X11HotKeyService::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t") return false;
    auto *ev = static_cast<xcb_generic_event_t *>(message);
    const quint8 type = ev->response_type & ~0x80;
    if (type == XCB_MAPPING_NOTIFY) {
        // Queued, so that Qt has read the new mapping first.
        QMetaObject::invokeMethod(
            this, [this] { grabAgain(); }, Qt::QueuedConnection);
        return false;
    }
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) return false;
    auto *kp = reinterpret_cast<xcb_key_press_event_t *>(ev);
    const quint16 state = kp->state & ~(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    for (const Grab &g : m_grabs) {
        if (g.keycode != kp->detail) continue;
        if (type == XCB_KEY_RELEASE) {
            m_held = false;
            m_lastRelease = kp->time;
            return false;
        }
        if (g.mask != (state & 0xff)) continue;
        if (!isNewPress(kp->time)) return true;
        m_lastServed = kp->time;
        m_sinceServed.start();
        if (kp->event == m_root) {
            // The press made our passive grab active until the key's release; let go of it at
            // once, so that the selection tool the capture starts gets the keyboard at its first
            // try instead of retrying until the hand has let go.
            m_servedKey = kp->detail;
            xcb_ungrab_keyboard(m_conn, XCB_CURRENT_TIME);
            xcb_flush(m_conn);
        }
        // Queued: the handler runs as an ordinary event, not inside X event processing.
        QMetaObject::invokeMethod(
            this, [this, sig = g.signature, id = g.id] { emit hotKeyPressed(sig, id); },
            Qt::QueuedConnection);
        return true;
    }
    return false;
}

} // namespace fw
