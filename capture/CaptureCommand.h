#pragma once
#include <QString>

namespace capture {
// The capture command for a system version text: the one character at position 13 (from 1),
// read as a number, below 5 means a capture tool without -o.
QString captureCommandFor(const QString &osVersion);
} // namespace capture
