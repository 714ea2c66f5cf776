#include "upnp/HttpSession.h"

#include "core/Later.h"
#include "core/Limits.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr int64_t usPerMs = 1000;
// Longer than a page of rows should take.
constexpr unsigned silenceMs = 1'200;

/// Requests of all sessions that are under way.
unsigned underWayOfAll = 0;

/// Sessions that could have more of them.
std::deque<std::weak_ptr<HttpSession>> &hungry()
{
    // Answers that are let go at the program's end come here.
    static auto &sessions = *new std::deque<std::weak_ptr<HttpSession>>;
    return sessions;
}

} // namespace

std::shared_ptr<HttpSession> HttpSession::create()
{
    return std::shared_ptr<HttpSession>(new HttpSession);
}

int64_t HttpSession::latestEnd(unsigned timeoutMs)
{
    return g_get_monotonic_time() + timeoutMs * usPerMs * 5 / 3;
}

void HttpSession::get(
    const std::string &url, size_t maxBytes, unsigned timeoutMs, HttpCallback done)
{
    send({url, {}, {}, maxBytes, timeoutMs, {}, false, latestEnd(timeoutMs)}, std::move(done));
}

bool HttpSession::isResting(unsigned ms) const
{
    return m_exchanges.empty() && g_get_monotonic_time() - m_lastRequest >= ms * usPerMs;
}

void HttpSession::send(HttpRequest request, HttpCallback done)
{
    m_lastRequest = g_get_monotonic_time();
    const auto url = parseHttpUrl(request.url);
    const auto self = std::make_shared<HttpExchange *>();
    const auto exchange = std::make_shared<HttpExchange>(std::move(request),
        [weak = weak_from_this(), self, done = std::move(done)](HttpReply reply) {
            if (const auto session = weak.lock())
                session->finished(*self, reply);
            done(std::move(reply));
        });
    *self = exchange.get();
    setDeadline(*self, exchange->startedAt() + patience(*exchange));
    if (m_exchanges.size() == 1)
        watchSilence();
    exchange->watchCaller();
    // Nobody waits here for a name to be resolved.
    if (!url || !url->isNumeric)
        exchange->stop(
            HttpOutcome::Unreachable, "\"" + exchange->request().url + "\" is not a URL.");
    const std::string &caller = exchange->request().caller.name;
    if (exchange->request().goesOn)
        m_waiting.pushFirst(caller, exchange);
    else
        m_waiting.push(caller, exchange);
    sendWaiting();
}

void HttpSession::finished(HttpExchange *exchange, const HttpReply &reply)
{
    // What the bridge itself asks, a server may answer that hangs over everything else.
    const bool isAnswer =
        reply.outcome == HttpOutcome::Answered && !exchange->request().caller.name.empty();
    if (isAnswer) {
        m_lastAnswer = g_get_monotonic_time();
        m_silence.stop();
    }
    const auto known = m_exchanges.find(exchange);
    m_deadlines.erase({known->second, exchange});
    m_exchanges.erase(known);
    if (m_exchanges.empty())
        m_silence.stop();
    else if (isAnswer)
        watchSilence();
}

void HttpSession::watchSilence()
{
    if (m_silence.isRunning())
        return;
    m_silence.start(silenceMs, [this] {
        if (onSilent)
            onSilent();
    });
}

void HttpSession::abort(HttpOutcome outcome)
{
    std::vector<ExchangePtr> all;
    for (const auto &[exchange, due] : m_exchanges)
        all.push_back(exchange->shared_from_this());
    for (const ExchangePtr &exchange : all)
        exchange->stop(outcome);
}

void HttpSession::sendWaiting()
{
    // Thousands may have been stopped at one time.
    constexpr int some = 100;
    for (int i = 0; mayBegin() && !m_waiting.isEmpty(); ++i) {
        if (i == some) {
            later([weak = weak_from_this()] {
                if (const auto self = weak.lock())
                    self->sendWaiting();
            });
            return;
        }
        if (const ExchangePtr next = m_waiting.pop(); !next->isStopped())
            begin(*next);
    }
    waitForTurn();
}

void HttpSession::begin(HttpExchange &exchange)
{
    ++m_underWay;
    ++underWayOfAll;
    exchange.send(m_connections, std::shared_ptr<void>(nullptr, [weak = weak_from_this()](void *) {
        --underWayOfAll;
        if (const auto self = weak.lock())
            self->placeIsFree();
        serveHungry();
    }));
}

/// Every server has one request under way, whatever happens at the others.
bool HttpSession::mayBegin() const
{
    const bool hasAnswered = m_lastAnswer != 0
        && g_get_monotonic_time() - m_lastAnswer < limits::latelySeconds * G_USEC_PER_SEC;
    return m_underWay == 0
        || (m_underWay < limits::requestsPerServer
            && underWayOfAll < limits::requestsOfAll / (hasAnswered ? 1 : 2));
}

void HttpSession::placeIsFree()
{
    if (--m_underWay == 0)
        sendWaiting();
    else
        waitForTurn();
}

void HttpSession::waitForTurn()
{
    if (m_waiting.isEmpty() || m_underWay >= limits::requestsPerServer || m_isHungry)
        return;
    m_isHungry = true;
    hungry().push_back(weak_from_this());
}

void HttpSession::serveHungry()
{
    // Whoever may not begin yet gets into the row again.
    constexpr size_t some = 16;
    for (size_t i = std::min(some, hungry().size());
         i != 0 && underWayOfAll < limits::requestsOfAll && !hungry().empty(); --i) {
        const auto session = hungry().front().lock();
        hungry().pop_front();
        if (!session)
            continue;
        session->m_isHungry = false;
        session->sendWaiting();
    }
}

void HttpSession::setDeadline(HttpExchange *exchange, int64_t due)
{
    const auto [known, isNew] = m_exchanges.try_emplace(exchange, due);
    if (!isNew)
        m_deadlines.erase({std::exchange(known->second, due), exchange});
    m_deadlines.insert({due, exchange});
    if (due < m_timerDue)
        startDeadlineTimer();
}

void HttpSession::startDeadlineTimer()
{
    m_timerDue = m_deadlines.begin()->first;
    const int64_t ms = (m_timerDue - g_get_monotonic_time()) / usPerMs + 1;
    m_deadlineTimer.start(static_cast<unsigned>(std::max<int64_t>(ms, 0)), [this] {
        m_timerDue = 0;
        checkDeadlinesLater();
    });
}

/// Thousands may have come at one time, and as many servers may be silent.
void HttpSession::checkDeadlinesLater()
{
    later([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->checkFirstDeadline();
    });
}

void HttpSession::checkFirstDeadline()
{
    const int64_t now = g_get_monotonic_time();
    if (m_deadlines.empty()) {
        m_timerDue = noTimer;
        return;
    }
    if (m_deadlines.begin()->first > now) {
        startDeadlineTimer();
        return;
    }
    HttpExchange *const exchange = m_deadlines.begin()->second;
    const int64_t rest = patience(*exchange);
    if (rest <= 0)
        exchange->stop(HttpOutcome::TimedOut);
    // Looked at again where it doesn't end soon.
    setDeadline(exchange, now + std::max(rest, 100 * usPerMs));
    checkDeadlinesLater();
}

/// A server that answers others is busy, not hanging: what waits its turn gets more time.
int64_t HttpSession::patience(const HttpExchange &exchange) const
{
    const int64_t limit = exchange.request().timeoutMs * usPerMs;
    const int64_t now = g_get_monotonic_time();
    const int64_t silent = now - std::max(exchange.startedAt(), m_lastAnswer);
    return std::min(limit - silent, exchange.request().latest - now);
}

} // namespace bridge
