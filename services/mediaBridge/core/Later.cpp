#include "core/Later.h"

#include "core/Timer.h"

#include <deque>

namespace bridge {

namespace {

constexpr int64_t longestUs = 3'000;

struct Queue
{
    std::deque<std::function<void()>> waiting;
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
    while (!waiting.empty() && g_get_monotonic_time() < end) {
        // Taken out before it runs: it may add more, or end what it belongs to.
        const auto work = std::move(waiting.front());
        waiting.pop_front();
        work();
    }
    if (!waiting.empty())
        queue().turn.start(0, &workOn);
}

} // namespace

void later(std::function<void()> work)
{
    queue().waiting.push_back(std::move(work));
    if (!queue().turn.isRunning())
        queue().turn.start(0, &workOn);
}

} // namespace bridge
