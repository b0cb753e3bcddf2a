// x11-grab [-g WxH+X+Y] file
// The capture helper's grab on X11: the screen's pixels (the pointer is never in them) of a
// region, or of the whole screen, written as an RGB PNG. The PNG is made for a hand-off, not for
// keeping: rows are not filtered and zlib works at its fastest level, a fraction of what a
// general screenshot tool spends, and still a file any program reads.
// Exit 0 on success; 1 when there is no display or the region is off the screen; 2 on bad use.

#include <xcb/xcb.h>
#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void put32(std::string &out, uint32_t v)
{
    const char b[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
    out.append(b, 4);
}

void chunk(std::string &out, const char *type, const std::string &data)
{
    put32(out, uint32_t(data.size()));
    const size_t at = out.size();
    out.append(type, 4);
    out += data;
    put32(out, uint32_t(crc32(0, reinterpret_cast<const Bytef *>(out.data() + at),
                              uInt(out.size() - at))));
}

struct Pixels {
    int width = 0, height = 0;
    xcb_get_image_reply_t *reply = nullptr;
    const uint8_t *data = nullptr;
    int stride = 0;
};

// The region's pixels as the server holds them: 32 bits a pixel, B, G, R and a pad byte.
bool grab(xcb_connection_t *c, int x, int y, int w, int h, Pixels &p)
{
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    if (w < 1 || h < 1 || x < 0 || y < 0 || x + w > screen->width_in_pixels ||
        y + h > screen->height_in_pixels)
        return false;
    if (screen->root_depth != 24 && screen->root_depth != 32) return false;
    if (xcb_get_setup(c)->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return false;
    xcb_generic_error_t *err = nullptr;
    p.reply =
        xcb_get_image_reply(c,
                            xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, int16_t(x),
                                          int16_t(y), uint16_t(w), uint16_t(h), ~0u),
                            &err);
    std::free(err);
    if (!p.reply || xcb_get_image_data_length(p.reply) < w * h * 4) return false;
    p.width = w, p.height = h, p.data = xcb_get_image_data(p.reply);
    p.stride = xcb_get_image_data_length(p.reply) / h;
    return true;
}

bool writePng(const Pixels &p, const char *path)
{
    std::string png("\x89PNG\r\n\x1a\n", 8), ihdr;
    put32(ihdr, uint32_t(p.width));
    put32(ihdr, uint32_t(p.height));
    ihdr += std::string("\x08\x02\x00\x00\x00", 5); // 8 bits, RGB, deflate, no filter, no interlace
    chunk(png, "IHDR", ihdr);

    z_stream z{};
    if (deflateInit(&z, 1) != Z_OK) return false;
    std::string idat;
    std::vector<uint8_t> row(size_t(p.width) * 3 + 1), out(1 << 18);
    for (int y = 0; y < p.height; ++y) {
        const uint8_t *s = p.data + size_t(y) * size_t(p.stride);
        uint8_t *d = row.data();
        *d++ = 0; // filter: none
        for (int x = 0; x < p.width; ++x, s += 4)
            *d++ = s[2], *d++ = s[1], *d++ = s[0];
        z.next_in = row.data();
        z.avail_in = uInt(row.size());
        const int flush = y == p.height - 1 ? Z_FINISH : Z_NO_FLUSH;
        int rc = Z_OK;
        do {
            z.next_out = out.data();
            z.avail_out = uInt(out.size());
            rc = deflate(&z, flush);
            idat.append(reinterpret_cast<const char *>(out.data()), out.size() - z.avail_out);
        } while (z.avail_out == 0 || (flush == Z_FINISH && rc != Z_STREAM_END));
        if (rc == Z_STREAM_ERROR) break;
    }
    deflateEnd(&z);
    chunk(png, "IDAT", idat);
    chunk(png, "IEND", std::string());

    FILE *f = std::fopen(path, "wb");
    if (!f) return false;
    const bool ok = std::fwrite(png.data(), 1, png.size(), f) == png.size();
    return std::fclose(f) == 0 && ok;
}

} // namespace

int main(int argc, char **argv)
{
    int x = 0, y = 0, w = -1, h = -1, i = 1;
    if (argc > 2 && std::strcmp(argv[1], "-g") == 0) {
        if (std::sscanf(argv[2], "%dx%d+%d+%d", &w, &h, &x, &y) != 4) return 2;
        i = 3;
    }
    if (i != argc - 1) {
        std::fprintf(stderr, "usage: x11-grab [-g WxH+X+Y] file\n");
        return 2;
    }
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c)) return 1;
    if (w < 0) {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        w = screen->width_in_pixels, h = screen->height_in_pixels;
    }
    Pixels p;
    const bool ok = grab(c, x, y, w, h, p) && writePng(p, argv[i]);
    std::free(p.reply);
    xcb_disconnect(c);
    return ok ? 0 : 1;
}
