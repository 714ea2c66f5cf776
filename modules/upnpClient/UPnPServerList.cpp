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
    ORKA_ASSERT(upnpWorker);
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
    orkaConnect(m_initialList,
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
    orkaConnect(m_manager,
        SIGNAL(LostServer(QDBusObjectPath)), this,
            SLOT(on_upnpManager_lostServer(QDBusObjectPath)));
    orkaConnect(m_manager,
        SIGNAL(FoundServer(QDBusObjectPath)), this,
            SLOT(on_upnpManager_foundServer(QDBusObjectPath)));

    if (reply.isError()) {
        LOG4CPLUS_ERROR(upnpLog(),
            "Could not populate UPnP server list: " << reply.error().name() << ": "
                                                    << reply.error().message());
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
        LOG4CPLUS_ERROR(upnpLog(), "Fetching UDN failed: " << udnReply.error().message());
    if (nameReply.isError())
        LOG4CPLUS_ERROR(upnpLog(), "Fetching friendlyName failed: " << nameReply.error().message());
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
    LOG4CPLUS_DEBUG(upnpLog(), "Search caps: " << caps);
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

    OrkaRoles roles;
    roles.setType(OrkaRolesType::Container);
    roles.setContainerPlayable(true);
    roles.setTitle(friendlyName);
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
