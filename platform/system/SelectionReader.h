#pragma once
// Reads the X11 clipboard on a connection of its own, in the program's own process: one request
// and one answer per type, large answers in increments, all bounded by a deadline. Meanwhile the
// program's event loop serves everything but user input, so that a clipboard the program owns
// itself still answers.

#include <QByteArray>
#include <QDeadlineTimer>
#include <optional>
#include <xcb/xcb.h>

namespace fw {

class SelectionReader {
public:
    explicit SelectionReader(QDeadlineTimer deadline);
    ~SelectionReader();
    SelectionReader(const SelectionReader &) = delete;
    SelectionReader &operator=(const SelectionReader &) = delete;

    // False without an X server to talk to.
    bool isValid() const { return m_window != XCB_NONE; }
    // The clipboard as the given type ("image/png", "TARGETS": one atom name a line); empty when
    // the owner refuses it, has nothing, or hasn't answered by the deadline.
    QByteArray read(const QByteArray &target);

private:
    // The next event of ours, or nullptr at the deadline.
    xcb_generic_event_t *next();
    // Our property's value, taken off the window; none when it isn't there.
    std::optional<QByteArray> property(bool *incremental);
    QByteArray targetNames(const QByteArray &atoms);

    QDeadlineTimer m_deadline;
    xcb_connection_t *m_c = nullptr;
    xcb_window_t m_window = XCB_NONE;
    xcb_atom_t m_clipboard = XCB_NONE, m_property = XCB_NONE, m_incr = XCB_NONE,
               m_targets = XCB_NONE;
};

} // namespace fw
