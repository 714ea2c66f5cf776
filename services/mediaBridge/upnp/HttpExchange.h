#pragma once

#include "core/Backlog.h"
#include "core/Caller.h"
#include "core/Timer.h"
#include "upnp/HttpConnections.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace bridge {

enum class HttpOutcome {
    Answered,
    /// Nobody listens there, or no way leads there.
    Unreachable,
    /// The connection broke before the answer was complete.
    Broken,
    /// The answer is longer than was allowed, or what is read at once would be.
    TooLarge,
    TimedOut,
    Cancelled,
    /// The server is somewhere else; the request is to be made there.
    Moved,
};

struct HttpReply
{
    HttpOutcome outcome = HttpOutcome::Broken;
    /// HTTP status; 0 unless answered.
    unsigned status = 0;
    std::string body;
    /// As which the body was sent; empty where the answer doesn't say.
    std::string charset;
    /// What went wrong, for people; empty when answered.
    std::string problem;
    /// The request's place among those that are under way at the server. Whoever still has work
    /// with the answer holds it, so that a server can't send faster than is read.
    std::shared_ptr<void> place;
};

using HttpCallback = std::function<void(HttpReply)>;

/// A request as it is to be made. A SOAP action must only read: it is sent again on a new
/// connection where a kept one turns out to be dead.
struct HttpRequest
{
    std::string url;
    /// Empty for a GET.
    std::string soapAction;
    std::string body;
    /// The longest answer that is taken.
    size_t maxBytes = 0;
    unsigned timeoutMs = 0;
    Caller caller;
    /// Goes on with what has begun: comes before the caller's other requests, so that a thousand
    /// lists are read one after the other and don't all take memory at once.
    bool goesOn = false;
    /// When it ends at the latest, in microseconds of the monotonic clock.
    int64_t latest = 0;
};

/// One request from its sending to the end of its answer. Keeps itself alive meanwhile.
class HttpExchange : public std::enable_shared_from_this<HttpExchange>
{
public:
    /// `done` is called once, from the main loop, never from inside a call.
    HttpExchange(HttpRequest request, HttpCallback done);
    ~HttpExchange() = default;
    HttpExchange(const HttpExchange &) = delete;
    HttpExchange &operator=(const HttpExchange &) = delete;

    const HttpRequest &request() const { return m_request; }
    /// Microseconds of the monotonic clock.
    int64_t startedAt() const { return m_startedAt; }
    /// Has ended or is about to.
    bool isStopped() const { return m_stopped.has_value() || !m_done; }

    /// From here on it ends where its caller leaves.
    void watchCaller();
    /// Not where it was stopped. `place` goes into the reply.
    void send(std::shared_ptr<HttpConnections> connections, std::shared_ptr<void> place);
    /// Ends it soon with this outcome, sent or not.
    void stop(HttpOutcome outcome, std::string problem = {});

private:
    struct Ending
    {
        HttpOutcome outcome;
        std::string problem;
    };
    /// As libcurl calls them: a size other than that of what came ends the transfer.
    static size_t headCame(char *line, size_t, size_t size, void *self);
    static size_t bodyCame(char *data, size_t, size_t size, void *self);
    void begin();
    void makeTransfer();
    bool sendAgain(CURLcode code);
    void setHeaders();
    bool takeHead(std::string_view line);
    bool append(const char *data, size_t size);
    bool isWhole() const;
    bool refuse(std::string problem, HttpOutcome outcome = HttpOutcome::TooLarge);
    void ended(CURLcode code);
    void waitForSeat();
    void keepSeat();
    void makeRoom();
    Ending endingOf(CURLcode code) const;
    void finish(Ending ending);

    HttpRequest m_request;
    HttpCallback m_done;
    int64_t m_startedAt = g_get_monotonic_time();
    gulong m_callerLeft = 0;
    std::shared_ptr<HttpConnections> m_connections;
    CurlList m_headers;
    CurlTransfer m_transfer;
    /// Of the request's URL.
    std::string m_host;
    bool m_isSecondTry = false;
    unsigned m_answers = 0;
    size_t m_headBytes = 0;
    unsigned m_headLines = 0;
    /// Of the body, where its head gives it and says that it comes as it is, which ends libcurl's
    /// belief in it.
    std::optional<size_t> m_length;
    bool m_isPlain = false;
    size_t m_pieces = 0;
    Backlog::Seat m_seat;
    Timer m_seatTimer;
    /// Why it ends, where that isn't the connection's doing.
    std::optional<Ending> m_stopped;
    HttpReply m_reply;
};

} // namespace bridge
