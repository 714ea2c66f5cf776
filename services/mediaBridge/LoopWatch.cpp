#include "LoopWatch.h"

#include "Log.h"

#include <glib.h>

namespace bridge {

namespace {

constexpr int64_t longTurnUs = 20'000;

int64_t turnBegan = 0;

/// A turn lasts from the end of one poll to the next.
int pollAndWatch(GPollFD *descriptors, guint count, int timeoutMs)
{
    const int64_t took = g_get_monotonic_time() - turnBegan;
    if (turnBegan != 0 && took > longTurnUs)
        logDebug("a turn of the main loop took " + std::to_string(took / 1000) + " ms");
    const int ready = g_poll(descriptors, count, timeoutMs);
    turnBegan = g_get_monotonic_time();
    return ready;
}

} // namespace

void watchLoop()
{
    if (isLogged(LogLevel::Debug))
        g_main_context_set_poll_func(nullptr, &pollAndWatch);
}

} // namespace bridge
