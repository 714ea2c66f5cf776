#include "PreparedItems.h"

#include "DBusBarrier.h"
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

PreparedItems::PreparedItems(DBusBarrier *barrier, const ObjectMapping &mapping,
    std::function<void(const CMSetDataRequest &)> walk)
    : SlicedWork(barrier)
    , m_barrier(barrier)
    , m_arrived(barrier, this, [this] { m_mapping.replyArrived(); })
    , m_mapping(mapping)
    , m_walk(std::move(walk))
{
}

SlicedWork::Next PreparedItems::step()
{
    if (!m_found.empty()) {
        append(m_found.front());
        m_found.pop_front();
    } else if (m_barrier->containsCall(preparation::directItemCall(m_track))) {
        takeTrack();
    } else if (m_barrier->containsCall(preparation::searchCall(m_search))) {
        openSearch();
    } else {
        answer();
        return Next::Rest;
    }
    return Next::Step;
}

void PreparedItems::takeTrack()
{
    ObjectProperties properties = takeProperties(preparation::directItemCall(m_track));
    properties.merge(takeProperties(preparation::directObjectCall(m_track)));
    append(properties);
    ++m_track;
}

/// None where the call failed.
ObjectProperties PreparedItems::takeProperties(const QString &callName)
{
    const auto objects = m_arrived.take(m_barrier->watcher(callName));
    return objects ? objects->front() : ObjectProperties();
}

void PreparedItems::openSearch()
{
    const QDBusPendingCallWatcher *const call =
        m_barrier->watcher(preparation::searchCall(m_search));
    auto found = m_arrived.take(call);
    if (found) {
        m_found = std::move(*found);
    } else {
        LOG4CPLUS_WARN(upnpLog(),
            "Fetching search results failed; error: " << logText(call->error().message()));
        m_searchFailed = true;
    }
    ++m_search;
}

void PreparedItems::append(const ObjectProperties &object)
{
    const OrkaPlayListItem item = m_mapping.playListItem(object);
    if (!sdk::isEmpty(item))
        m_items.append(sdk::variantOf(item));
}

void PreparedItems::answer()
{
    const auto request = m_barrier->takeUserData<CMSetDataRequest>();
    m_barrier->deleteInSlices();
    if (m_searchFailed && m_items.isEmpty()) {
        LOG4CPLUS_INFO(upnpLog(), "Search is not supported by the server - try browsing items");
        m_walk(*request);
        return;
    }
    LOG4CPLUS_TRACE(upnpLog(), "Result: " << logText(m_items));
    sdk::answer(*request, QVariant(m_items));
}
