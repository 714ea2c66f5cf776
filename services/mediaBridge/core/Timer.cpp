#include "core/Timer.h"

#include "core/Limits.h"

#include <algorithm>
#include <glib.h>
#include <limits>
#include <set>
#include <utility>

namespace bridge {

/// Those that run, the next first. The main loop looks at each of its sources in every turn, and
/// there may be thousands of timers: all of them are one source.
class Timers
{
public:
    static Timers &instance()
    {
        // Timers that end with the program come here.
        static auto &only = *new Timers;
        return only;
    }

    void add(Timer *timer) { m_timers.emplace(timer->m_due, timer); }
    void remove(Timer *timer) { m_timers.erase({timer->m_due, timer}); }

private:
    Timers()
    {
        static GSourceFuncs functions{
            &Timers::prepare, &Timers::check, &Timers::dispatch, nullptr, nullptr, nullptr};
        g_source_attach(g_source_new(&functions, sizeof(GSource)), nullptr);
    }

    static gboolean prepare(GSource *source, gint *timeoutMs)
    {
        constexpr int64_t usPerMs = 1000;
        const auto &timers = instance().m_timers;
        if (timers.empty())
            return FALSE;
        const int64_t us = timers.begin()->first - g_source_get_time(source);
        const int64_t ms = (std::max<int64_t>(us, 0) + usPerMs - 1) / usPerMs;
        *timeoutMs = static_cast<gint>(std::min<int64_t>(ms, std::numeric_limits<gint>::max()));
        return us <= 0 ? TRUE : FALSE;
    }
    static gboolean check(GSource *source)
    {
        gint timeoutMs = -1;
        return prepare(source, &timeoutMs);
    }
    /// For a short time of a turn. What is started meanwhile waits for the next.
    static gboolean dispatch(GSource *, GSourceFunc, gpointer)
    {
        const auto &timers = instance().m_timers;
        const int64_t now = g_get_monotonic_time();
        while (!timers.empty() && timers.begin()->first <= now) {
            timers.begin()->second->expire();
            if (g_get_monotonic_time() - now > limits::turnUs)
                break;
        }
        return G_SOURCE_CONTINUE;
    }

    std::set<std::pair<int64_t, Timer *>> m_timers;
};

void Timer::start(unsigned ms, std::function<void()> expired)
{
    constexpr int64_t usPerMs = 1000;
    stop();
    m_expired = std::move(expired);
    m_due = g_get_monotonic_time() + ms * usPerMs;
    Timers::instance().add(this);
}

void Timer::stop()
{
    if (m_due != 0)
        Timers::instance().remove(this);
    m_due = 0;
    // It may be what keeps the timer's owner.
    const auto dropped = std::exchange(m_expired, nullptr);
}

void Timer::expire()
{
    Timers::instance().remove(this);
    m_due = 0;
    // The call may be what keeps the timer's owner.
    const auto call = std::move(m_expired);
    call();
}

} // namespace bridge
