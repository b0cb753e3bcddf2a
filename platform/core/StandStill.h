#pragma once
// While a capture holds the main thread, nothing from outside the program runs: a request that
// comes in meanwhile (a later start's, over the session bus) waits for the end of the capture
// and is then served from the event loop, in the order of arrival.

#include <functional>

namespace fw {

class StandStill {
public:
    StandStill();
    ~StandStill();
    StandStill(const StandStill &) = delete;
    StandStill &operator=(const StandStill &) = delete;

    // Runs `request` from the event loop once no StandStill is alive.
    static void whenFree(std::function<void()> request);
};

} // namespace fw
