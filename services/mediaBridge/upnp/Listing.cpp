#include "upnp/Listing.h"

#include "Log.h"
#include "core/Later.h"
#include "core/Limits.h"
#include "core/Numbers.h"

#include <algorithm>

namespace bridge {

namespace {

// Below the 25 s after which a D-Bus caller gives up.
constexpr int64_t longestUs = 20'000'000;
// From here on, servers write -1.
constexpr uint32_t noCount = 0x7fffffff;
} // namespace

Listing::Listing(std::shared_ptr<MediaServer> server, ListRequest request, Caller caller,
    RowSink sink, Done done)
    : m_server(std::move(server))
    , m_request(std::move(request))
    , m_caller(std::move(caller))
    , m_done(std::move(done))
    , m_deadline(g_get_monotonic_time() + longestUs)
    , m_position(m_request.isFiltered() ? 0 : m_request.offset)
    , m_reader(m_request, m_server->description().friendlyName, std::move(sink))
{
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
    if (!m_done || m_reader.rowCount() > 0)
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
        mustCheckCount() ? checkCount() : finish();
}

/// Where in the server's list what has come ends. Rows that came twice are behind none others.
uint32_t Listing::reached() const
{
    return m_position - m_reader.repeatedCount();
}

/// What came twice may have stood for another object, where the server's count doesn't say that all
/// are there.
uint32_t Listing::lostCount() const
{
    return m_reader.lostCount() + (isTotalKnown() ? 0 : m_reader.repeatedCount());
}

/// Of a count that what has come disproves nothing is believed.
bool Listing::isTotalKnown() const
{
    return m_total > 0 && (reached() <= m_total || !m_reader.hasSeenObjects())
        && m_server->countsWhole(m_request.action).value_or(true);
}

/// Some servers count what they have sent. A count that ends where the rows do looks the same,
/// until one of the server's has been seen that goes on behind them.
bool Listing::isCountInDoubt() const
{
    const bool endsWithRows =
        m_total > 0 && m_position == m_total && m_reader.hasSeenObjects() && !m_isAtEnd;
    return endsWithRows && !m_isCountChecked && !m_server->countsWhole(m_request.action);
}

bool Listing::mustCheckCount() const
{
    const bool isRangeFull = m_request.max > 0 && m_reader.rowCount() >= m_request.max;
    return isCountInDoubt() && (!isRangeFull || m_request.tellsTotal || !m_totalCallbacks.empty());
}

/// Of several rows the first is asked for: a server that counts what it sends says that it is the
/// only one, and no other has to be asked again. Behind a single one there is one or none.
void Listing::checkCount()
{
    m_isRequesting = true;
    const uint32_t position = m_total > 1 ? 0 : 1;
    m_server->call({m_request.action, arguments(position, 1), m_caller,
                       std::min(remainingMs(), MediaServer::answerTimeoutMs),
                       limits::answerBytes(1), true, m_deadline},
        [self = shared_from_this(), position](ActionReply reply) {
            self->m_isRequesting = false;
            if (self->m_done)
                self->checkedCount(position, std::move(reply));
            self->proceed();
        });
}

void Listing::checkedCount(uint32_t position, ActionReply reply)
{
    m_isCountChecked = true;
    if (reply.isError() && reply.outcome != HttpOutcome::Answered) {
        failAs(std::move(reply));
        return;
    }
    const auto number = [&](const char *name) {
        return parseCount(reply.answer.value(name)).value_or(0);
    };
    const bool isMore = number("TotalMatches") > 1;
    if (position == 0 && number("TotalMatches") > 0)
        m_server->setCountsWhole(m_request.action, isMore);
    else if (position > 0 && (isMore || number("NumberReturned") > 0))
        m_server->setCountsWhole(m_request.action, false);
}

bool Listing::wantsMore() const
{
    if (m_isAtEnd || (isTotalKnown() && reached() >= m_total))
        return false;
    if (m_request.max == 0)
        return true;
    if (!m_request.isFiltered())
        return reached() - m_request.offset < m_request.max;
    return m_reader.rowCount() < m_request.max;
}

void Listing::requestPage()
{
    uint32_t count = m_pageSize.objects();
    if (m_request.max > 0 && !m_request.isFiltered())
        count = std::min(count, m_request.max - (reached() - m_request.offset));
    const unsigned timeoutMs = std::min(remainingMs(), MediaServer::answerTimeoutMs);
    if (timeoutMs == 0) {
        failLate();
        return;
    }
    m_isRequesting = true;
    m_pageStart = std::chrono::steady_clock::now();
    m_server->call({m_request.action, arguments(m_position, count), m_caller, timeoutMs,
                       limits::answerBytes(count),
                       m_reader.rowCount() > 0 || m_reading || m_waiting, m_deadline},
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
        if (isEndOfUnknown(reply))
            m_isAtEnd = true;
        else if (!retrySmaller(reply, position))
            failAs(std::move(reply));
        return;
    }
    // The standard has it in every answer; where even the count is missing, nothing was answered.
    if (reply.answer.values.count("Result") == 0 && reply.answer.value("NumberReturned") != "0") {
        failUnreadable();
        return;
    }
    const auto counted = parseCount(reply.answer.value("TotalMatches"));
    const auto sent = parseCount(reply.answer.value("NumberReturned"));
    const uint32_t total = counted.value_or(0);
    const uint32_t returned = sent.value_or(0);
    m_total = std::max(m_total, total < noCount ? total : 0);
    m_waiting = Page{position, asked, std::min(returned, asked), total, counted || sent,
        std::move(reply.answer.values["Result"]), std::move(reply.place)};
    m_position = position + m_waiting->returned;
    m_pageSize.follow(m_waiting->returned, m_waiting->didl.size(),
        std::chrono::steady_clock::now() - m_pageStart);
}

/// Past the end of a list whose length they don't know, some servers call the position invalid.
bool Listing::isEndOfUnknown(const ActionReply &reply) const
{
    constexpr int invalidArguments = 402;
    return !isTotalKnown() && m_reader.hasSeenObjects()
        && reply.answer.faultCode == invalidArguments;
}

/// A server that breaks down over a big page may well manage a small one.
bool Listing::retrySmaller(const ActionReply &reply, uint32_t position)
{
    const bool mayHelp =
        reply.outcome == HttpOutcome::Broken || reply.outcome == HttpOutcome::TooLarge;
    if (!mayHelp || !m_pageSize.shrink())
        return false;
    m_position = position;
    logInfo(
        reply.failure.text + "; asking for " + std::to_string(m_pageSize.objects()) + " at a time");
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
    const auto content =
        m_reader.take(std::move(list), m_reading->position, m_reading->returned, m_total);
    const bool saysNothing = content.isLast && !m_reading->isCounted && !m_reader.hasSeenObjects();
    if (content.isUnreadable || saysNothing) {
        failUnreadable();
        return;
    }
    m_isAtEnd = m_isAtEnd || content.isLast;
    const bool goesOn = content.count > 0 && m_reading->total > m_reading->position + content.count;
    if (goesOn && !m_server->countsWhole(m_request.action))
        m_server->setCountsWhole(m_request.action, true);
    if (content.count != m_reading->returned) {
        // What is under way begins at the wrong place.
        ++m_round;
        m_waiting.reset();
        m_position = m_reading->position + content.count;
    }
    if (isSmall)
        readSlice();
    else
        readNextSlice();
}

void Listing::readNextSlice()
{
    later([self = shared_from_this()] { self->readSlice(); }, m_server->host());
}

void Listing::readSlice()
{
    Failure refusal = m_reader.readSlice();
    if (!refusal.name.empty()) {
        fail(std::move(refusal));
        return;
    }
    if (m_reader.rowCount() > 0)
        tellTotal();
    if (!m_reader.isAtEndOfPage()) {
        readNextSlice();
        return;
    }
    m_reading.reset();
    proceed();
}

void Listing::tellTotal()
{
    const bool isInDoubt = isCountInDoubt();
    if (m_done && isInDoubt)
        return;
    const bool isSeen = m_isAtEnd && m_total > 0 && reached() == m_total;
    const bool isKnown = isSeen || (isTotalKnown() && !isInDoubt);
    const auto total = isKnown ? std::optional(m_total) : std::nullopt;
    // Thousands may have asked, and may ask how it ended.
    for (TotalCallback &callback : std::exchange(m_totalCallbacks, {}))
        later([self = shared_from_this(), callback = std::move(callback), total] {
            callback(total);
        });
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
            + std::to_string(m_reader.rowCount())
            + " objects so far). Ask for fewer objects at a time."});
}

void Listing::failAs(ActionReply reply)
{
    const bool isSilent = reply.outcome == HttpOutcome::TimedOut;
    if (isSilent)
        m_silence = reply.failure;
    if (isSilent && remainingMs() == 0)
        failLate();
    else
        fail(std::move(reply.failure));
}

bool Listing::isShort() const
{
    const bool mayBeSeen = m_request.tellsTotal || (m_request.max > 0 && m_reader.rowCount() > 0);
    return (lostCount() > 0 || (m_isAtEnd && reached() < m_total)) && !mayBeSeen;
}

void Listing::failShort()
{
    const uint32_t came = m_reader.rowCount();
    const std::string seen = m_request.max > 0
        ? "none came behind the first " + std::to_string(m_request.offset) + '.'
        : "only " + std::to_string(came) + " came. Ask for a range to get those.";
    fail({errors::operationFailed,
        m_request.action + " operation failed: \"" + m_server->description().friendlyName
            + "\" counts " + std::to_string(m_total) + " objects here, but " + seen});
}

void Listing::finish()
{
    // Clients look elsewhere for what a search can't give, but only where it fails.
    const bool isNothing = m_request.action == "Search" && m_request.offset == 0 && m_total > 0;
    if (m_reader.rowCount() == 0 && (lostCount() > 0 || isNothing)) {
        failUnreadable();
        return;
    }
    if (isShort()) {
        failShort();
        return;
    }
    const uint32_t seen =
        m_reader.rowCount() > 0 ? m_request.offset + m_reader.rowCount() + lostCount() : 0;
    const bool isCounted = isTotalKnown() || m_isAtEnd;
    end({{}, m_reader.rowCount(), isCounted ? std::max(m_total, seen) : 0, isTotalKnown()});
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
    return static_cast<unsigned>(std::max(m_deadline - g_get_monotonic_time(), int64_t{0}) / 1000);
}

} // namespace bridge
