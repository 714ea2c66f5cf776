#include "core/Later.h"

#include "core/Timer.h"
#include "core/TurnQueue.h"

namespace bridge {

namespace {

constexpr int64_t longestUs = 3'000;

struct Queue
{
    TurnQueue<std::function<void()>> waiting;
    Timer turn;
};

Queue &queue()
{
    static Queue queue;
    return queue;
}

void workOn()
{
    const int64_t end = g_get_monotonic_time() + longestUs;
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

} // namespace bridge
