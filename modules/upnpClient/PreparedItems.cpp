#include "PreparedItems.h"

#include "DBusBarrier.h"
#include "cb_upnp.h"
#include "dleyna.h"
#include "log.h"

namespace preparation {

QString directItemCall(int number)
{
    return QStringLiteral("direct%1.1").arg(number);
}

QString directObjectCall(int number)
{
    return QStringLiteral("direct%1.2").arg(number);
}

QString searchCall(int number)
{
    return QStringLiteral("search%1").arg(number);
}

} // namespace preparation

namespace {

/// The properties that a call has read, none where it failed. Frees the reply.
QVariantMap takeProperties(QDBusPendingCall &call)
{
    const QDBusPendingReply<QVariantMap> reply = call;
    DBusBarrier::release(call);
    return reply.isError() ? QVariantMap() : reply.value();
}

} // namespace

PreparedItems::PreparedItems(CMUPnPWorker *worker, DBusBarrier *barrier)
    : SlicedWork(worker)
    , m_worker(worker)
    , m_barrier(barrier)
    , m_request(barrier->takeUserData<CMSetDataRequest>())
{
}

bool PreparedItems::step()
{
    ObjectProperties object;
    if (m_found.next(&object)) {
        append(object);
    } else if (m_barrier->containsCall(preparation::directItemCall(m_track))) {
        takeTrack();
    } else if (m_barrier->containsCall(preparation::searchCall(m_search))) {
        openSearch();
    } else {
        answer();
        return false;
    }
    return true;
}

void PreparedItems::takeTrack()
{
    QVariantMap properties =
        takeProperties(m_barrier->getCall(preparation::directItemCall(m_track)));
    const QVariantMap objectProperties =
        takeProperties(m_barrier->getCall(preparation::directObjectCall(m_track)));
    for (auto it = objectProperties.begin(); it != objectProperties.end(); ++it)
        properties.insert(it.key(), it.value());
    append(ObjectProperties(properties));
    ++m_track;
}

void PreparedItems::openSearch()
{
    QDBusPendingCall &call = m_barrier->getCall(preparation::searchCall(m_search));
    const QDBusPendingReply<PropertyMaps, uint> found = call;
    if (found.isError()) {
        LOG4CPLUS_WARN(
            upnpLog(), "Fetching search results failed; error: " << found.error().message());
        m_searchFailed = true;
    } else {
        m_found.open(found.reply());
    }
    DBusBarrier::release(call);
    ++m_search;
}

void PreparedItems::append(const ObjectProperties &object)
{
    const OrkaPlayListItem item = m_worker->fillin_playlistItem(object, &m_context);
    if (!item.isEmpty())
        m_items.append(item.toVariant());
}

void PreparedItems::answer()
{
    m_barrier->deleteInSlices();
    if (m_searchFailed && m_items.isEmpty()) {
        LOG4CPLUS_INFO(upnpLog(), "Search is not supported by the server - try browsing items");
        m_worker->browsePlaylistItems(*m_request);
        return;
    }
    LOG4CPLUS_TRACE(upnpLog(), "Result: " << m_items);
    m_request->reply().setValue(m_items);
}
