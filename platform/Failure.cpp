#include "platform/Failure.h"

namespace fw {
namespace {
UnhandledHandler g_handler;
int g_depth = 0;
std::exception_ptr g_pending;
bool g_reporting = false;

void report(std::exception_ptr e)
{
    // A failure while the message of an earlier one is up is not reported twice.
    if (g_reporting || !g_handler) return;
    g_reporting = true;
    g_handler(e);
    g_reporting = false;
}
} // namespace

void setUnhandledHandler(UnhandledHandler handler) { g_handler = std::move(handler); }

int handlerDepth() { return g_depth; }

void guarded(const std::function<void()> &handler) noexcept
{
    ++g_depth;
    try {
        handler();
    } catch (...) {
        if (g_depth == 1)
            g_pending = nullptr, report(std::current_exception());
        else if (!g_pending)
            g_pending = std::current_exception();
    }
    --g_depth;
    if (g_depth == 0 && g_pending) {
        // A nested failure that no writer of ours picked up still ends in the one place.
        auto e = g_pending;
        g_pending = nullptr;
        report(e);
    }
}

void rethrowPending()
{
    if (g_pending) {
        auto e = g_pending;
        g_pending = nullptr;
        std::rethrow_exception(e);
    }
}

} // namespace fw
