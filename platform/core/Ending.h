#pragma once
// Whether the process is ending on the system's word (a signal, the session's end): from then on
// nothing is written, started or captured. Set from a signal handler, so a plain flag.

#include <csignal>

namespace fw {

extern volatile std::sig_atomic_t g_processEnding;
inline bool processEnding()
{
    return g_processEnding != 0;
}
inline void setProcessEnding(bool ending) noexcept
{
    g_processEnding = ending ? 1 : 0;
}

} // namespace fw
