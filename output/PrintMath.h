#pragma once
#include <QSize>

namespace output {
// The size a capture is drawn at on a page (both in the page's units, points here): its own size
// when it fits; otherwise scaled by the page's width over its width, and then, if it is also too
// tall, by the height alone (the second comparison replaces the first; it is no minimum).
QSize printedSize(QSize picture, QSize page);
} // namespace output
