#pragma once
// A window that is a tool of another: the window manager keeps it with its owner (above it,
// minimised with it), out of task bars and pagers, and does not give it the focus when it shows.

#include <QWidget>

namespace fw {
// Call before each show: the window manager forgets the states of a window it unmapped.
void makeToolOf(QWidget *tool, QWidget *owner);
} // namespace fw
