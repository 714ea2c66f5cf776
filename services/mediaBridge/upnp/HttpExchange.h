#pragma once

#include "core/Backlog.h"
#include "core/Caller.h"
#include "core/Timer.h"

#include <functional>
#include <libsoup/soup.h>
#include <memory>
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
    bool isStopped() const { return g_cancellable_is_cancelled(m_cancellable.get()) != FALSE; }

    /// From here on it ends where its caller leaves.
    void watchCaller();
    /// Unless it was stopped; once, and once more each time it was put back. `place` goes into the
    /// reply.
    void send(SoupSession *session, std::shared_ptr<void> place);
    /// Takes it back where nothing has come yet, soon: calls `done` then, and lets its place go.
    void putBack(std::function<void()> done);
    /// Ends it soon with this outcome, sent or not.
    void stop(HttpOutcome outcome, std::string problem = {});

private:
    void sendMessage(SoupMessageFlags more);
    Ref<SoupMessage> newMessage(SoupMessageFlags more);
    bool sendAgain(const GError *error);
    bool isTakenBack();
    static void gotInterimAnswer(SoupMessage *, HttpExchange *self);
    static void answered(GObject *, GAsyncResult *result, gpointer self);
    void readOn();
    void waitForMore();
    void waitForSeat();
    void keepSeat();
    bool append(const char *data, size_t size);
    void makeRoom();
    void fail(GError *error);
    HttpOutcome outcomeOf(const GError *error) const;
    void finish(HttpOutcome outcome, std::string problem);

    HttpRequest m_request;
    HttpCallback m_done;
    int64_t m_startedAt = g_get_monotonic_time();
    Ref<GCancellable> m_cancellable{g_cancellable_new()};
    gulong m_callerLeft = 0;
    /// Of what libsoup does now.
    Ref<GCancellable> m_try;
    std::function<void()> m_putBack;
    Ref<SoupSession> m_session;
    Ref<SoupMessage> m_message;
    Ref<GInputStream> m_stream;
    /// Of the request's URL.
    std::string m_host;
    bool m_isSecondTry = false;
    unsigned m_interimAnswers = 0;
    size_t m_pieces = 0;
    /// Nothing is under way: it goes on when others' answers have been read.
    bool m_isPaused = false;
    Backlog::Seat m_seat;
    Timer m_seatTimer;
    /// Runs from its stopping.
    Timer m_end;
    /// What `stop` was called with.
    HttpOutcome m_stopOutcome = HttpOutcome::Cancelled;
    std::string m_stopProblem;
    HttpReply m_reply;
};

} // namespace bridge
