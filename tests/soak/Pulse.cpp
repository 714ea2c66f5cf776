#include "Pulse.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

Pulse::Pulse(Waiting waiting)
    : m_schedule(
        waiting == NotCounted ? open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC) : -1)
{
    m_clock.start();
    m_lastWaited = waitedForProcessor();
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Pulse::beat);
    m_timer.start(1);
}

Pulse::~Pulse()
{
    if (m_schedule >= 0)
        close(m_schedule);
}

void Pulse::beat()
{
    const qint64 now = m_clock.nsecsElapsed();
    const qint64 waited = waitedForProcessor();
    m_longest = qMax(m_longest, now - m_last - (waited - m_lastWaited));
    m_last = now;
    m_lastWaited = waited;
}

qint64 Pulse::waitedForProcessor() const
{
    char text[96] = {};
    if (m_schedule < 0 || pread(m_schedule, text, sizeof(text) - 1, 0) <= 0)
        return 0;
    long long ran = 0;
    long long waited = 0;
    return std::sscanf(text, "%lld %lld", &ran, &waited) == 2 ? waited : 0;
}

double Pulse::takeLongestSilence()
{
    beat();
    const double longest = double(m_longest) / 1e6;
    m_longest = 0;
    return longest;
}
