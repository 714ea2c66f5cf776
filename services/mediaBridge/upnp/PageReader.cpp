#include "upnp/PageReader.h"

#include "Log.h"
#include "core/Limits.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace bridge {

namespace {

bool isOfKind(const MediaObject &object, ListKind kind)
{
    return kind == ListKind::All || object.isContainer == (kind == ListKind::Containers);
}

} // namespace

PageReader::PageReader(const ListRequest &request, std::string serverName, RowSink sink)
    : m_request(request)
    , m_serverName(std::move(serverName))
    , m_sink(std::move(sink))
    , m_toSkip(request.isFiltered() ? request.offset : 0)
{
}

PageReader::Content PageReader::take(
    std::optional<DidlList> list, uint32_t position, uint32_t returned, uint32_t total)
{
    // The first page with objects that aren't there is no empty list.
    const bool lacksAll = !hasSeenObjects() && m_rowCount == 0 && returned > 0;
    const bool isNothing = !list || (list->objects.empty() && (lacksAll || !list->isWhole));
    const bool isSkipped = isNothing && list && list->endsAtFault && m_lost < limits::lostObjects;
    if (isNothing && !isSkipped)
        return {true, true, 0};
    Content content{false, false, countOf(*list)};
    std::vector<MediaObject> &objects = list->objects;
    if (isRepeated(objects, total - std::min(position, total))) {
        logWarning("\"" + m_serverName + "\" sends again what it has sent; the list ends there");
        content = {false, true, 0};
    } else if ((objects.empty() && !isSkipped) || isOnlyItself(objects, total)) {
        content.isLast = true;
    } else if (!isSkipped) {
        m_hasSeenObjects = true;
        leaveOutKnown(objects);
        remember(objects);
    }
    if (content.isLast)
        objects.clear();
    m_objects = std::move(objects);
    m_nextObject = 0;
    return content;
}

/// The number that the server gave may be wrong; the objects that came are what counts.
uint32_t PageReader::countOf(const DidlList &list)
{
    auto count = static_cast<uint32_t>(list.objects.size());
    if (!list.isWhole) {
        logWarning("\"" + m_serverName
            + "\" sends a malformed list; going on behind what could be read of it");
    }
    if (count == 0 && list.endsAtFault) {
        // The first of what was asked for is malformed itself, and would be again.
        ++count;
        ++m_lost;
    }
    return count;
}

/// The page before, or one that was there before it: behind their end, some lists begin anew, or
/// give their last page again. Among the `left` objects that the server still counts, one may be
/// there twice; and what begins inside the page before may overlap it.
bool PageReader::isRepeated(const std::vector<MediaObject> &objects, uint32_t left) const
{
    if (objects.empty())
        return false;
    const auto first = m_idsBefore.find(objects.front().id);
    const bool isInPageBefore = first != m_idsBefore.end();
    if (isInPageBefore ? first->second != m_countBefore : objects.size() <= left)
        return false;
    const auto wasThere = [this](const MediaObject &object) {
        const size_t hash = std::hash<std::string>()(object.id);
        return !object.id.empty() && std::binary_search(m_seen.begin(), m_seen.end(), hash);
    };
    return std::all_of(objects.begin(), objects.end(), wasThere);
}

void PageReader::remember(const std::vector<MediaObject> &objects)
{
    const auto known = static_cast<ptrdiff_t>(m_seen.size());
    for (const MediaObject &object : objects) {
        if (m_seen.size() < limits::idsOfList)
            m_seen.push_back(std::hash<std::string>()(object.id));
    }
    std::sort(m_seen.begin() + known, m_seen.end());
    std::inplace_merge(m_seen.begin(), m_seen.begin() + known, m_seen.end());
}

/// Asked for the children of an item, some servers give the item itself.
bool PageReader::isOnlyItself(const std::vector<MediaObject> &objects, uint32_t total) const
{
    return m_request.action == "Browse" && total <= 1 && objects.size() == 1
        && !objects.front().isContainer && objects.front().id == m_request.containerId;
}

/// What begins with objects that were there already isn't the next page: the pages overlap, the
/// server left some out on the way, or the list has become longer in front. It may only be the
/// first where they are the very end of the page before; the server's count tells whether it is.
void PageReader::leaveOutKnown(std::vector<MediaObject> &objects)
{
    const auto isNew = [this](const MediaObject &object) {
        return m_idsBefore.count(object.id) == 0;
    };
    const auto firstNew = std::find_if(objects.begin(), objects.end(), isNew);
    bool isEndBefore = true;
    for (auto known = objects.begin(); known != firstNew; ++known)
        isEndBefore = isEndBefore && m_idsBefore[known->id] == firstNew - known;
    std::map<std::string, ptrdiff_t> ids;
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        if (!object->id.empty())
            ids[object->id] = objects.end() - object;
    }
    m_countBefore = objects.end() - objects.begin();
    (isEndBefore ? m_repeated : m_lost) += static_cast<uint32_t>(firstNew - objects.begin());
    objects.erase(objects.begin(), firstNew);
    m_idsBefore = std::move(ids);
}

Failure PageReader::readSlice()
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(limits::turnUs);
    Failure refusal;
    while (!isAtEndOfPage() && refusal.name.empty()) {
        refusal = readObject(m_objects[m_nextObject++]);
        if (std::chrono::steady_clock::now() >= end)
            break;
    }
    if (isAtEndOfPage())
        m_objects.clear();
    return refusal;
}

Failure PageReader::readObject(const MediaObject &object)
{
    const bool isEnough = m_request.max > 0 && m_rowCount >= m_request.max;
    if (isEnough || !isOfKind(object, m_request.kind))
        return {};
    if (m_toSkip > 0) {
        --m_toSkip;
        return {};
    }
    ++m_rowCount;
    return m_sink(object);
}

} // namespace bridge
