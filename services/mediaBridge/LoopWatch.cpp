#include "LoopWatch.h"

#include "Log.h"

#include <ctime>
#include <glib.h>

namespace bridge {

namespace {

constexpr int64_t longTurnUs = 20'000;

int64_t turnBegan = 0;
int64_t workBegan = 0;

/// What the processor did for this thread, in microseconds; a busy machine does other things, too.
int64_t workedUs()
{
    timespec worked{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &worked);
    return int64_t{worked.tv_sec} * G_USEC_PER_SEC + worked.tv_nsec / 1000;
}

/// A turn lasts from the end of one poll to the next.
int pollAndWatch(GPollFD *descriptors, guint count, int timeoutMs)
{
    const int64_t took = g_get_monotonic_time() - turnBegan;
    if (turnBegan != 0 && took > longTurnUs)
        logDebug("a turn of the main loop took " + std::to_string(took / 1000) + " ms, "
            + std::to_string((workedUs() - workBegan) / 1000) + " of them at work");
    const int ready = g_poll(descriptors, count, timeoutMs);
    turnBegan = g_get_monotonic_time();
    workBegan = workedUs();
    return ready;
}

} // namespace

void watchLoop()
{
    if (isLogged(LogLevel::Debug))
        g_main_context_set_poll_func(nullptr, &pollAndWatch);
}

} // namespace bridge
