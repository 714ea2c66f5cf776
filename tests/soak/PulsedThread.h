#pragma once

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

class Pulse;

/// A thread with an event loop that beats every millisecond, and keeps the longest pause between
/// two beats. Everything here is called from the main thread and waits for the other.
class PulsedThread
{
public:
    enum Waiting { Counted, NotCounted };

    /// Whether the time in which the thread was ready and had no processor counts as silence.
    explicit PulsedThread(Waiting waiting);
    ~PulsedThread();
    PulsedThread(const PulsedThread &) = delete;
    PulsedThread &operator=(const PulsedThread &) = delete;

    void run(const std::function<void()> &work);
    /// Milliseconds; starts anew.
    double takeLongestSilence();

private:
    QThread m_thread;
    QObject m_context;
    std::unique_ptr<Pulse> m_pulse;
};
