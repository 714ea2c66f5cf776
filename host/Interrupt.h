#pragma once

#include <QObject>

/// Turns SIGINT, SIGTERM and SIGHUP into a signal of the event loop. Made once, by main(). Where
/// the program doesn't react (a bus that hangs while it is opened), a timer ends it all the same
/// 0.7 s later; the kernel then ends its children.
class Interrupt : public QObject
{
    Q_OBJECT

public:
    explicit Interrupt(QObject *parent = nullptr);
    ~Interrupt() override;

    /// The one that main() made; null in programs that made none.
    static Interrupt *instance();
    /// The number of the signal that came first, 0 for none. Any thread.
    static int received();

signals:
    void requested();

private:
    int m_pipe[2] = {-1, -1};
};

/// Thrown by waits when the person at the keyboard, or the system, has had enough.
struct InterruptedBySignal
{
    int signal;
    /// As shells count: 130 for Ctrl-C.
    int exitStatus() const { return 128 + signal; }
};
