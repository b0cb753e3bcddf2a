#include "app/MachineServices.h"

#include "platform/hotkeys/PortalHotKeyService.h"
#include "platform/hotkeys/X11HotKeyService.h"

#include <QCoreApplication>

// On X11 a grab on the root window. On Wayland the compositor hands out keys: the portal asks
// it, and XWayland's keyboard map (when the program runs there) names the key that types "2".
static std::unique_ptr<fw::HotKeyService> hotKeysForThisSession()
{
    std::unique_ptr<fw::HotKeyService> x11 = fw::X11HotKeyService::createIfAvailable();
    if (!fw::isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"),
                              qEnvironmentVariable("WAYLAND_DISPLAY")))
        return x11;
    auto *keyboard = dynamic_cast<fw::X11HotKeyService *>(x11.get());
    std::shared_ptr<fw::HotKeyService> owner(std::move(x11));
    auto keyCodeOf = [owner, keyboard](int ascii) {
        return keyboard ? keyboard->AsciiToKeyCode(ascii) : ascii;
    };
    auto keysymName = [owner, keyboard](int keycode, bool shifted) {
        if (keyboard) return keyboard->keysymName(keycode, shifted);
        // No keyboard map to ask: the character itself, by its ASCII keysym name.
        return shifted || keycode < '0' || keycode > 'z' ? QString() : QString(QChar(keycode));
    };
    return std::make_unique<fw::PortalHotKeyService>(keyCodeOf, keysymName);
}

std::unique_ptr<fw::Services> servicesForThisMachine()
{
    auto s = std::make_unique<fw::Services>(fw::Bundle(QCoreApplication::applicationDirPath()),
                                            fw::configHome());
    s->hotKeys = hotKeysForThisSession();
    return s;
}
