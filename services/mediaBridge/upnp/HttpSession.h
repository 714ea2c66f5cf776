#pragma once

#include "core/Timer.h"
#include "core/TurnQueue.h"
#include "upnp/HttpExchange.h"

#include <limits>
#include <map>
#include <set>

namespace bridge {

/// All requests to one server. It has connections of its own, so that a server which hangs can't
/// use up another's; they are kept for a few seconds. A few requests are under way at once. The
/// rest wait here, and callers take turns, so that nobody waits for another's thousand calls; while
/// very many are under way at all servers, it is one at a time here, and sessions take turns;
/// requests whose caller left are dropped. Redirects aren't followed, answers aren't unpacked. Main
/// thread only.
class HttpSession : public std::enable_shared_from_this<HttpSession>
{
public:
    static std::shared_ptr<HttpSession> create();

    /// `done` is called once, from the main loop, never from inside this call. The time-out counts
    /// from the server's last answer to any client's request of this session.
    void send(HttpRequest request, HttpCallback done);
    /// For a request that begins now, the end that leaves a busy server some time.
    static int64_t latestEnd(unsigned timeoutMs);
    /// A GET of the bridge's own.
    void get(const std::string &url, size_t maxBytes, unsigned timeoutMs, HttpCallback done);
    /// Ends everything with this outcome.
    void abort(HttpOutcome outcome = HttpOutcome::Cancelled);

    /// Nothing is asked, and nothing was in the last `ms` milliseconds.
    bool isResting(unsigned ms) const;

    /// Some request has waited for more than a second, and no client's was answered meanwhile.
    /// Called once until the next answer.
    std::function<void()> onSilent;

private:
    using ExchangePtr = std::shared_ptr<HttpExchange>;
    /// When an exchange is looked at for its time-out, in microseconds of the monotonic clock.
    using Deadline = std::pair<int64_t, HttpExchange *>;
    static constexpr int64_t noTimer = std::numeric_limits<int64_t>::max();

    HttpSession() = default;
    static void serveHungry();
    void sendWaiting();
    bool mayBegin() const;
    void begin(HttpExchange &exchange);
    void placeIsFree();
    void waitForTurn();
    void setDeadline(HttpExchange *exchange, int64_t due);
    void startDeadlineTimer();
    void checkDeadlinesLater();
    void checkFirstDeadline();
    void watchSilence();
    int64_t patience(const HttpExchange &exchange) const;
    void finished(HttpExchange *exchange, const HttpReply &reply);

    std::shared_ptr<HttpConnections> m_connections = std::make_shared<HttpConnections>();
    /// By the caller's name.
    TurnQueue<ExchangePtr> m_waiting;
    unsigned m_underWay = 0;
    /// It has requests that wait until fewer are under way elsewhere.
    bool m_isHungry = false;
    int64_t m_lastAnswer = 0;
    int64_t m_lastRequest = 0;
    /// Everything that has not ended.
    std::map<HttpExchange *, int64_t> m_exchanges;
    /// One timer for all of them: the main loop looks at every timer in every turn.
    std::set<Deadline> m_deadlines;
    Timer m_deadlineTimer;
    /// When the deadlines are looked at next; 0 while they are.
    int64_t m_timerDue = noTimer;
    Timer m_silence;
};

} // namespace bridge
