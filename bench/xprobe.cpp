// Watches the X server for the moment something a user waits for happens, and prints it as
// CLOCK_MONOTONIC milliseconds (the clock of Python's time.monotonic()). Prints "ready" once it
// watches, then the time, or "timeout" after five seconds.
//   xprobe map             a new top-level window mapped (a selection overlay, an editor)
//   xprobe pixel X Y RGB   the screen's pixel at X,Y becomes RGB (hex, e.g. ff00ff)
//   xprobe owner           the CLIPBOARD selection changes owner
// With "then INPUT" after them, the probe makes the input itself once it watches (XTest) and
// prints how long after it the moment came, in ms: "hotkey" (Shift+Control+2) or "release"
// (the first button let go). So no program's start-up (xdotool's) is in the figure.
// Polls sleep 0.5 ms in between, so the probe leaves the cores to what it measures. (Grabbing
// the pointer to see whether another client holds it would disturb the key grabs measured.)

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>

namespace {

double nowMs()
{
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

// A new top-level window mapped since the watch began (SubstructureNotify on the root).
bool mappedSince(xcb_connection_t *c)
{
    bool mapped = false;
    while (xcb_generic_event_t *e = xcb_poll_for_event(c)) {
        if ((e->response_type & 0x7f) == XCB_MAP_NOTIFY) mapped = true;
        std::free(e);
    }
    return mapped;
}

uint32_t pixelAt(xcb_connection_t *c, xcb_window_t root, int x, int y)
{
    auto *r = xcb_get_image_reply(
        c, xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, root, int16_t(x), int16_t(y), 1, 1, ~0u),
        nullptr);
    uint32_t v = 0;
    if (r && xcb_get_image_data_length(r) >= 4) std::memcpy(&v, xcb_get_image_data(r), 4);
    std::free(r);
    return v & 0xffffff;
}

xcb_window_t clipboardOwner(xcb_connection_t *c, xcb_atom_t clipboard)
{
    auto *r = xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, clipboard), nullptr);
    const xcb_window_t w = r ? r->owner : XCB_NONE;
    std::free(r);
    return w;
}

xcb_keycode_t keycode(xcb_key_symbols_t *syms, xcb_keysym_t sym)
{
    xcb_keycode_t *codes = xcb_key_symbols_get_keycode(syms, sym);
    const xcb_keycode_t code = codes ? codes[0] : 0;
    std::free(codes);
    return code;
}

struct Hand {
    xcb_connection_t *c;
    xcb_window_t root;
    xcb_keycode_t keys[3] = {}; // Control, Shift, 2
    bool holding = false;

    void fake(uint8_t type, uint8_t detail)
    {
        xcb_test_fake_input(c, type, detail, XCB_CURRENT_TIME, root, 0, 0, 0);
    }
    void sync() { std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); }

    // The input that counts; returns its moment. Keys stay down as a hand's do, until letGo().
    double make(const std::string &what)
    {
        if (what == "release") {
            fake(XCB_BUTTON_RELEASE, 1);
            xcb_flush(c);
            return nowMs();
        }
        xcb_key_symbols_t *syms = xcb_key_symbols_alloc(c);
        keys[0] = keycode(syms, 0xffe3), keys[1] = keycode(syms, 0xffe1),
        keys[2] = keycode(syms, '2');
        xcb_key_symbols_free(syms);
        fake(XCB_KEY_PRESS, keys[0]), fake(XCB_KEY_PRESS, keys[1]);
        sync(); // the modifiers are down before the key
        fake(XCB_KEY_PRESS, keys[2]);
        xcb_flush(c);
        holding = true;
        return nowMs();
    }
    void letGo()
    {
        if (!holding) return;
        fake(XCB_KEY_RELEASE, keys[2]), fake(XCB_KEY_RELEASE, keys[1]),
            fake(XCB_KEY_RELEASE, keys[0]);
        sync();
        holding = false;
    }
};

} // namespace

int main(int argc, char **argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) return 2;
    xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(c, root, XCB_CW_EVENT_MASK, &mask);
    auto *atom = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, 9, "CLIPBOARD"), nullptr);
    const xcb_atom_t clipboard = atom ? atom->atom : XCB_NONE;
    std::free(atom);
    const xcb_window_t ownerBefore = clipboardOwner(c, clipboard);
    const int x = argc > 3 ? std::atoi(argv[2]) : 0, y = argc > 3 ? std::atoi(argv[3]) : 0;
    const uint32_t colour = argc > 4 ? uint32_t(std::strtoul(argv[4], nullptr, 16)) : 0;
    if (mode != "map" && mode != "pixel" && mode != "owner") return 2;
    std::printf("ready\n");
    std::fflush(stdout);
    Hand hand{c, root};
    double since = 0;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "then") == 0) since = hand.make(argv[i + 1]);
    const double end = nowMs() + 5000;
    while (nowMs() < end) {
        if (hand.holding && nowMs() - since >= 80) hand.letGo(); // a quick press lasts about that
        bool seen = false;
        if (mode == "map") seen = mappedSince(c);
        if (mode == "pixel") seen = pixelAt(c, root, x, y) == colour;
        if (mode == "owner") seen = clipboardOwner(c, clipboard) != ownerBefore;
        if (seen) {
            const double at = nowMs();
            while (hand.holding && nowMs() - since < 80)
                usleep(500);
            hand.letGo();
            std::printf("%.3f\n", at - since);
            return 0;
        }
        usleep(500);
    }
    hand.letGo();
    std::printf("timeout\n");
    return 1;
}
