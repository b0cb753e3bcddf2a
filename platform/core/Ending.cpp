#include "platform/core/Ending.h"

namespace fw {
volatile std::sig_atomic_t g_processEnding = 0;
} // namespace fw
