#include "upnp/Listing.h"

#include "Log.h"
#include "core/Didl.h"
#include "core/Numbers.h"

#include <algorithm>

namespace bridge {

namespace {

// Below the 25 s after which a D-Bus caller gives up.
constexpr auto listTimeout = std::chrono::seconds(20);
constexpr uint32_t smallestRetry = 20;

bool isOfKind(const MediaObject &object, ListKind kind)
{
    return kind == ListKind::All || object.isContainer == (kind == ListKind::Containers);
}

} // namespace

/// One page on its way through the reading thread, which touches nothing else.
struct Listing::ReadJob
{
    std::shared_ptr<Listing> listing;
    unsigned round = 0;
    Page page;
    PropertySet wanted;
    ListKind kind = ListKind::All;
    std::string containerId;
    ServerContext context;

    bool isReadable = false;
    uint32_t objectCount = 0;
    size_t bytes = 0;
    std::string firstId;
    std::vector<Variant> rows;

    void read()
    {
        const auto objects = parseDidl(page.didl);
        isReadable = objects.has_value();
        if (!isReadable)
            return;
        objectCount = static_cast<uint32_t>(objects->size());
        if (!objects->empty())
            firstId = objects->front().id;
        rows.reserve(objects->size());
        PropertyMapper mapper(wanted, context);
        for (const MediaObject &object : *objects) {
            // Asked for the children of an item, some servers give the item itself.
            const bool isItself = !containerId.empty() && object.id == containerId;
            if (isItself || !isOfKind(object, kind))
                continue;
            rows.push_back(ownVariant(mapper.map(object)));
            bytes += g_variant_get_size(rows.back().get());
        }
    }
};

Listing::Listing(std::shared_ptr<MediaServer> server, ListRequest request, size_t maxBytes,
    GCancellable *cancellable, Done done)
    : m_server(std::move(server))
    , m_request(std::move(request))
    , m_maxBytes(maxBytes)
    , m_cancellable(Ref<GCancellable>::share(cancellable))
    , m_done(std::move(done))
    , m_deadline(std::chrono::steady_clock::now() + listTimeout)
{
    // Positions of a filtered listing count what is left, so they can't be left to the server.
    if (m_request.kind == ListKind::All)
        m_position = m_request.offset;
    else
        m_toSkip = m_request.offset;
}

void Listing::start(std::shared_ptr<MediaServer> server, ListRequest request, size_t maxBytes,
    GCancellable *cancellable, Done done)
{
    std::make_shared<Listing>(
        std::move(server), std::move(request), maxBytes, cancellable, std::move(done))
        ->proceed();
}

void Listing::proceed()
{
    if (!m_done)
        return;
    if (m_page && !m_isReading)
        readPage();
    if (!m_isRequesting && !m_page && wantsMore())
        requestPage();
    if (!m_isRequesting && !m_isReading && !m_page)
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
    return m_result.rows.size() < m_request.max;
}

void Listing::requestPage()
{
    uint32_t count = m_pageSize;
    if (m_request.max > 0 && m_request.kind == ListKind::All)
        count = std::min(count, m_request.max - (m_position - m_request.offset));
    const unsigned timeoutMs = std::min(remainingMs(), MediaServer::answerTimeoutMs);
    if (timeoutMs == 0) {
        fail({errors::operationFailed,
            m_request.action + " operation failed: The list was not complete after 20 seconds ("
                + std::to_string(m_result.rows.size())
                + " objects so far). Ask for fewer objects at a time."});
        return;
    }
    m_isRequesting = true;
    m_server->call(m_request.action, m_request.action, arguments(m_position, count), timeoutMs,
        m_cancellable.get(),
        [self = shared_from_this(), position = m_position, count, round = m_round](
            ActionReply reply) {
            self->m_isRequesting = false;
            if (round == self->m_round)
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
            fail(std::move(reply.failure));
        return;
    }
    const auto total = parseAs<uint32_t>(reply.answer.value("TotalMatches")).value_or(0);
    const auto returned = parseAs<uint32_t>(reply.answer.value("NumberReturned")).value_or(0);
    m_total = std::max(m_total, total);
    m_page = std::make_unique<Page>();
    m_page->position = position;
    m_page->returned = std::min(returned, asked);
    m_page->didl = std::move(reply.answer.values["Result"]);
    m_position = position + m_page->returned;
    // Without a figure, what comes next is known when the page has been read.
    m_isRequesting = m_page->returned == 0;
    readPage();
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
    if (reply.outcome != HttpOutcome::Broken || m_pageSize <= smallestRetry)
        return false;
    m_pageSize = std::max(m_pageSize / 5, smallestRetry);
    m_position = position;
    logInfo(reply.failure.text + "; asking for " + std::to_string(m_pageSize) + " at a time");
    return true;
}

void Listing::readPage()
{
    if (m_isReading)
        return;
    m_isReading = true;
    auto *job = new ReadJob;
    job->listing = shared_from_this();
    job->round = m_round;
    job->page = std::move(*m_page);
    m_page.reset();
    job->wanted = m_request.wanted;
    job->kind = m_request.kind;
    if (m_request.action == "Browse")
        job->containerId = m_request.containerId;
    job->context = m_server->context();

    const Ref<GTask> task(g_task_new(
        nullptr, nullptr,
        [](GObject *, GAsyncResult *result, gpointer) {
            auto *finished = static_cast<ReadJob *>(g_task_get_task_data(G_TASK(result)));
            finished->listing->pageRead(*finished);
        },
        nullptr));
    g_task_set_task_data(
        task.get(), job, [](gpointer data) { delete static_cast<ReadJob *>(data); });
    g_task_run_in_thread(task.get(), [](GTask *running, gpointer, gpointer data, GCancellable *) {
        static_cast<ReadJob *>(data)->read();
        g_task_return_boolean(running, TRUE);
    });
}

void Listing::pageRead(ReadJob &job)
{
    m_isReading = false;
    if (job.page.returned == 0)
        m_isRequesting = false;
    if (!m_done)
        return;
    if (!job.isReadable) {
        fail({errors::operationFailed,
            m_request.action + " operation failed: The list that \""
                + m_server->description().friendlyName + "\" sent can't be read."});
        return;
    }
    const bool isRepeated =
        job.objectCount > 0 && !job.firstId.empty() && job.firstId == m_lastFirstId;
    if (isRepeated)
        logWarning("\"" + m_server->description().friendlyName
            + "\" sends the same page again and again; the list ends with its first");
    if (job.objectCount == 0 || isRepeated) {
        m_isAtEnd = true;
        m_page.reset();
    } else {
        m_lastFirstId = job.firstId;
        addRows(job);
    }
    proceed();
}

void Listing::addRows(ReadJob &job)
{
    // The number that the server gave may be wrong; the objects that came are what counts.
    if (job.objectCount != job.page.returned) {
        ++m_round;
        m_page.reset();
        m_position = job.page.position + job.objectCount;
    }
    m_bytes += job.bytes;
    if (m_bytes > m_maxBytes) {
        fail({errors::operationFailed,
            m_request.action + " operation failed: The list is too long for one D-Bus message ("
                + std::to_string(m_maxBytes >> 20)
                + " MiB). Ask for fewer objects at a time, or for fewer properties."});
        return;
    }
    for (Variant &row : job.rows) {
        if (m_request.max > 0 && m_result.rows.size() >= m_request.max)
            break;
        if (m_toSkip > 0)
            --m_toSkip;
        else
            m_result.rows.push_back(std::move(row));
    }
}

void Listing::fail(Failure failure)
{
    m_result.rows.clear();
    m_result.failure = std::move(failure);
    finish();
}

void Listing::finish()
{
    if (!m_done)
        return;
    const auto seen = static_cast<uint32_t>(m_request.offset + m_result.rows.size());
    m_result.isTotalKnown = m_total > 0;
    m_result.total = m_result.rows.empty() ? m_total : std::max(m_total, seen);
    std::exchange(m_done, nullptr)(std::move(m_result));
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
