#include "dleyna.h"

#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
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

void DBusProxy::follow(const QString &member, const char *slot)
{
    // Given the service's name, Qt would wait for the bus to tell its owner, and abort where the
    // bus has just gone.
    m_connection.connect(QString(), m_path, m_interface, member, this, slot);
}

ComIntelDLeynaServerManagerInterface::ComIntelDLeynaServerManagerInterface(
    const QString &service, const QString &path, const QDBusConnection &connection, QObject *parent)
    : DBusProxy(service, path, dleyna::managerInterface(), connection, parent)
    , m_ownerWatcher(service, connection, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_ownerWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { m_owner = owner; });
    QDBusMessage question = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("GetNameOwner"));
    question.setArguments({service});
    auto *answer = new QDBusPendingCallWatcher(connection.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QString> reply = *answer;
        answer->deleteLater();
        if (!reply.isError())
            m_owner = reply.value();
    });
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
        follow(QStringLiteral("LostServer"), SLOT(on_signal(QDBusMessage)));
    } else if (signal == QMetaMethod::fromSignal(&Manager::FoundServer) && !m_followsFound) {
        m_followsFound = true;
        follow(QStringLiteral("FoundServer"), SLOT(on_signal(QDBusMessage)));
    }
}

void ComIntelDLeynaServerManagerInterface::on_signal(const QDBusMessage &signal)
{
    if (signal.service() != m_owner || signal.signature() != QLatin1String("o"))
        return;
    const auto path = signal.arguments().constFirst().value<QDBusObjectPath>();
    if (signal.member() == QLatin1String("LostServer"))
        Q_EMIT LostServer(path);
    else
        Q_EMIT FoundServer(path);
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
