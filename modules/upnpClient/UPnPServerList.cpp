#include "UPnPServerList.h"

#include "DBusBarrier.h"
#include "cb_upnp.h"
#include "log.h"
#include "util.h"

#include <QDBusPendingCallWatcher>

namespace {

// Names of the calls that read a server; each is the property's own name.
const QString friendlyNameCall = QStringLiteral("FriendlyName");
const QString udnCall = QStringLiteral("UDN");
const QString searchCapsCall = QStringLiteral("SearchCaps");

using PropertyReply = QDBusPendingReply<QDBusVariant>;

QVariant valueOf(const PropertyReply &reply)
{
    return reply.value().variant();
}

} // namespace

UPnPServerList *UPnPServerList::create(CMUPnPWorker *upnpWorker, const CMPath &path)
{
    sdk::verify(upnpWorker, "upnpWorker");
    return new UPnPServerList(upnpWorker, path);
}

UPnPServerList::UPnPServerList(CMUPnPWorker *upnpWorker, const CMPath &path)
    : QObject(upnpWorker)
    , m_worker(upnpWorker)
{
    TRACE_ENTER();
    m_rootNode = CMListRowsNode::create(upnpWorker->nodes(), path);
    m_manager = new ComIntelDLeynaServerManagerInterface(
        dleyna::service(), dleyna::managerPath(), orkaDBusConnection(), this);
    m_initialList = new QDBusPendingCallWatcher(m_manager->GetServers());
    sdk::connectChecked(m_initialList,
        SIGNAL(finished(QDBusPendingCallWatcher*)), this,
            SLOT(on_upnpManager_getServers(QDBusPendingCallWatcher*)));
}

UPnPServerList::~UPnPServerList()
{
    TRACE_ENTER_WITH("terminating UPnPServerList");
    delete m_initialList;
}

void UPnPServerList::on_upnpManager_getServers(QDBusPendingCallWatcher *watcher)
{
    TRACE_ENTER();
    LOG4CPLUS_DEBUG(upnpLog(), "getServers callback");
    const QDBusPendingReply<QList<QDBusObjectPath>> reply = *watcher;
    watcher->deleteLater();

    // Connected only now, so that no signal can overtake the initial list.
    sdk::connectChecked(m_manager,
        SIGNAL(LostServer(QDBusObjectPath)), this,
            SLOT(on_upnpManager_lostServer(QDBusObjectPath)));
    sdk::connectChecked(m_manager,
        SIGNAL(FoundServer(QDBusObjectPath)), this,
            SLOT(on_upnpManager_foundServer(QDBusObjectPath)));

    if (reply.isError()) {
        LOG4CPLUS_ERROR(upnpLog(),
            "Could not populate UPnP server list: " << logText(reply.error().name()) << ": "
                                                    << logText(reply.error().message()));
        return;
    }
    for (const QDBusObjectPath &path : reply.value())
        on_upnpManager_foundServer(path);
}

void UPnPServerList::on_upnpManager_foundServer(const QDBusObjectPath &path)
{
    TRACE_ENTER();
    auto *barrier = new DBusBarrier(nullptr, this);
    barrier->keepUserData(std::make_unique<QDBusObjectPath>(path));
    for (const QString &property : {friendlyNameCall, udnCall, searchCapsCall}) {
        barrier->addCall(property,
            getPropertyAsync(dleyna::service(), path, dleyna::mediaDeviceInterface(), property));
    }
    connect(
        barrier, &DBusBarrier::finished, this, &UPnPServerList::on_addServer, Qt::QueuedConnection);
}

void UPnPServerList::on_addServer(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    const PropertyReply udnReply = barrier->getCall(udnCall);
    const PropertyReply nameReply = barrier->getCall(friendlyNameCall);
    const QDBusObjectPath path = *barrier->takeUserData<QDBusObjectPath>();
    barrier->deleteLater();

    if (udnReply.isError())
        LOG4CPLUS_ERROR(upnpLog(), "Fetching UDN failed: " << logText(udnReply.error().message()));
    if (nameReply.isError()) {
        LOG4CPLUS_ERROR(
            upnpLog(), "Fetching friendlyName failed: " << logText(nameReply.error().message()));
    }
    if (udnReply.isError() || nameReply.isError())
        return;

    const QString udn = valueOf(udnReply).toString();
    const QString friendlyName = valueOf(nameReply).toString();
    const QStringList caps = readSearchCaps(barrier, udn);
    record(udn, {path, friendlyName});
    appendRow(path, friendlyName, !caps.isEmpty());
}

QStringList UPnPServerList::readSearchCaps(DBusBarrier *barrier, const QString &udn)
{
    QStringList caps;
    const PropertyReply reply = barrier->getCall(searchCapsCall);
    if (reply.isError()) {
        LOG4CPLUS_ERROR(upnpLog(), "Fetching search capabilities failed, assuming none");
        return caps;
    }
    // Written ahead of the conversion, so it shows an empty list whatever the server can do.
    LOG4CPLUS_DEBUG(upnpLog(), "Search caps: " << logText(caps));
    caps = valueOf(reply).toStringList();
    m_worker->setSearchCaps(udn, caps);
    return caps;
}

void UPnPServerList::record(const QString &udn, const UDNInfo &info)
{
    forget(udn);
    m_udns.insert(udn, info);
    m_udnsByPath.insert(info.path.path(), udn);
}

int UPnPServerList::forget(const QString &udn)
{
    m_udnsByPath.remove(m_udns.value(udn).path.path(), udn);
    return m_udns.remove(udn);
}

void UPnPServerList::appendRow(
    const QDBusObjectPath &path, const QString &friendlyName, bool canSearch)
{
    const UPnPPath upath = UPnPPath::fromDleyna(
        m_worker, this, path, {{QStringLiteral("itemType"), QStringLiteral("server")}});
    m_rootNode->rowsRemoveStartingWithPath(upath.orkaPath());

    auto roles = sdk::empty<OrkaRoles>();
    roles.setType(sdk::containerType());
    roles.setContainerPlayable(true);
    roles.setTitle(sdk::plainText(friendlyName));
    roles.setPath(upath.orkaPath());
    if (canSearch)
        roles.setSearch(m_worker->getSearchMenuRoles(upath));
    m_rootNode->rowsAppend(roles);
}

void UPnPServerList::on_upnpManager_lostServer(const QDBusObjectPath &path)
{
    TRACE_ENTER();
    const QString udn = udnOfServer(path.path());
    if (forget(udn) != 1)
        LOG4CPLUS_ERROR(upnpLog(), "Could not remove an UDN; server list out of sync.");
    m_rootNode->rowsRemoveStartingWithPath(m_worker->addPrefix(QLatin1Char('/') + udn));
}

QString ServerLookUp::udn(QStringView serverId)
{
    const QString &prefix = dleyna::serverPathPrefix();
    if (!m_path.isNull() && QStringView(m_path).mid(prefix.size() + 1) == serverId)
        return m_udn;

    QString path;
    path.reserve(prefix.size() + 1 + int(serverId.size()));
    path.append(prefix).append(QLatin1Char('/')).append(serverId.data(), int(serverId.size()));
    m_path = path;
    m_udn = m_udnsByPath.value(path);
    return m_udn;
}

void ServerLookUp::look()
{
    m_udnsByPath = m_serverList->udnsByPath();
    m_path.clear();
}
