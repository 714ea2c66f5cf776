#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

#include <chrono>

/// Questions to the message bus and its services. Each is sent asynchronously and waited for in the
/// event loop, so that Ctrl-C ends it; a bus that doesn't answer in time gives what "no" gives.
class Bus
{
public:
    Bus(const QDBusConnection &connection, std::chrono::milliseconds limit);

    /// The unique name of who owns `name`, empty for nobody.
    QString owner(const QString &name) const;
    bool canActivate(const QString &name) const;
    /// Starts the service where it isn't running. Returns why it couldn't, empty when it is there.
    QString activate(const QString &name) const;
    /// Whether the service that owns `name` answers at all.
    bool answers(const QString &name) const;
    /// "orka-media-bridge (process 123)"; the unique name alone where the process can't be known.
    QString describeOwner(const QString &uniqueName) const;
    /// For how long the process with this unique name has run; 0 where that can't be known.
    std::chrono::milliseconds ageOf(const QString &uniqueName) const;
    /// The reply; an invalid message where none came in time.
    QDBusMessage send(const QDBusMessage &call) const;

    /// 0 where it can't be known.
    uint processOf(const QString &uniqueName) const;

private:
    /// Asks the bus itself.
    QDBusMessage ask(const QString &method, const QVariantList &arguments) const;

    QDBusConnection m_connection;
    std::chrono::milliseconds m_limit;
};
