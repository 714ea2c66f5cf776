#include "dleyna.h"

#include <QDBusMetaType>
#include <QMetaMethod>

#define DLEYNA_NAME(function, text)                       \
    const QString &function()                             \
    {                                                     \
        static const QString name = QStringLiteral(text); \
        return name;                                      \
    }

namespace dleyna {

DLEYNA_NAME(service, "com.intel.dleyna-server")
DLEYNA_NAME(managerPath, "/com/intel/dLeynaServer")
DLEYNA_NAME(serverPathPrefix, "/com/intel/dLeynaServer/server")
DLEYNA_NAME(managerInterface, "com.intel.dLeynaServer.Manager")
DLEYNA_NAME(mediaDeviceInterface, "com.intel.dLeynaServer.MediaDevice")
DLEYNA_NAME(mediaContainerInterface, "org.gnome.UPnP.MediaContainer2")
DLEYNA_NAME(mediaObjectInterface, "org.gnome.UPnP.MediaObject2")
DLEYNA_NAME(mediaItemInterface, "org.gnome.UPnP.MediaItem2")
DLEYNA_NAME(propertiesInterface, "org.freedesktop.DBus.Properties")

void registerTypes()
{
    static const int propertyMaps = qRegisterMetaType<PropertyMaps>("QVector<QVariantMap>");
    Q_UNUSED(propertyMaps)
    qDBusRegisterMetaType<PropertyMaps>();
}

} // namespace dleyna

DBusProxy::DBusProxy(const QString &service, const QString &path, const QString &interface,
    const QDBusConnection &connection, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_path(path)
    , m_interface(interface)
    , m_connection(connection)
{
}

QDBusPendingCall DBusProxy::call(const QString &member, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, m_path, m_interface, member);
    message.setArguments(arguments);
    return m_connection.asyncCall(message);
}

void DBusProxy::follow(const QString &member, const char *qtSignal)
{
    // Under the service's name, so that no other program on the bus can announce servers; the one
    // place where Qt asks the daemon, never the service, and waits.
    m_connection.connect(m_service, m_path, m_interface, member, this, qtSignal);
}

ComIntelDLeynaServerManagerInterface::ComIntelDLeynaServerManagerInterface(
    const QString &service, const QString &path, const QDBusConnection &connection, QObject *parent)
    : DBusProxy(service, path, dleyna::managerInterface(), connection, parent)
{
}

QDBusPendingReply<QList<QDBusObjectPath>> ComIntelDLeynaServerManagerInterface::GetServers() const
{
    return call(QStringLiteral("GetServers"), {});
}

void ComIntelDLeynaServerManagerInterface::connectNotify(const QMetaMethod &signal)
{
    using Manager = ComIntelDLeynaServerManagerInterface;
    if (signal == QMetaMethod::fromSignal(&Manager::LostServer) && !m_followsLost) {
        m_followsLost = true;
        follow(QStringLiteral("LostServer"), SIGNAL(LostServer(QDBusObjectPath)));
    } else if (signal == QMetaMethod::fromSignal(&Manager::FoundServer) && !m_followsFound) {
        m_followsFound = true;
        follow(QStringLiteral("FoundServer"), SIGNAL(FoundServer(QDBusObjectPath)));
    }
}

OrgGnomeUPnPMediaContainer2Interface::OrgGnomeUPnPMediaContainer2Interface(
    const QString &service, const QString &path, const QDBusConnection &connection, QObject *parent)
    : DBusProxy(service, path, dleyna::mediaContainerInterface(), connection, parent)
{
}

QDBusPendingReply<PropertyMaps> OrgGnomeUPnPMediaContainer2Interface::ListChildren(
    uint offset, uint max, const QStringList &filter) const
{
    return call(QStringLiteral("ListChildren"), {offset, max, filter});
}

QDBusPendingReply<PropertyMaps, uint> OrgGnomeUPnPMediaContainer2Interface::SearchObjectsEx(
    const QString &query, uint offset, uint max, const QStringList &filter,
    const QString &sortBy) const
{
    return call(QStringLiteral("SearchObjectsEx"), {query, offset, max, filter, sortBy});
}

OrgFreedesktopDBusPropertiesInterface::OrgFreedesktopDBusPropertiesInterface(
    const QString &service, const QString &path, const QDBusConnection &connection, QObject *parent)
    : DBusProxy(service, path, dleyna::propertiesInterface(), connection, parent)
{
}

QDBusPendingReply<QVariantMap> OrgFreedesktopDBusPropertiesInterface::GetAll(
    const QString &interfaceName) const
{
    return call(QStringLiteral("GetAll"), {interfaceName});
}
