#include "upnp/Listing.h"

#include "Log.h"
#include "core/Later.h"
#include "core/Limits.h"
#include "core/Numbers.h"

#include <algorithm>

namespace bridge {

namespace {

// Below the 25 s after which a D-Bus caller gives up.
constexpr auto listTimeout = std::chrono::seconds(20);
constexpr uint32_t smallestPage = 20;
constexpr auto pageGoal = std::chrono::seconds(1);
// From here on, servers write -1.
constexpr uint32_t noCount = 0x7fffffff;
constexpr int64_t sliceUs = 1'000;

bool isOfKind(const MediaObject &object, ListKind kind)
{
    return kind == ListKind::All || object.isContainer == (kind == ListKind::Containers);
}

} // namespace

Listing::Listing(std::shared_ptr<MediaServer> server, ListRequest request, Caller caller,
    RowSink sink, Done done)
    : m_server(std::move(server))
    , m_request(std::move(request))
    , m_caller(std::move(caller))
    , m_sink(std::move(sink))
    , m_done(std::move(done))
    , m_deadline(std::chrono::steady_clock::now() + listTimeout)
{
    // Positions of a filtered listing count what is left, so they can't be left to the server.
    if (m_request.kind == ListKind::All)
        m_position = m_request.offset;
    else
        m_toSkip = m_request.offset;
}

std::shared_ptr<Listing> Listing::start(std::shared_ptr<MediaServer> server, ListRequest request,
    Caller caller, RowSink sink, Done done)
{
    std::shared_ptr<Listing> listing(new Listing(std::move(server), std::move(request),
        std::move(caller), std::move(sink), std::move(done)));
    listing->proceed();
    return listing;
}

void Listing::whenTotalIsKnown(TotalCallback callback)
{
    m_totalCallbacks.push_back(std::move(callback));
    if (!m_done || m_rowCount > 0)
        tellTotal();
}

void Listing::proceed()
{
    if (!m_done)
        return;
    const bool isNewPage = !m_reading && m_waiting;
    if (isNewPage)
        m_reading = std::exchange(m_waiting, std::nullopt);
    // Where the server didn't count what it sent, the next position is known once that is read.
    const bool isPositionKnown = !m_reading || m_reading->returned > 0;
    if (!m_isRequesting && !m_waiting && isPositionKnown && wantsMore())
        requestPage();
    if (!m_done)
        return;
    if (isNewPage)
        parsePage();
    else if (!m_isRequesting && !m_reading)
        finish();
}

bool Listing::wantsMore() const
{
    if (m_isAtEnd || (m_total > 0 && m_position >= m_total))
        return false;
    if (m_request.max == 0)
        return true;
    if (m_request.kind == ListKind::All)
        return m_position - m_request.offset < m_request.max;
    return m_rowCount < m_request.max;
}

void Listing::requestPage()
{
    uint32_t count = m_pageSize;
    if (m_request.max > 0 && m_request.kind == ListKind::All)
        count = std::min(count, m_request.max - (m_position - m_request.offset));
    const unsigned timeoutMs = std::min(remainingMs(), MediaServer::answerTimeoutMs);
    if (timeoutMs == 0) {
        failLate();
        return;
    }
    m_isRequesting = true;
    m_pageStart = std::chrono::steady_clock::now();
    m_server->call({m_request.action, arguments(m_position, count), m_caller, timeoutMs,
                       limits::answerBytes(count), m_rowCount > 0 || m_reading || m_waiting},
        [self = shared_from_this(), position = m_position, count, round = m_round](
            ActionReply reply) {
            self->m_isRequesting = false;
            // It may have ended while this page was under way.
            if (self->m_done && round == self->m_round)
                self->gotPage(position, count, std::move(reply));
            self->proceed();
        });
}

void Listing::gotPage(uint32_t position, uint32_t asked, ActionReply reply)
{
    if (reply.isError()) {
        if (reply.outcome == HttpOutcome::TimedOut)
            m_silence = reply.failure;
        if (isEndOfUnknown(reply))
            m_isAtEnd = true;
        else if (reply.outcome == HttpOutcome::TimedOut && remainingMs() == 0)
            failLate();
        else if (!retrySmaller(reply, position))
            fail(std::move(reply.failure));
        return;
    }
    // The standard has it in every answer; where even the count is missing, nothing was answered.
    if (reply.answer.values.count("Result") == 0 && reply.answer.value("NumberReturned") != "0") {
        failUnreadable();
        return;
    }
    const auto total = parseCount(reply.answer.value("TotalMatches")).value_or(0);
    const auto returned = parseCount(reply.answer.value("NumberReturned")).value_or(0);
    m_total = std::max(m_total, total < noCount ? total : 0);
    m_waiting = Page{position, asked, std::min(returned, asked),
        std::move(reply.answer.values["Result"]), std::move(reply.place)};
    m_position = position + m_waiting->returned;
    adaptPageSize();
}

/// Big pages are the fastest, but some servers take 10 ms an object, and go on with a page that
/// nobody waits for any more before they look at the next call.
void Listing::adaptPageSize()
{
    if (m_waiting->returned < smallestPage)
        return;
    const size_t bytesOfRow = m_waiting->didl.size() / m_waiting->returned + 1;
    const auto took = std::chrono::steady_clock::now() - m_pageStart;
    const auto fitting = m_waiting->returned * pageGoal / std::max(took, decltype(took)(1));
    // Escaped on its way, a row may be twice as long, and the next ones may be longer.
    const size_t allowed = limits::answerBytes(m_largestPage) / 4 / bytesOfRow + smallestPage;
    const int64_t largest =
        std::min<int64_t>(std::min(2 * m_pageSize, m_largestPage), static_cast<int64_t>(allowed));
    m_pageSize = static_cast<uint32_t>(std::clamp<int64_t>(fitting, smallestPage, largest));
}

/// Past the end of a list whose length they don't know, some servers call the position invalid.
bool Listing::isEndOfUnknown(const ActionReply &reply) const
{
    constexpr int invalidArguments = 402;
    return m_total == 0 && !m_lastFirstId.empty() && reply.answer.faultCode == invalidArguments;
}

/// A server that breaks down over a big page may well manage a small one.
bool Listing::retrySmaller(const ActionReply &reply, uint32_t position)
{
    const bool mayHelp =
        reply.outcome == HttpOutcome::Broken || reply.outcome == HttpOutcome::TooLarge;
    if (!mayHelp || m_pageSize <= smallestPage)
        return false;
    m_pageSize = m_largestPage = std::max(m_pageSize / 5, smallestPage);
    m_position = position;
    logInfo(reply.failure.text + "; asking for " + std::to_string(m_pageSize) + " at a time");
    return true;
}

void Listing::parsePage()
{
    const bool isSmall = m_reading->didl.size() <= limits::documentAtOnce;
    m_server->readDidl(std::move(m_reading->didl), m_reading->asked,
        [self = shared_from_this(), isSmall](std::optional<DidlList> list) {
            if (self->m_done)
                self->gotObjects(std::move(list), isSmall);
        });
}

void Listing::gotObjects(std::optional<DidlList> list, bool isSmall)
{
    // The first page with objects that aren't there is no empty list.
    const bool lacksAll = m_lastFirstId.empty() && m_rowCount == 0 && m_reading->returned > 0;
    const bool isNothing = !list || (list->objects.empty() && (lacksAll || !list->isWhole));
    if (isNothing && !(list && list->endsAtFault && m_lost < limits::lostObjects)) {
        failUnreadable();
        return;
    }
    const bool isSkipped = isNothing;
    checkCount(*list);
    const bool isRepeated = !list->objects.empty() && !list->objects.front().id.empty()
        && list->objects.front().id == m_lastFirstId;
    if (isRepeated)
        logWarning("\"" + m_server->description().friendlyName
            + "\" sends the same page again and again; the list ends with its first");
    if (isRepeated) {
        // What is under way would be the same.
        ++m_round;
        m_waiting.reset();
        m_position = m_reading->position;
    }
    const bool isEmpty = list->objects.empty() && !isSkipped;
    if (isEmpty || isRepeated || isOnlyItself(list->objects)) {
        m_isAtEnd = true;
        list->objects.clear();
    } else if (!isSkipped) {
        m_lastFirstId = list->objects.front().id;
        leaveOutKnown(list->objects);
    }
    m_objects = std::move(list->objects);
    m_nextObject = 0;
    if (isSmall)
        readSlice();
    else
        readNextSlice();
}

/// The number that the server gave may be wrong; the objects that came are what counts.
void Listing::checkCount(const DidlList &list)
{
    auto count = static_cast<uint32_t>(list.objects.size());
    if (!list.isWhole) {
        logWarning("\"" + m_server->description().friendlyName
            + "\" sends a malformed list; going on behind what could be read of it");
    }
    if (count == 0 && list.endsAtFault) {
        // The first of what was asked for is malformed itself, and would be again.
        ++count;
        ++m_lost;
    }
    m_cameShort = count < m_reading->returned;
    if (count == m_reading->returned)
        return;
    ++m_round;
    m_waiting.reset();
    m_position = m_reading->position + count;
}

/// Where fewer came than the server counted, it may have left some out on the way. Then what comes
/// next begins with objects that were there already.
void Listing::leaveOutKnown(std::vector<MediaObject> &objects)
{
    const auto isNew = [this](const MediaObject &object) {
        return m_idsBefore.count(object.id) == 0;
    };
    const auto firstNew = std::find_if(objects.begin(), objects.end(), isNew);
    std::set<std::string> ids;
    for (auto object = objects.begin(); m_cameShort && object != objects.end(); ++object) {
        if (!object->id.empty())
            ids.insert(object->id);
    }
    m_lost += static_cast<uint32_t>(firstNew - objects.begin());
    objects.erase(objects.begin(), firstNew);
    m_idsBefore = std::move(ids);
}

void Listing::readNextSlice()
{
    later([self = shared_from_this()] { self->readSlice(); }, m_server->host());
}

void Listing::readSlice()
{
    const int64_t end = g_get_monotonic_time() + sliceUs;
    do {
        if (m_nextObject < m_objects.size())
            readObject(m_objects[m_nextObject++]);
    } while (m_done && m_nextObject < m_objects.size() && g_get_monotonic_time() < end);
    if (!m_done)
        return;
    if (m_rowCount > 0)
        tellTotal();
    if (m_nextObject < m_objects.size()) {
        readNextSlice();
        return;
    }
    m_objects.clear();
    m_reading.reset();
    proceed();
}

/// Asked for the children of an item, some servers give the item itself.
bool Listing::isOnlyItself(const std::vector<MediaObject> &objects) const
{
    return m_request.action == "Browse" && m_total <= 1 && objects.size() == 1
        && !objects.front().isContainer && objects.front().id == m_request.containerId;
}

void Listing::readObject(const MediaObject &object)
{
    const bool isEnough = m_request.max > 0 && m_rowCount >= m_request.max;
    if (isEnough || !isOfKind(object, m_request.kind))
        return;
    if (m_toSkip > 0) {
        --m_toSkip;
        return;
    }
    ++m_rowCount;
    Failure refusal = m_sink(object);
    if (!refusal.name.empty())
        fail(std::move(refusal));
}

void Listing::tellTotal()
{
    const auto total = m_total > 0 ? std::optional<uint32_t>(m_total) : std::nullopt;
    for (const TotalCallback &callback : std::exchange(m_totalCallbacks, {}))
        callback(total);
}

void Listing::fail(Failure failure)
{
    m_total = 0;
    end({std::move(failure), 0, 0, false});
}

void Listing::failUnreadable()
{
    fail({errors::operationFailed,
        m_request.action + " operation failed: The list that \""
            + m_server->description().friendlyName + "\" sent can't be read."});
}

void Listing::failLate()
{
    fail({errors::operationFailed,
        m_request.action + " operation failed: The list was not complete after 20 seconds ("
            + std::to_string(m_rowCount) + " objects so far). Ask for fewer objects at a time."});
}

bool Listing::isShort() const
{
    const bool mayBeSeen = m_request.tellsTotal || (m_request.max > 0 && m_rowCount > 0);
    return (m_lost > 0 || (m_isAtEnd && m_position < m_total)) && !mayBeSeen;
}

void Listing::failShort()
{
    fail({errors::operationFailed,
        m_request.action + " operation failed: \"" + m_server->description().friendlyName
            + "\" counts " + std::to_string(m_total) + " objects here, but only "
            + std::to_string(m_rowCount) + " came. Ask for a range to get those."});
}

void Listing::finish()
{
    // Clients look elsewhere for what a search can't give, but only where it fails.
    const bool isNothing = m_request.action == "Search" && m_request.offset == 0 && m_total > 0;
    if (m_rowCount == 0 && (m_lost > 0 || isNothing)) {
        failUnreadable();
        return;
    }
    if (isShort()) {
        failShort();
        return;
    }
    const uint32_t seen = m_rowCount > 0 ? m_request.offset + m_rowCount + m_lost : 0;
    end({{}, m_rowCount, std::max(m_total, seen), m_total > 0});
}

void Listing::end(const ListEnd &result)
{
    const Done done = std::exchange(m_done, nullptr);
    tellTotal();
    done(result);
}

SoapArguments Listing::arguments(uint32_t position, uint32_t count) const
{
    SoapArguments arguments;
    if (m_request.action == "Search") {
        arguments = {
            {"ContainerID", m_request.containerId}, {"SearchCriteria", m_request.criteria}};
    } else {
        arguments = {{"ObjectID", m_request.containerId}, {"BrowseFlag", "BrowseDirectChildren"}};
    }
    arguments.emplace_back("Filter", didlFilter(m_request.wanted));
    arguments.emplace_back("StartingIndex", std::to_string(position));
    arguments.emplace_back("RequestedCount", std::to_string(count));
    arguments.emplace_back("SortCriteria", m_request.sort);
    return arguments;
}

unsigned Listing::remainingMs() const
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        m_deadline - std::chrono::steady_clock::now());
    return static_cast<unsigned>(std::max<int64_t>(left.count(), 0));
}

} // namespace bridge
