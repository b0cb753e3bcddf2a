#include "platform/core/StandStill.h"

#include <QCoreApplication>
#include <QTimer>
#include <utility>
#include <vector>

namespace fw {

namespace {
int g_holds = 0;
std::vector<std::function<void()>> g_waiting;

void post(std::function<void()> request)
{
    QTimer::singleShot(0, qApp, std::move(request));
}
} // namespace

StandStill::StandStill()
{
    ++g_holds;
}

StandStill::~StandStill()
{
    if (--g_holds > 0) return;
    for (auto &request : std::exchange(g_waiting, {}))
        post(std::move(request));
}

void StandStill::whenFree(std::function<void()> request)
{
    if (g_holds > 0)
        g_waiting.push_back(std::move(request));
    else
        post(std::move(request));
}

} // namespace fw
