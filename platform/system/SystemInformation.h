#pragma once
#include <QString>

namespace fw {
// The running system's name and version as one line of text.
QString OSVersionString();
} // namespace fw
