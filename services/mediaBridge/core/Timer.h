#pragma once

#include <functional>
#include <glib.h>
#include <utility>

namespace bridge {

/// A one-shot timer of the main loop that goes with its owner.
class Timer
{
public:
    Timer() = default;
    ~Timer() { stop(); }
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    /// Replaces what was set before. 0 ms is the loop's next turn.
    void start(unsigned ms, std::function<void()> expired)
    {
        stop();
        m_expired = std::move(expired);
        m_source = g_timeout_add(ms, &Timer::expire, this);
    }
    void stop()
    {
        if (m_source != 0)
            g_source_remove(std::exchange(m_source, 0));
        // It may be what keeps the timer's owner.
        const auto dropped = std::exchange(m_expired, nullptr);
    }
    bool isRunning() const { return m_source != 0; }

private:
    static gboolean expire(gpointer self)
    {
        auto *timer = static_cast<Timer *>(self);
        timer->m_source = 0;
        // The call may be what keeps the timer's owner.
        const auto call = std::move(timer->m_expired);
        call();
        return G_SOURCE_REMOVE;
    }

    guint m_source = 0;
    std::function<void()> m_expired;
};

} // namespace bridge
