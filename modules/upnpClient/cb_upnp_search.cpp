#include "cb_upnp.h"

#include "DBusBarrier.h"
#include "RowsAnswer.h"
#include "dleyna.h"
#include "log.h"

namespace {

const QString searchKey = QStringLiteral("search");
const QString menuValue = QStringLiteral("menu");
const QString searchCall = QStringLiteral("Search");

/// One kind of search: what the server must be able to do, also its name for people; its key in
/// paths; its criteria (ContentDirectory's search language with the media service's names).
struct SearchType
{
    const char *capability;
    const char *key;
    const char *criteria;
};

const SearchType searchTypes[] = {
    {QT_TRANSLATE_NOOP("CMUPnPWorker", "Artist"), "artist", "Artist contains \"%1\""},
    {QT_TRANSLATE_NOOP("CMUPnPWorker", "Album"), "album", "Album contains \"%1\""},
    {QT_TRANSLATE_NOOP("CMUPnPWorker", "Title"), "title", "DisplayName contains \"%1\""},
};

/// Backslashes first: those that escape quotes must not be doubled.
QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return text;
}

/// Empty for a key that isn't known; the search is issued all the same.
QString searchCriteria(const QString &key, const QString &text)
{
    for (const SearchType &type : searchTypes) {
        if (key == QLatin1String(type.key))
            return QString::fromLatin1(type.criteria).arg(escaped(text));
    }
    LOG4CPLUS_ERROR(upnpLog(), "Invalid search type: " << logText(key));
    return QString();
}

} // namespace

void CMUPnPWorker::setSearchCaps(const QString &udn, const QStringList &caps)
{
    m_searchCaps.insert(udn, caps);
}

bool CMUPnPWorker::hasSearchCaps(const QString &udn) const
{
    return !m_searchCaps.value(udn).isEmpty();
}

bool CMUPnPWorker::checkSearchCap(const QString &udn, const QString &cap) const
{
    TRACE_ENTER_WITH("udn=" << logText(udn) << "cap=" << logText(cap));
    // Titles are searched under the media service's own name for them.
    const QString name = cap == QLatin1String("Title") ? QStringLiteral("DisplayName") : cap;
    const bool can = m_searchCaps.value(udn).contains(name);
    LOG4CPLUS_TRACE(upnpLog(), "ret=" << can);
    return can;
}

OrkaRoles CMUPnPWorker::getSearchMenuRoles(const UPnPPath &path) const
{
    return searchMenu(path, SDK_TR("Search menu"));
}

/// The search menu of a node. It has no title in the node's own data.
OrkaRoles CMUPnPWorker::searchMenu(const UPnPPath &node, const std::optional<TrString> &title) const
{
    auto roles = sdk::empty<OrkaRoles>();
    roles.setPath(sdk::withParam(node.orkaPathWithoutParams(), searchKey, menuValue));
    if (title)
        roles.setTitle(*title);
    roles.setType(sdk::containerType());
    roles.setContainerType(sdk::searchMenuType());
    return roles;
}

void CMUPnPWorker::handleSearchMenuRowsRequest(const CMGetRowsRequest &request,
    const UPnPPath &path, const QString &search, const QString &query, int first, int last) const
{
    TRACE_ENTER_WITH("search: " << logText(search) << " query: " << logText(query));
    QList<OrkaRoles> entries;
    for (const SearchType &type : searchTypes) {
        if (!checkSearchCap(path.udn(), QLatin1String(type.capability)))
            continue;
        auto entry = sdk::empty<OrkaRoles>();
        entry.setTitle(sdk::translatable(Q_FUNC_INFO, type.capability));
        entry.setType(sdk::searchEntryType());
        entry.setPath(
            sdk::withParam(path.orkaPathWithoutParams(), searchKey, QLatin1String(type.key)));
        entries.append(entry);
    }

    QVariantList rows;
    for (int i = qMax(first, 0); i <= last && i < entries.size(); ++i)
        rows.append(QVariant(CMGlobal::itemRolesToList(sdk::rolesOf(request), entries.at(i))));
    auto answer = sdk::empty<OrkaRowsRoles>();
    answer.setRoles(getSearchMenuRoles(path));
    answer.setRowsVersion(0);
    answer.setRows(rows);
    answer.setRowsCount(entries.size());
    sdk::answer(request, answer);
}

void CMUPnPWorker::handleSearchDataRequest(const CMGetDataRequest &request, const UPnPPath &path,
    const QString &search, const QString &query) const
{
    TRACE_ENTER();
    Q_UNUSED(query)
    auto roles = sdk::empty<OrkaRoles>();
    if (search == menuValue) {
        roles = getSearchMenuRoles(path);
    } else {
        roles.setTitle(SDK_TR("Search results"));
        roles.setPath(sdk::pathOf(request));
        roles.setType(sdk::containerType());
    }
    sdk::answer(request, CMGlobal::itemRolesToList(sdk::rolesOf(request), roles));
}

void CMUPnPWorker::handleSearchRowsRequest(const CMGetRowsRequest &request, const UPnPPath &path,
    const QString &search, const QString &query, int first, int last)
{
    TRACE_ENTER_WITH("search : " << logText(search) << " query " << logText(query));
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), path.dbusPath().path(), orkaDBusConnection(), this);
    auto *barrier = new DBusBarrier(nullptr, this);
    barrier->keepUserData(std::make_unique<CMGetRowsRequest>(request));
    barrier->addCall(searchCall,
        proxy.SearchObjectsEx(searchCriteria(search, query), uint(first),
            uint(last) - uint(first) + 1, m_propertyFilter, QString()));
    connect(barrier, &DBusBarrier::finished, this, &CMUPnPWorker::on_handleSearchRows_finished,
        Qt::QueuedConnection);
}

void CMUPnPWorker::on_handleSearchRows_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    const auto request = barrier->takeUserData<CMGetRowsRequest>();
    const QDBusPendingReply<PropertyMaps, uint> found = barrier->getCall(searchCall);
    barrier->deleteLater();

    if (found.isError()) {
        const QString message = found.error().message();
        LOG4CPLUS_ERROR(upnpLog(), "Fetching search results failed; error: " << logText(message));
        sdk::refuse(*request,
            createErrorInternal(QStringLiteral("Failed to retrieve content: %1").arg(message)));
        return;
    }
    const int total = int(found.argumentAt<1>());
    (new RowsAnswer(this, mapping(), *request, found.reply(), total))->start();
}
