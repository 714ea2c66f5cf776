#pragma once

#include <QEventLoop>
#include <QObject>

#include <chrono>
#include <functional>

/// A bounded wait in the event loop: connect what may change the outcome to wake(), then call
/// until(). On a terminal a wait that takes longer than a second shows that the program is alive.
class Wait : public QObject
{
    Q_OBJECT

public:
    /// `doing` is shown after the elapsed time: "Reading Music". Empty: nothing is shown.
    explicit Wait(std::chrono::milliseconds limit, const QString &doing = QString());

    /// Runs the event loop until `done` is true (true) or the limit has passed (false). `done` is
    /// asked at once and after every wake(). Throws InterruptedBySignal on Ctrl-C.
    bool until(const std::function<bool()> &done);
    /// The same where no signal tells: `done` is asked every 10 ms, too.
    bool poll(const std::function<bool()> &done);
    /// Until the limit has passed.
    void pass();

public slots:
    void wake();

private:
    std::chrono::milliseconds m_limit;
    QString m_doing;
    QEventLoop m_loop;
    bool m_woken = false;
};
