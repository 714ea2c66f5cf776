#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Beats every millisecond in the event loop of the thread that makes it, and keeps the longest
/// pause between two beats. Everything on that thread.
class Pulse : public QObject
{
public:
    enum Waiting { Counted, NotCounted };

    /// Whether the time in which the thread was ready and had no processor counts as silence.
    explicit Pulse(Waiting waiting);
    ~Pulse() override;

    /// Milliseconds; starts anew.
    double takeLongestSilence();

private:
    void beat();
    /// Nanoseconds that this thread was ready and had no processor.
    qint64 waitedForProcessor() const;

    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_schedule;
    qint64 m_last = 0;
    qint64 m_lastWaited = 0;
    qint64 m_longest = 0;
};
