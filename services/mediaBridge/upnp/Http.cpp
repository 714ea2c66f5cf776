#include "upnp/Http.h"

#include <algorithm>
#include <memory>

namespace bridge {

namespace {

constexpr size_t maxBodySize = size_t{64} << 20;
constexpr size_t firstChunkSize = size_t{16} << 10;
constexpr size_t largestChunkSize = size_t{256} << 10;

constexpr const char *lastAnswerKey = "orka-last-answer";

/// When the session's server last answered, in microseconds of the monotonic clock; 0 for never.
int64_t &lastAnswer(SoupSession *session)
{
    return *static_cast<int64_t *>(g_object_get_data(G_OBJECT(session), lastAnswerKey));
}

/// One request on its way. Owned by itself until it has called back.
class HttpRequest
{
public:
    /// `body` is empty for a GET.
    static void start(SoupSession *session, SoupMessage *message, const std::string &body,
        unsigned timeoutMs, GCancellable *cancellable, HttpCallback done)
    {
        auto *request = new HttpRequest(session, message, body, std::move(done));
        request->m_limitMs = timeoutMs;
        request->m_timeout = g_timeout_add(timeoutMs, &HttpRequest::timeOut, request);
        if (cancellable) {
            request->m_outer = Ref<GCancellable>::share(cancellable);
            request->m_outerHandler = g_cancellable_connect(cancellable,
                G_CALLBACK(
                    +[](GCancellable *, GCancellable *inner) { g_cancellable_cancel(inner); }),
                request->m_cancellable.get(), nullptr);
        }
        request->send();
    }

private:
    HttpRequest(
        SoupSession *session, SoupMessage *message, const std::string &body, HttpCallback done)
        : m_session(Ref<SoupSession>::share(session))
        , m_message(Ref<SoupMessage>::share(message))
        , m_body(body)
        , m_done(std::move(done))
    {
    }

    void send()
    {
        if (!m_body.empty()) {
            GBytes *body = g_bytes_new(m_body.data(), m_body.size());
            soup_message_set_request_body_from_bytes(
                m_message.get(), "text/xml; charset=\"utf-8\"", body);
            g_bytes_unref(body);
        }
        soup_session_send_async(m_session.get(), m_message.get(), G_PRIORITY_DEFAULT,
            m_cancellable.get(), &HttpRequest::answered, this);
    }

    /// Some servers close a connection that they have just promised to keep; a request that comes
    /// in between is lost.
    bool sendAgain(const GError *error)
    {
        const bool hasAgain =
            (soup_message_get_flags(m_message.get()) & SOUP_MESSAGE_NEW_CONNECTION) != 0;
        if (hasAgain || outcomeOf(error) != HttpOutcome::Broken)
            return false;
        soup_message_add_flags(m_message.get(), SOUP_MESSAGE_NEW_CONNECTION);
        send();
        return true;
    }

    static gboolean timeOut(gpointer self)
    {
        auto *request = static_cast<HttpRequest *>(self);
        request->m_timeout = 0;
        const int64_t restMs = request->patienceMs();
        if (restMs > 0) {
            request->m_timeout =
                g_timeout_add(static_cast<guint>(restMs), &HttpRequest::timeOut, request);
            return G_SOURCE_REMOVE;
        }
        request->m_hasTimedOut = true;
        g_cancellable_cancel(request->m_cancellable.get());
        return G_SOURCE_REMOVE;
    }

    /// A server that answers others is busy, not hanging: what waits its turn gets more time.
    int64_t patienceMs() const
    {
        const int64_t now = g_get_monotonic_time();
        const int64_t silentMs = (now - std::max(m_started, lastAnswer(m_session.get()))) / 1000;
        const int64_t totalMs = (now - m_started) / 1000;
        return std::min(m_limitMs - silentMs, m_limitMs * 5 / 3 - totalMs);
    }

    static void answered(GObject *, GAsyncResult *result, gpointer self)
    {
        auto *request = static_cast<HttpRequest *>(self);
        GError *error = nullptr;
        request->m_stream =
            Ref<GInputStream>(soup_session_send_finish(request->m_session.get(), result, &error));
        if (error && request->sendAgain(error)) {
            g_error_free(error);
            return;
        }
        if (error) {
            request->fail(error);
            return;
        }
        request->readOn();
    }

    void readOn()
    {
        // Most answers are small, and many may be under way; the few big ones grow their own way.
        const size_t chunkSize = std::clamp(m_reply.body.size(), firstChunkSize, largestChunkSize);
        g_input_stream_read_bytes_async(m_stream.get(), chunkSize, G_PRIORITY_DEFAULT,
            m_cancellable.get(), &HttpRequest::gotBytes, this);
    }

    static void gotBytes(GObject *, GAsyncResult *result, gpointer self)
    {
        auto *request = static_cast<HttpRequest *>(self);
        GError *error = nullptr;
        GBytes *bytes = g_input_stream_read_bytes_finish(request->m_stream.get(), result, &error);
        if (error) {
            request->fail(error);
            return;
        }
        gsize size = 0;
        const auto *data = static_cast<const char *>(g_bytes_get_data(bytes, &size));
        if (size > 0)
            request->m_reply.body.append(data, size);
        g_bytes_unref(bytes);
        if (size == 0)
            request->succeed();
        else if (request->m_reply.body.size() > maxBodySize)
            request->finish(HttpOutcome::Broken, "The answer is larger than 64 MiB.");
        else
            request->readOn();
    }

    void succeed()
    {
        lastAnswer(m_session.get()) = g_get_monotonic_time();
        m_reply.status = soup_message_get_status(m_message.get());
        finish(HttpOutcome::Answered, {});
    }

    void fail(GError *error)
    {
        const HttpOutcome outcome = outcomeOf(error);
        finish(outcome, takeMessage(error));
    }

    HttpOutcome outcomeOf(const GError *error) const
    {
        if (m_hasTimedOut)
            return HttpOutcome::TimedOut;
        if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED))
            return HttpOutcome::Cancelled;
        for (const int code : {G_IO_ERROR_CONNECTION_REFUSED, G_IO_ERROR_HOST_UNREACHABLE,
                 G_IO_ERROR_NETWORK_UNREACHABLE, G_IO_ERROR_HOST_NOT_FOUND}) {
            if (g_error_matches(error, G_IO_ERROR, code))
                return HttpOutcome::Unreachable;
        }
        if (error->domain == G_RESOLVER_ERROR)
            return HttpOutcome::Unreachable;
        return HttpOutcome::Broken;
    }

    void finish(HttpOutcome outcome, std::string problem)
    {
        const std::unique_ptr<HttpRequest> self(this);
        if (m_timeout != 0)
            g_source_remove(m_timeout);
        if (m_outer)
            g_cancellable_disconnect(m_outer.get(), m_outerHandler);
        m_reply.outcome = outcome;
        m_reply.problem = std::move(problem);
        m_done(std::move(m_reply));
    }

    Ref<SoupSession> m_session;
    Ref<SoupMessage> m_message;
    std::string m_body;
    HttpCallback m_done;
    Ref<GCancellable> m_cancellable{g_cancellable_new()};
    Ref<GCancellable> m_outer;
    gulong m_outerHandler = 0;
    int64_t m_started = g_get_monotonic_time();
    int64_t m_limitMs = 0;
    guint m_timeout = 0;
    bool m_hasTimedOut = false;
    Ref<GInputStream> m_stream;
    HttpReply m_reply;
};

void failLater(const std::string &url, HttpCallback done)
{
    struct Failed
    {
        HttpReply reply;
        HttpCallback done;
    };
    auto *failed = new Failed{
        {HttpOutcome::Unreachable, 0, {}, "\"" + url + "\" is not a URL."}, std::move(done)};
    g_idle_add(
        [](gpointer data) -> gboolean {
            const std::unique_ptr<Failed> owned(static_cast<Failed *>(data));
            owned->done(std::move(owned->reply));
            return G_SOURCE_REMOVE;
        },
        failed);
}

Ref<SoupMessage> newMessage(const char *method, const std::string &url)
{
    Ref<SoupMessage> message(soup_message_new(method, url.c_str()));
    // Nobody is asked because another machine says so.
    if (message)
        soup_message_add_flags(message.get(), SOUP_MESSAGE_NO_REDIRECT);
    return message;
}

} // namespace

Ref<SoupSession> newHttpSession()
{
    // Six connections let calls overlap and stay far below what small servers accept.
    SoupSession *session = soup_session_new_with_options("max-conns", 6, "max-conns-per-host", 6,
        "timeout", 0, "user-agent", "orka-media-bridge UPnP/1.0 DLNADOC/1.50", nullptr);
    // A proxy of the environment is for the internet, not for the machines at home.
    soup_session_set_proxy_resolver(session, nullptr);
    g_object_set_data_full(G_OBJECT(session), lastAnswerKey, new int64_t(0),
        [](gpointer time) { delete static_cast<int64_t *>(time); });
    return Ref<SoupSession>(session);
}

void httpGet(SoupSession *session, const std::string &url, unsigned timeoutMs,
    GCancellable *cancellable, HttpCallback done)
{
    const Ref<SoupMessage> message = newMessage("GET", url);
    if (!message) {
        failLater(url, std::move(done));
        return;
    }
    HttpRequest::start(session, message.get(), {}, timeoutMs, cancellable, std::move(done));
}

void httpPostSoap(SoupSession *session, const std::string &url, const std::string &soapAction,
    const std::string &envelope, unsigned timeoutMs, GCancellable *cancellable, HttpCallback done)
{
    const Ref<SoupMessage> message = newMessage("POST", url);
    if (!message) {
        failLater(url, std::move(done));
        return;
    }
    soup_message_headers_replace(
        soup_message_get_request_headers(message.get()), "SOAPAction", soapAction.c_str());
    HttpRequest::start(session, message.get(), envelope, timeoutMs, cancellable, std::move(done));
}

} // namespace bridge
