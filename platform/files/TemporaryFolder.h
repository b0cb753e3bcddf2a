#pragma once
#include <QString>

namespace fw {
// A folder only this user can enter (mode 0700), made on first use: "Vantrel" under
// $XDG_RUNTIME_DIR, or under $XDG_CACHE_HOME (~/.cache) where there is no runtime folder.
// Empty when the place is taken by something else (a link, another user's folder).
QString privateTemporaryFolder();
} // namespace fw
