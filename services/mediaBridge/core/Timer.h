#pragma once

#include <cstdint>
#include <functional>

namespace bridge {

/// A one-shot timer of the main loop that goes with its owner. Main thread only.
class Timer
{
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    /// Replaces what was set before. 0 ms is the loop's next turn.
    void start(unsigned ms, std::function<void()> expired);
    void stop();
    bool isRunning() const { return m_due != 0; }

private:
    friend class Timers;
    void expire();

    /// In microseconds of the monotonic clock; 0 while it doesn't run.
    int64_t m_due = 0;
    std::function<void()> m_expired;
};

} // namespace bridge
