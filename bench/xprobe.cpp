// Watches the X server for the moment something a user waits for happens, and prints it as
// CLOCK_MONOTONIC milliseconds (the clock of Python's time.monotonic()). Prints "ready" once it
// watches, then the time, or "timeout" after five seconds.
//   xprobe map             a new top-level window mapped (a selection overlay, an editor)
//   xprobe pixel X Y RGB   the screen's pixel at X,Y becomes RGB (hex, e.g. ff00ff)
//   xprobe owner           the CLIPBOARD selection changes owner
// Polls sleep 0.5 ms in between, so the probe leaves the cores to what it measures. (Grabbing
// the pointer to see whether another client holds it would disturb the key grabs measured.)

#include <xcb/xcb.h>

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
    const double end = nowMs() + 5000;
    while (nowMs() < end) {
        bool seen = false;
        if (mode == "map") seen = mappedSince(c);
        if (mode == "pixel") seen = pixelAt(c, root, x, y) == colour;
        if (mode == "owner") seen = clipboardOwner(c, clipboard) != ownerBefore;
        if (seen) {
            std::printf("%.3f\n", nowMs());
            return 0;
        }
        usleep(500);
    }
    std::printf("timeout\n");
    return 1;
}
