#include "upnp/DescriptionLook.h"

#include "core/Background.h"
#include "core/Limits.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

// A server that has moved is to be found within a second, and a busy one is not to be left for
// whoever announces himself in its name.
constexpr unsigned patienceMs = 600;

} // namespace

std::string whatIsWrong(const HttpReply &reply, const std::string &withDocument)
{
    if (reply.outcome == HttpOutcome::TimedOut)
        return "doesn't answer";
    if (reply.outcome != HttpOutcome::Answered)
        return "can't be read (" + reply.problem + ")";
    if (reply.status != 200)
        return "gives no description, but the HTTP status " + std::to_string(reply.status);
    return withDocument;
}

void readDescription(HttpReply reply, const std::string &udn, const std::string &location,
    std::function<void(const HttpReply &, DescriptionReading)> done)
{
    struct Work
    {
        HttpReply reply;
        DescriptionReading reading;
    };
    const auto work = std::make_shared<Work>(Work{std::move(reply), {}});
    background::read(
        hostOf(location), work->reply.body.size(),
        [work, udn, location] {
            HttpReply &read = work->reply;
            work->reading = readDescription(std::move(read.body), udn, location, read.charset);
        },
        [work, done = std::move(done)] { done(work->reply, std::move(work->reading)); });
}

DescriptionLook::DescriptionLook(
    std::string udn, std::vector<Route> routes, unsigned timeoutMs, Done done)
    : m_udn(std::move(udn))
    , m_routes(std::move(routes))
    , m_timeoutMs(timeoutMs)
    , m_done(std::move(done))
{
}

DescriptionLook::~DescriptionLook()
{
    m_session->abort();
}

void DescriptionLook::add(const Route &route)
{
    // Whoever names ever more places is not to take the room of the right one.
    const std::string host = hostOf(route.location);
    const auto ofHost = std::count_if(m_routes.begin(), m_routes.end(),
        [&](const Route &known) { return hostOf(known.location) == host; });
    if (!m_done || ofHost >= limits::guessesOfOneHost
        || m_routes.size() >= limits::addressesOfOneServer)
        return;
    m_routes.push_back(route);
    if (!m_patience.isRunning())
        askNext();
}

void DescriptionLook::askNext()
{
    if (m_next >= m_routes.size()) {
        if (m_underWay == 0)
            finish();
        return;
    }
    const Route &route = m_routes[m_next++];
    ++m_underWay;
    m_session->get(route.location, limits::descriptionBytes, m_timeoutMs,
        [weak = weak_from_this(), route](HttpReply reply) {
            if (const auto self = weak.lock())
                self->answered(route, std::move(reply));
        });
    m_patience.start(patienceMs, [this] { askNext(); });
}

void DescriptionLook::answered(const Route &route, HttpReply answer)
{
    if (answer.status != 200) {
        described(route, answer, {});
        return;
    }
    readDescription(std::move(answer), m_udn, route.location,
        [weak = weak_from_this(), route](const HttpReply &reply, DescriptionReading reading) {
            if (const auto self = weak.lock())
                self->described(route, reply, std::move(reading));
        });
}

void DescriptionLook::described(
    const Route &route, const HttpReply &reply, DescriptionReading reading)
{
    if (!m_done)
        return;
    --m_underWay;
    m_result.description = std::move(reading.description);
    if (m_result.description) {
        m_result.route = route;
        finish();
        return;
    }
    m_result.problem = route.location + ' ' + whatIsWrong(reply, reading.problem) + '.';
    m_result.isReplaced = reading.isDevice && (m_result.failed.empty() || m_result.isReplaced);
    m_result.failed.push_back(route);
    m_result.sawRefusal = m_result.sawRefusal || reply.outcome != HttpOutcome::TimedOut;
    askNext();
}

void DescriptionLook::finish()
{
    m_patience.stop();
    m_session->abort();
    for (size_t i = 0; i < m_next; ++i) {
        const bool isWinner = m_result.description
            && m_routes[i].location == m_result.route.location
            && m_routes[i].listener == m_result.route.listener;
        if (!isWinner)
            m_result.asked.push_back(m_routes[i]);
    }
    const Done done = std::exchange(m_done, nullptr);
    done(std::move(m_result));
}

} // namespace bridge
