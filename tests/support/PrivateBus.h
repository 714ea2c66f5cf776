#pragma once

#include "ChildProcess.h"

#include <QDBusConnection>
#include <QString>

#include <functional>

/// A `dbus-daemon` of this test alone. It can activate nothing and listens on a socket in /tmp; it
/// ends with the object, and with the test process however that ends. Making one opens the SDK's
/// connection to it, so it comes before any worker.
class PrivateBus
{
public:
    /// 50000 calls of one connection may wait for replies as on a session bus, or the 128 that the
    /// daemon has without a configuration that says more.
    static constexpr const char *sessionLimits = PRIVATE_BUS_CONF,
                                *builtInLimits = BUILT_IN_LIMITS_CONF;

    explicit PrivateBus(const QString &configuration = sessionLimits);
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    const QString &address() const { return m_address; }
    qint64 pid() const { return m_daemon.processId(); }
    /// A connection of the test's own, closed by `close()` or with the last of its copies.
    QDBusConnection open(const QString &name) const;
    static void close(const QString &name);

    /// How many bytes of replies the SDK's connection holds that nobody has released, before it
    /// stops receiving.
    static void limitUnreleasedReplies(long bytes);

    /// Returns when everything has come to rest that the program and `service` still had to tell
    /// each other: no event is left to handle and two rounds to the daemon and back on both
    /// connections moved nothing that `activity` counts. What is held on purpose stays held.
    static void settle(const QDBusConnection &service, const std::function<int()> &activity);

private:
    ChildProcess m_daemon;
    QString m_address;
};
