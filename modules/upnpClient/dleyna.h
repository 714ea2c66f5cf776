#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>
#include <QVector>

/// Property maps of several media objects, aa{sv} on the bus.
using PropertyMaps = QVector<QVariantMap>;

/// Names of the media service, its objects and its interfaces.
namespace dleyna {
const QString &service();
const QString &managerPath();
/// What every server's object path starts with, without a "/" at the end.
const QString &serverPathPrefix();
const QString &managerInterface();
const QString &mediaDeviceInterface();
const QString &mediaContainerInterface();
const QString &mediaObjectInterface();
const QString &mediaItemInterface();
const QString &propertiesInterface();

/// Makes the types that travel over the bus known to Qt; before the first call. May be repeated.
void registerTypes();
} // namespace dleyna

/// One object of a service on the bus, seen through one interface. Nothing here waits for the bus:
/// the service's owner isn't looked up, and a call that can't be sent comes back as a finished
/// reply with an error. A call outlives the proxy that issued it.
class DBusProxy : public QObject
{
    Q_OBJECT

protected:
    DBusProxy(const QString &service, const QString &path, const QString &interface,
        const QDBusConnection &connection, QObject *parent);

    QDBusPendingCall call(const QString &member, const QVariantList &arguments) const;
    /// Subscribes to a D-Bus signal of the object, whoever sends it; `slot` takes the message.
    void follow(const QString &member, const char *slot);

private:
    QString m_service;
    QString m_path;
    QString m_interface;
    QDBusConnection m_connection;
};

class ComIntelDLeynaServerManagerInterface : public DBusProxy
{
    Q_OBJECT

public:
    ComIntelDLeynaServerManagerInterface(const QString &service, const QString &path,
        const QDBusConnection &connection, QObject *parent = nullptr);

    QDBusPendingReply<QList<QDBusObjectPath>> GetServers() const;

Q_SIGNALS:
    /// Followed on the bus from their first connection on. Only those of the service are passed on:
    /// any other program on the bus could announce servers.
    void FoundServer(const QDBusObjectPath &path);
    void LostServer(const QDBusObjectPath &path);

protected:
    void connectNotify(const QMetaMethod &signal) override;

private Q_SLOTS:
    void on_signal(const QDBusMessage &signal);

private:
    QDBusServiceWatcher m_ownerWatcher;
    /// The service's unique name; the bus tells before anything of the service's comes.
    QString m_owner;
    bool m_followsFound = false;
    bool m_followsLost = false;
};

class OrgGnomeUPnPMediaContainer2Interface : public DBusProxy
{
    Q_OBJECT

public:
    OrgGnomeUPnPMediaContainer2Interface(const QString &service, const QString &path,
        const QDBusConnection &connection, QObject *parent = nullptr);

    /// `max` 0 asks for all.
    QDBusPendingReply<PropertyMaps> ListChildren(
        uint offset, uint max, const QStringList &filter) const;
    /// The objects found and the number of all matches.
    QDBusPendingReply<PropertyMaps, uint> SearchObjectsEx(const QString &query, uint offset,
        uint max, const QStringList &filter, const QString &sortBy) const;
};

class OrgFreedesktopDBusPropertiesInterface : public DBusProxy
{
    Q_OBJECT

public:
    OrgFreedesktopDBusPropertiesInterface(const QString &service, const QString &path,
        const QDBusConnection &connection, QObject *parent = nullptr);

    /// An empty name means the properties of all interfaces.
    QDBusPendingReply<QVariantMap> GetAll(const QString &interfaceName) const;
};
