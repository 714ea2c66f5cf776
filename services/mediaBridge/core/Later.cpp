#include "core/Later.h"

#include "core/Limits.h"
#include "core/Timer.h"
#include "core/TurnQueue.h"

#include <glib.h>

namespace bridge {

namespace {

/// What is done at once, in twice that time.
constexpr int64_t longestUs = 3'000;

struct Queue
{
    TurnQueue<std::function<void()>> waiting;
    Timer turn;
    /// What was done at once, and since when that is counted.
    int64_t doneUs = 0;
    int64_t since = 0;
};

Queue &queue()
{
    static Queue queue;
    return queue;
}

void workOn()
{
    const int64_t end = g_get_monotonic_time() + limits::turnUs;
    auto &waiting = queue().waiting;
    while (!waiting.isEmpty() && g_get_monotonic_time() < end) {
        // Taken out before it runs: it may add more, or end what it belongs to.
        const auto work = waiting.pop();
        work();
    }
    if (!waiting.isEmpty())
        queue().turn.start(0, &workOn);
}

} // namespace

void later(std::function<void()> work, const std::string &whose)
{
    queue().waiting.push(whose, std::move(work));
    if (!queue().turn.isRunning())
        queue().turn.start(0, &workOn);
}

void soon(const std::function<void()> &work, const std::string &whose)
{
    Queue &all = queue();
    const int64_t start = g_get_monotonic_time();
    if (start - all.since > 2 * longestUs) {
        all.since = start;
        all.doneUs = 0;
    }
    if (!all.waiting.isEmpty() || all.doneUs > longestUs) {
        later(work, whose);
        return;
    }
    work();
    all.doneUs += g_get_monotonic_time() - start;
}

} // namespace bridge
