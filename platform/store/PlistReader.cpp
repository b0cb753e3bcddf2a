#include "platform/store/PlistReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <plist/plist.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fw::plistread {

namespace {

constexpr const char *kNul = "a NUL byte in a string or key";

// The XML parser's view of the bytes, followed step by step where it decides what is skipped:
// comments, CDATA, processing instructions, the DOCTYPE and quoted text inside a tag. Where the
// parser could read a tag differently from this scan, the file is refused. Elsewhere this scan
// may count more than the parser builds, never less.
Shape scanXml(std::string_view x)
{
    Shape s;
    if (x.find('\0') != x.npos) return {0, 0, kNul};
    // The end of a markup that starts at from and ends at the first `end`, provided the double
    // quotes before it pair up: the parser skips quoted text when it looks for that end.
    auto endOf = [&](size_t from, std::string_view end) -> size_t {
        const size_t at = x.find(end, from);
        if (at == x.npos || std::count(x.begin() + from, x.begin() + at, '"') % 2) return x.npos;
        return at;
    };
    int open = 0; // containers around the current position
    for (size_t lt = x.find('<'); lt != x.npos && !outsideLimits(s); lt = x.find('<', lt + 1)) {
        const std::string_view rest = x.substr(lt);
        size_t end = x.npos;
        if (rest.starts_with("<!--"))
            end = x.find("-->", lt + 4);
        else if (rest.starts_with("<![CDATA["))
            end = x.find("]]>", lt + 9);
        else if (rest.starts_with("<?"))
            end = endOf(lt + 1, "?>");
        else if (rest.starts_with("<!DOCTYPE")) {
            end = endOf(lt, ">");
            if (end != x.npos && x.substr(lt, end - lt).find('[') != x.npos) end = x.npos;
        } else if (!rest.starts_with("<!")) {
            end = endOf(lt, ">");
            if (end == x.npos) return {s.depth, s.nodes, "a tag without its end"};
            std::string_view name = x.substr(lt + 1, end - lt - 1);
            name = name.substr(0, std::min(name.find_first_of(" \r\n\t<"), name.size()));
            const bool empty = x[end - 1] == '/';
            if (empty && lt + name.size() >= end - 1) name.remove_suffix(1);
            if (name == "/array" || name == "/dict")
                open = std::max(0, open - 1);
            else if (name != "plist" && !name.starts_with('/')) {
                ++s.nodes;
                s.depth = std::max(s.depth, open + 1);
                if (!empty && (name == "array" || name == "dict")) ++open;
            }
            lt = end;
            continue;
        }
        if (end == x.npos) return {s.depth, s.nodes, "markup without its end"};
        lt = end;
    }
    return s;
}

// A binary list's object table, walked from the top object without recursion. Shared objects
// count once per reference, as the parser copies them; a reference back to an object that
// contains it is refused.
class BinaryScan {
public:
    explicit BinaryScan(std::string_view b) : m_b(b) {}

    Shape run()
    {
        if (m_b.size() < 8 + 32) return stop("too short");
        const size_t trailer = m_b.size() - 32;
        m_offsetSize = byte(trailer + 6);
        m_refSize = byte(trailer + 7);
        const uint64_t count = number(trailer + 8, 8), top = number(trailer + 16, 8);
        m_table = number(trailer + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_refSize < 1 || m_refSize > 8 || count == 0 ||
            count > uint64_t(kMaxNodes) || top >= count || m_table < 8 || m_table > trailer ||
            (trailer - m_table) / m_offsetSize < count)
            return stop("a broken trailer");
        m_done.assign(size_t(count), {0, 0});
        struct Frame {
            size_t object, refs, at, count;
            int depth, nodes;
        };
        std::vector<Frame> path;
        auto enter = [&](size_t object) -> bool {
            if (path.size() >= size_t(kMaxDepth)) {
                m_shape.depth = kMaxDepth + 1;
                return false;
            }
            size_t refs = 0, children = 0;
            if (!objectAt(object, &refs, &children)) return false;
            m_done[object].depth = -1; // on the path
            path.push_back({object, refs, 0, children, 1, 1});
            return true;
        };
        if (!enter(size_t(top))) return m_shape;
        while (!path.empty()) {
            Frame &f = path.back();
            if (f.at < f.count) {
                const uint64_t child = number(f.refs + f.at++ * m_refSize, m_refSize);
                if (child >= m_done.size() || m_done[child].depth < 0) return stop("a loop");
                if (m_done[child].depth == 0) {
                    if (!enter(size_t(child))) return m_shape;
                } else {
                    f.depth = std::max(f.depth, m_done[child].depth + 1);
                    f.nodes = std::min(f.nodes + m_done[child].nodes, kMaxNodes + 1);
                }
                continue;
            }
            const Frame done = f;
            m_done[done.object] = {done.depth, done.nodes};
            path.pop_back();
            if (!path.empty()) {
                Frame &up = path.back();
                up.depth = std::max(up.depth, done.depth + 1);
                up.nodes = std::min(up.nodes + done.nodes, kMaxNodes + 1);
            }
        }
        m_shape.depth = m_done[top].depth;
        m_shape.nodes = m_done[top].nodes;
        return m_shape;
    }

private:
    // An object's levels and values; depth 0: not seen yet, -1: on the path being walked.
    struct Done {
        int depth, nodes;
    };

    bool refuse(const char *why)
    {
        m_shape.refused = why;
        return false;
    }
    Shape stop(const char *why)
    {
        refuse(why);
        return m_shape;
    }
    uint8_t byte(size_t at) const { return uint8_t(m_b[at]); }
    uint64_t number(size_t at, size_t width) const
    {
        uint64_t n = 0;
        for (size_t i = 0; i < width; ++i)
            n = n << 8 | byte(at + i);
        return n;
    }

    // Where an object's references start and how many there are (keys and values for a
    // dictionary); a string's text is checked for NUL here. False when refused.
    bool objectAt(size_t object, size_t *refs, size_t *children)
    {
        const uint64_t at = number(m_table + object * m_offsetSize, m_offsetSize);
        if (at < 8 || at >= m_table) return refuse("an object outside the table");
        const uint8_t marker = byte(at), kind = marker >> 4;
        uint64_t length = marker & 0x0f;
        size_t body = at + 1;
        if (length == 0x0f && kind >= 0x4 && kind != 0x8) {
            const uint8_t width = body < m_table ? byte(body) : 0;
            if ((width >> 4) != 0x1 || (width & 0x0f) > 3) return refuse("a broken length");
            const size_t bytes = size_t(1) << (width & 0x0f);
            if (body + 1 + bytes > m_table) return refuse("a broken length");
            length = number(body + 1, bytes);
            body += 1 + bytes;
        }
        const uint64_t room = m_table - body;
        if (kind == 0x5 || kind == 0x6) { // text in bytes or in UTF-16 code units
            const uint64_t unit = kind == 0x5 ? 1 : 2;
            if (length > room / unit) return refuse("a string outside the table");
            for (uint64_t i = 0; i < length; ++i)
                if (number(body + i * unit, unit) == 0) return refuse(kNul);
        } else if (kind == 0xa || kind == 0xc || kind == 0xd) { // array, set, dictionary
            const uint64_t n = kind == 0xd ? length * 2 : length;
            if (length > room || n > room / m_refSize)
                return refuse("a container outside the table");
            *refs = body;
            *children = size_t(n);
        }
        return true;
    }

    std::string_view m_b;
    size_t m_offsetSize = 0, m_refSize = 0;
    uint64_t m_table = 0;
    std::vector<Done> m_done;
    Shape m_shape;
};

} // namespace

Shape scanBytes(const char *data, size_t size)
{
    const std::string_view bytes(data, size);
    return bytes.starts_with("bplist00") ? BinaryScan(bytes).run() : scanXml(bytes);
}

Shape scanTree(plist_t top)
{
    Shape s;
    std::vector<std::pair<plist_t, int>> todo{{top, 1}};
    while (!todo.empty() && s.nodes <= kMaxNodes) {
        const auto [node, depth] = todo.back();
        todo.pop_back();
        ++s.nodes;
        s.depth = std::max(s.depth, depth);
        if (depth > kMaxDepth) break;
        switch (plist_get_node_type(node)) {
        case PLIST_STRING: {
            uint64_t length = 0;
            const char *text = plist_get_string_ptr(node, &length);
            if (text && std::strlen(text) != length) s.refused = kNul;
            break;
        }
        case PLIST_ARRAY: {
            plist_array_iter it = nullptr;
            plist_array_new_iter(node, &it);
            for (plist_t item = nullptr;; todo.push_back({item, depth + 1})) {
                item = nullptr;
                plist_array_next_item(node, it, &item);
                if (!item) break;
            }
            std::free(it);
            break;
        }
        case PLIST_DICT: { // keys are not read here: reading one with a NUL byte aborts
            plist_dict_iter it = nullptr;
            plist_dict_new_iter(node, &it);
            for (plist_t item = nullptr;; todo.push_back({item, depth + 1}), ++s.nodes) {
                item = nullptr;
                plist_dict_next_item(node, it, nullptr, &item);
                if (!item) break;
            }
            std::free(it);
            break;
        }
        default:
            break;
        }
    }
    return s;
}

const char *outsideLimits(const Shape &shape)
{
    if (shape.refused) return shape.refused;
    if (shape.depth > kMaxDepth) return "nested too deep";
    if (shape.nodes > kMaxNodes) return "too many values";
    return nullptr;
}

plist_t parse(const char *data, size_t size, const char **why)
{
    const char *reason = nullptr;
    plist_t node = nullptr;
    if (size == 0 || size > kMaxBytes)
        reason = "empty, or too large";
    else if (!(reason = outsideLimits(scanBytes(data, size)))) {
        plist_from_memory(data, uint32_t(size), &node);
        if (!node)
            reason = "not a property list";
        else if ((reason = outsideLimits(scanTree(node)))) {
            plist_free(node);
            node = nullptr;
        }
    }
    if (why) *why = reason;
    return node;
}

Outcome readFile(const char *path, plist_t *out, const char **why)
{
    *out = nullptr;
    const int fd = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0 && (errno == ENOENT || errno == ENOTDIR)) return Outcome::Missing;
    const char *reason = nullptr;
    std::string bytes;
    struct stat st = {};
    if (fd < 0)
        reason = "cannot be opened";
    else if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
        reason = "not a regular file";
    else {
        // One byte beyond the limit tells a file that grew past it since fstat.
        bytes.resize(std::min(size_t(st.st_size), kMaxBytes) + 1);
        size_t got = 0;
        while (got < bytes.size()) {
            const ssize_t n = ::read(fd, bytes.data() + got, bytes.size() - got);
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) reason = "cannot be read";
            if (n <= 0) break;
            got += size_t(n);
            if (got == bytes.size() && got <= kMaxBytes)
                bytes.resize(std::min(got * 2, kMaxBytes + 1));
        }
        bytes.resize(got);
    }
    if (fd >= 0) ::close(fd);
    if (!reason) *out = parse(bytes.data(), bytes.size(), &reason);
    if (why) *why = reason;
    return *out ? Outcome::Ok : Outcome::Refused;
}

} // namespace fw::plistread
