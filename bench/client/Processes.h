#pragma once

#include <QProcess>
#include <QString>

#include <memory>

/// A child process that dies with the thread that started it, and with this object.
class Child : public QProcess
{
public:
    /// Starts it and returns its first line of output. Ends this program with a sentence where
    /// none comes within ten seconds.
    QString startAndReadLine(const QString &program, const QStringList &arguments);
    ~Child() override;

protected:
    void setupChildProcess() override;
};

/// A bus of the measurement's own with a fast service on it. `DBUS_SESSION_BUS_ADDRESS` of this
/// process names it from then on.
class FastBus
{
public:
    explicit FastBus(int servers = 1);

    const QString &address() const { return m_address; }
    /// Whether the service answers; calls wait for it where not.
    void setAnswering(bool isAnswering) const;

private:
    Child m_daemon;
    Child m_service;
    QString m_address;
};
