// x11-grab [-g WxH+X+Y] (-c | file)
// The capture helper's grab on X11: the screen's pixels (the pointer is never in them) of a
// region, or of the whole screen, as an RGB PNG. The PNG is made for a hand-off, not for
// keeping: rows are not filtered and zlib works at its fastest level, in bands side by side, a
// fraction of what a general screenshot tool spends, and still a file any program reads.
// -c: the PNG goes to the clipboard through a pipe into xclip, with no file on the way; xclip
// stays behind to serve it, as it does when started by hand.
// Exit 0 on success; 1 when there is no display, the region is off the screen or xclip failed
// (the clipboard is then as it was); 2 on bad use.

#include <xcb/xcb.h>
#include <zlib.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>
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

// One band of rows as raw deflate blocks: each band starts afresh and all but the last end on a
// byte boundary, so the bands' streams laid end to end are one stream.
struct Band {
    int from = 0, to = 0;
    bool last = false;
    std::string out;
    uLong adler = adler32(0, nullptr, 0);
    bool ok = false;
};

void deflateBand(const Pixels &p, Band &band)
{
    z_stream z{};
    if (deflateInit2(&z, 1, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) return;
    std::vector<uint8_t> row(size_t(p.width) * 3 + 1), out(1 << 18);
    int rc = Z_OK;
    for (int y = band.from; y < band.to && rc != Z_STREAM_ERROR; ++y) {
        const uint8_t *s = p.data + size_t(y) * size_t(p.stride);
        uint8_t *d = row.data();
        *d++ = 0; // filter: none
        for (int x = 0; x < p.width; ++x, s += 4)
            *d++ = s[2], *d++ = s[1], *d++ = s[0];
        band.adler = adler32(band.adler, row.data(), uInt(row.size()));
        z.next_in = row.data();
        z.avail_in = uInt(row.size());
        const int flush = y < band.to - 1 ? Z_NO_FLUSH : band.last ? Z_FINISH : Z_SYNC_FLUSH;
        do {
            z.next_out = out.data();
            z.avail_out = uInt(out.size());
            rc = deflate(&z, flush);
            band.out.append(reinterpret_cast<const char *>(out.data()), out.size() - z.avail_out);
        } while (rc != Z_STREAM_ERROR &&
                 (z.avail_out == 0 || (flush == Z_FINISH && rc != Z_STREAM_END)));
    }
    deflateEnd(&z);
    band.ok = rc != Z_STREAM_ERROR;
}

std::string encodePng(const Pixels &p)
{
    std::string png("\x89PNG\r\n\x1a\n", 8), ihdr;
    put32(ihdr, uint32_t(p.width));
    put32(ihdr, uint32_t(p.height));
    ihdr += std::string("\x08\x02\x00\x00\x00", 5); // 8 bits, RGB, deflate, no filter, no interlace
    chunk(png, "IHDR", ihdr);

    // The bands compressed side by side, one a core: the encode is most of this program's time.
    const int cores = int(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
    const int bands = std::clamp(p.height / 64, 1, cores);
    std::vector<Band> band(static_cast<size_t>(bands));
    for (int i = 0; i < bands; ++i) {
        band[size_t(i)].from = p.height * i / bands;
        band[size_t(i)].to = p.height * (i + 1) / bands;
    }
    band.back().last = true;
    std::vector<std::thread> helpers;
    for (size_t i = 1; i < band.size(); ++i) {
        try {
            helpers.emplace_back(deflateBand, std::cref(p), std::ref(band[i]));
        } catch (const std::system_error &) { // no thread to be had: this one does it
            deflateBand(p, band[i]);
        }
    }
    deflateBand(p, band[0]);
    for (std::thread &t : helpers)
        t.join();

    std::string idat("\x78\x01", 2); // deflate, 32 KiB window, fastest
    uLong adler = band[0].adler;
    for (size_t i = 0; i < band.size(); ++i) {
        if (!band[i].ok) return {};
        idat += band[i].out;
        if (i > 0) {
            const auto rows = z_off_t(band[i].to - band[i].from) * z_off_t(p.width * 3 + 1);
            adler = adler32_combine(adler, band[i].adler, rows);
        }
    }
    put32(idat, uint32_t(adler));
    chunk(png, "IDAT", idat);
    chunk(png, "IEND", std::string());
    return png;
}

bool writeFile(const std::string &png, const char *path)
{
    FILE *f = std::fopen(path, "wb");
    if (!f) return false;
    const bool ok = std::fwrite(png.data(), 1, png.size(), f) == png.size();
    return std::fclose(f) == 0 && ok;
}

bool writeAll(int fd, const std::string &data)
{
    for (size_t done = 0; done < data.size();) {
        const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += size_t(n);
    }
    return true;
}

// xclip reads the whole PNG, takes the clipboard and leaves a child behind to serve it; its
// first process ends then, and so does this program. It is started before the grab, so that its
// start-up runs beside the grab and the encode.
class Xclip {
public:
    bool start()
    {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) return false;
        const pid_t self = ::getpid();
        m_pid = ::fork();
        if (m_pid < 0) {
            ::close(fds[0]), ::close(fds[1]);
            return false;
        }
        if (m_pid == 0) {
            // Should this program die before the PNG is whole, xclip goes with it rather than
            // take the clipboard with what it has read so far.
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (::getppid() != self) ::_exit(1);
            ::dup2(fds[0], 0);
            const int null = ::open("/dev/null", O_WRONLY);
            if (null >= 0) ::dup2(null, 1), ::dup2(null, 2);
            ::execlp("xclip", "xclip", "-selection", "clipboard", "-t", "image/png", "-i",
                     static_cast<char *>(nullptr));
            ::_exit(127);
        }
        ::close(fds[0]);
        m_fd = fds[1];
        return true;
    }
    bool finish(const std::string &png)
    {
        const bool written = writeAll(m_fd, png);
        ::close(m_fd);
        return reap() && written;
    }
    // No picture: xclip must never see the end of its input, or it would take the clipboard
    // with nothing in it.
    void abandon()
    {
        ::kill(m_pid, SIGKILL);
        ::close(m_fd);
        reap();
    }

private:
    bool reap() const
    {
        int status = 0;
        while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
        }
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    pid_t m_pid = -1;
    int m_fd = -1;
};

} // namespace

int main(int argc, char **argv)
{
    int x = 0, y = 0, w = -1, h = -1, i = 1;
    if (argc > 2 && std::strcmp(argv[1], "-g") == 0) {
        if (std::sscanf(argv[2], "%dx%d+%d+%d", &w, &h, &x, &y) != 4) return 2;
        i = 3;
    }
    if (i != argc - 1) {
        std::fprintf(stderr, "usage: x11-grab [-g WxH+X+Y] (-c | file)\n");
        return 2;
    }
    const bool clipboard = std::strcmp(argv[i], "-c") == 0;
    // A broken pipe (xclip gone) is a failure to report, not a signal to die of.
    std::signal(SIGPIPE, SIG_IGN);
    Xclip xclip;
    if (clipboard && !xclip.start()) return 1;
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (!xcb_connection_has_error(c) && w < 0) {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        w = screen->width_in_pixels, h = screen->height_in_pixels;
    }
    Pixels p;
    std::string png;
    if (!xcb_connection_has_error(c) && grab(c, x, y, w, h, p)) png = encodePng(p);
    std::free(p.reply);
    xcb_disconnect(c);
    if (png.empty()) {
        if (clipboard) xclip.abandon();
        return 1;
    }
    return (clipboard ? xclip.finish(png) : writeFile(png, argv[i])) ? 0 : 1;
}
