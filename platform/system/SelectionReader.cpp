#include "platform/system/SelectionReader.h"

#include "platform/core/EventLoop.h"
#include "platform/core/Logging.h"
#include "platform/core/X11.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <poll.h>
#include <vector>

namespace fw {

namespace {

struct FreeDeleter {
    void operator()(void *p) const { std::free(p); }
};
template <typename T> using Owned = std::unique_ptr<T, FreeDeleter>;

// A picture of 8K by 8K in any format fits; a bigger answer is refused, not collected.
constexpr qsizetype kMaxBytes = qsizetype(512) << 20;

} // namespace

SelectionReader::SelectionReader(QDeadlineTimer deadline) : m_deadline(deadline)
{
    m_c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_c)) return;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_c)).data;
    if (!screen) return;
    m_clipboard = x11::atom(m_c, "CLIPBOARD");
    m_property = x11::atom(m_c, "VANTREL_SELECTION");
    m_incr = x11::atom(m_c, "INCR");
    m_targets = x11::atom(m_c, "TARGETS");
    if (!m_clipboard || !m_property || !m_incr || !m_targets) return;
    const xcb_window_t window = xcb_generate_id(m_c);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_c, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    m_window = window;
}

SelectionReader::~SelectionReader()
{
    if (m_c) xcb_disconnect(m_c); // the window goes with the connection
}

xcb_generic_event_t *SelectionReader::next()
{
    xcb_flush(m_c);
    for (;;) {
        if (xcb_generic_event_t *e = xcb_poll_for_event(m_c)) return e;
        if (xcb_connection_has_error(m_c) || m_deadline.hasExpired()) return nullptr;
        // The owner may be this very program: its events are served between looks.
        yieldOnce();
        pollfd fd{xcb_get_file_descriptor(m_c), POLLIN, 0};
        ::poll(&fd, 1, int(std::clamp<qint64>(m_deadline.remainingTime(), 0, 4)));
    }
}

std::optional<QByteArray> SelectionReader::property(bool *incremental)
{
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_c, xcb_get_property(m_c, 1, m_window, m_property, XCB_GET_PROPERTY_TYPE_ANY, 0, ~0u / 4),
        nullptr));
    xcb_flush(m_c); // the delete is what asks an incremental owner for the next piece
    if (!reply || reply->type == XCB_NONE) return std::nullopt;
    if (incremental) *incremental = reply->type == m_incr;
    return QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

QByteArray SelectionReader::read(const QByteArray &target)
{
    if (!isValid()) return {};
    const xcb_atom_t type = target == "TARGETS" ? m_targets : x11::atom(m_c, target.constData());
    if (!type) return {};
    xcb_delete_property(m_c, m_window, m_property);
    xcb_convert_selection(m_c, m_window, m_clipboard, type, m_property, XCB_CURRENT_TIME);
    bool incremental = false;
    QByteArray data;
    for (;;) {
        const Owned<xcb_generic_event_t> e(next());
        if (!e) {
            qCDebug(lcCapture) << "the clipboard's owner gave no" << target << "in time";
            return {};
        }
        const auto kind = e->response_type & 0x7f;
        if (kind != XCB_SELECTION_NOTIFY) continue;
        const auto *n = reinterpret_cast<const xcb_selection_notify_event_t *>(e.get());
        if (n->requestor != m_window || n->selection != m_clipboard || n->target != type)
            continue;                           // a late answer to an earlier question
        if (n->property == XCB_NONE) return {}; // refused or nothing there
        data = property(&incremental).value_or(QByteArray());
        break;
    }
    if (incremental) { // the answer comes in pieces, each after we took the one before
        data.clear();
        for (;;) {
            const Owned<xcb_generic_event_t> e(next());
            if (!e) return {};
            if ((e->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) continue;
            const auto *n = reinterpret_cast<const xcb_property_notify_event_t *>(e.get());
            if (n->window != m_window || n->atom != m_property ||
                n->state != XCB_PROPERTY_NEW_VALUE)
                continue;
            const std::optional<QByteArray> piece = property(nullptr);
            if (!piece) continue; // the news of a value we have already taken
            if (piece->isEmpty()) break;
            if (data.size() + piece->size() > kMaxBytes) return {};
            data += *piece;
        }
    }
    return type == m_targets ? targetNames(data) : data;
}

QByteArray SelectionReader::targetNames(const QByteArray &atoms)
{
    const auto *ids = reinterpret_cast<const xcb_atom_t *>(atoms.constData());
    const qsizetype count = atoms.size() / qsizetype(sizeof(xcb_atom_t));
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    for (qsizetype i = 0; i < count && i < 512; ++i)
        cookies.push_back(xcb_get_atom_name(m_c, ids[i]));
    QByteArray names;
    for (const auto cookie : cookies) {
        const Owned<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(m_c, cookie, nullptr));
        if (!reply) continue;
        names += QByteArray(xcb_get_atom_name_name(reply.get()),
                            xcb_get_atom_name_name_length(reply.get()));
        names += '\n';
    }
    return names;
}

} // namespace fw
