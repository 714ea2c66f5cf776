#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

#include <memory>
#include <sys/types.h>

/// A program that we start and that outlives us: in a session of its own, at the root folder, with
/// none of our descriptors. A message bus may be started before it, which ends with it. Until it is
/// let go, it ends with this, and whatever it started.
class LastingProcess : public QObject
{
    Q_OBJECT

public:
    struct Plan
    {
        QString program;
        QStringList arguments;
        /// The bus's command line, without the option that makes it print its address; empty for
        /// no bus.
        QStringList bus;
        /// A descriptor that both inherit; -1 for none.
        int inherited = -1;
        /// "NAME=value", put into the program's environment.
        QByteArray variable;
    };

    /// Starts it. Where that fails, it has ended and said why.
    explicit LastingProcess(const Plan &plan);
    ~LastingProcess() override;

    /// Until letGo(): whether program and bus have ended.
    bool hasEnded() const { return m_hasEnded; }
    /// What came on their standard error until then.
    const QByteArray &said() const { return m_said; }
    /// Stops listening to it: it lives by itself from now on.
    void letGo();

signals:
    void ended();

private:
    void listen();
    void end() const;

    /// Its processes, as the kernel numbers them together.
    pid_t m_group = -1;
    int m_reader = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_said;
    bool m_hasEnded = false;
};
