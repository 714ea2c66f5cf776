#include "cb_upnp.h"

#include "DBusBarrier.h"
#include "RowsAnswer.h"
#include "dleyna.h"
#include "log.h"

namespace {

const QString listChildrenCall = QStringLiteral("ListChildren");
const QString childCountCall = QStringLiteral("ChildCount");
const QString getAllCall = QStringLiteral("GetAll");

} // namespace

void CMUPnPWorker::handleListRowsRequest(
    const CMGetRowsRequest &request, const UPnPPath &path, int first, int last)
{
    TRACE_ENTER();
    const QDBusObjectPath container = path.dbusPath();
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), container.path(), orkaDBusConnection(), this);
    auto *barrier = new DBusBarrier(nullptr, this);
    barrier->keepUserData(std::make_unique<CMGetRowsRequest>(request));
    barrier->addCall(listChildrenCall,
        proxy.ListChildren(uint(first), uint(last) - uint(first) + 1, m_propertyFilter));
    // On the object interface, not the container's: every service answers it there.
    barrier->addCall(childCountCall,
        getPropertyAsync(
            dleyna::service(), container, dleyna::mediaObjectInterface(), childCountCall));
    connect(barrier, &DBusBarrier::finished, this, &CMUPnPWorker::on_handleListRows_finished,
        Qt::QueuedConnection);
}

void CMUPnPWorker::on_handleListRows_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    const auto request = barrier->takeUserData<CMGetRowsRequest>();
    const QDBusPendingReply<PropertyMaps> children = barrier->getCall(listChildrenCall);
    const QDBusPendingReply<QDBusVariant> count = barrier->getCall(childCountCall);
    barrier->deleteLater();

    if (children.isError() || count.isError()) {
        LOG4CPLUS_INFO(upnpLog(), "Fetching children failed");
        LOG4CPLUS_INFO(upnpLog(), "listChildren: " << logText(children.error().message()));
        LOG4CPLUS_INFO(upnpLog(), "childCount: " << logText(count.error().message()));
        sdk::refuse(*request, createErrorInternal(QStringLiteral("Failed to retrieve content")));
        return;
    }
    const int total = count.value().variant().toInt();
    (new RowsAnswer(this, mapping(), *request, children.reply(), total))->start();
}

void CMUPnPWorker::handleListDataRequest(const CMGetDataRequest &request, const UPnPPath &path)
{
    TRACE_ENTER();
    const OrgFreedesktopDBusPropertiesInterface proxy(
        dleyna::service(), path.dbusPath().path(), orkaDBusConnection(), this);
    auto *barrier = new DBusBarrier(nullptr, this);
    barrier->keepUserData(std::make_unique<CMGetDataRequest>(request));
    // No interface named: all properties at once, whichever interface has them.
    barrier->addCall(getAllCall, proxy.GetAll(QString()));
    connect(barrier, &DBusBarrier::finished, this, &CMUPnPWorker::on_handleListData_finished,
        Qt::QueuedConnection);
}

void CMUPnPWorker::on_handleListData_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    const auto request = barrier->takeUserData<CMGetDataRequest>();
    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, sdk::pathOf(*request));
    const QDBusPendingReply<QVariantMap> properties = barrier->getCall(getAllCall);
    barrier->deleteLater();

    if (properties.isError()) {
        const QString message = properties.error().message();
        LOG4CPLUS_ERROR(upnpLog(), "Fetching properties failed: " << logText(message));
        sdk::refuse(*request,
            createErrorInternal(QStringLiteral("Failed to retrieve content: %1").arg(message)));
        return;
    }

    OrkaRoles roles = fillin_roles(properties.value());
    if (sdk::isContainer(roles) && upath.queryValue(QStringLiteral("search")).isEmpty()
        && hasSearchCaps(upath.udn()))
        roles.setSearch(searchMenu(upath, std::nullopt));
    sdk::answer(*request, CMGlobal::itemRolesToList(sdk::rolesOf(*request), roles));
}
