#include "orka.h"

#include <mutex>
#include <optional>

namespace {
struct SharedConnection
{
    std::mutex mutex;
    std::optional<QDBusConnection> connection;
    int opened = 0;

    bool open(const QString &bus);
    void close();
};

// Never destroyed: plug-ins may still use the connection while the program ends.
SharedConnection &sharedConnection()
{
    static auto *const shared = new SharedConnection;
    return *shared;
}

QDBusConnection connectTo(const QString &bus, const QString &name)
{
    if (bus == QLatin1String("session"))
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    if (bus == QLatin1String("system"))
        return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    return QDBusConnection::connectToBus(bus, name);
}

bool SharedConnection::open(const QString &bus)
{
    close();
    // Qt may still be winding up the last connection; a new name never meets it.
    connection = connectTo(bus, QStringLiteral("orka-%1").arg(++opened));
    return connection->isConnected();
}

void SharedConnection::close()
{
    if (!connection)
        return;
    const QString name = connection->name();
    connection.reset();
    QDBusConnection::disconnectFromBus(name);
}
} // namespace

QDBusConnection orkaDBusConnection()
{
    SharedConnection &shared = sharedConnection();
    const std::lock_guard lock(shared.mutex);
    if (!shared.connection)
        shared.open(qEnvironmentVariable("ORKA_DBUS", QStringLiteral("session")));
    return *shared.connection;
}

bool orkaOpenDBusConnection(const QString &bus)
{
    SharedConnection &shared = sharedConnection();
    const std::lock_guard lock(shared.mutex);
    return shared.open(bus);
}
