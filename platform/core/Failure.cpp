#include "platform/core/Failure.h"

#include "platform/core/Logging.h"

#include <QThread>
#include <vector>

namespace fw {
namespace {
UnhandledHandler g_handler;
std::vector<int> g_levels; // the event loop level of each guarded handler on the stack
std::exception_ptr g_pending;
bool g_reporting = false;

const char *describe(std::exception_ptr e)
{
    try {
        std::rethrow_exception(e);
    } catch (const std::exception &x) {
        return x.what();
    } catch (...) {
        return "a failure of unknown kind";
    }
}

void report(std::exception_ptr e)
{
    qCWarning(lcFramework) << "unhandled failure:" << describe(e);
    // A failure while the message of an earlier one is up is not reported twice.
    if (g_reporting || !g_handler) return;
    g_reporting = true;
    g_handler(e);
    g_reporting = false;
}
} // namespace

void setUnhandledHandler(UnhandledHandler handler)
{
    g_handler = std::move(handler);
}

int handlerDepth()
{
    return int(g_levels.size());
}

void guarded(const std::function<void()> &handler) noexcept
{
    // A handler is outermost when no handler of ours is below it in the same event loop: the
    // first of the stack, or the first inside a dialog's or a wait's own loop. Its failure is
    // reported at once; a failure of a handler nested in a property write is handed back to the
    // writer instead.
    const int level = QThread::currentThread()->loopLevel();
    const bool outermost = g_levels.empty() || g_levels.back() < level;
    g_levels.push_back(level);
    try {
        handler();
    } catch (...) {
        if (outermost)
            g_pending = nullptr, report(std::current_exception());
        else if (!g_pending)
            g_pending = std::current_exception();
    }
    g_levels.pop_back();
    if (outermost && g_pending) {
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
