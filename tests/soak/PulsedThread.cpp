#include "PulsedThread.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

/// Everything on the thread that makes it.
class Pulse
{
public:
    explicit Pulse(bool countsWaiting)
    {
        m_schedule.setFileName(QStringLiteral("/proc/thread-self/schedstat"));
        if (!countsWaiting)
            m_schedule.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        m_clock.start();
        m_lastWaited = waitedForProcessor();
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_timer.start(1);
    }

    void beat()
    {
        const qint64 now = m_clock.nsecsElapsed();
        const qint64 waited = waitedForProcessor();
        longest = qMax(longest, now - m_last - (waited - m_lastWaited));
        m_last = now;
        m_lastWaited = waited;
    }

    /// Nanoseconds.
    qint64 longest = 0;

private:
    /// Nanoseconds that this thread was ready and had no processor: the second number of the file.
    qint64 waitedForProcessor()
    {
        return m_schedule.isOpen() && m_schedule.seek(0)
            ? m_schedule.readLine(96).split(' ').value(1).toLongLong()
            : 0;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    QFile m_schedule;
    qint64 m_last = 0;
    qint64 m_lastWaited = 0;
};

PulsedThread::PulsedThread(Waiting waiting)
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
    run([this, waiting] { m_pulse = std::make_unique<Pulse>(waiting == Counted); });
}

PulsedThread::~PulsedThread()
{
    run([this] { m_pulse.reset(); });
    m_thread.quit();
    m_thread.wait();
}

void PulsedThread::run(const std::function<void()> &work)
{
    QMetaObject::invokeMethod(&m_context, work, Qt::BlockingQueuedConnection);
}

double PulsedThread::takeLongestSilence()
{
    qint64 longest = 0;
    run([this, &longest] {
        m_pulse->beat();
        longest = std::exchange(m_pulse->longest, 0);
    });
    return double(longest) / 1e6;
}
