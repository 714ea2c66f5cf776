#include "upnp/HttpExchange.h"

#include "core/Later.h"
#include "core/Limits.h"
#include "core/SpareMemory.h"
#include "upnp/HttpUrl.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <vector>

namespace bridge {

namespace {

/// Exchanges whose answer is being read.
std::vector<HttpExchange *> &readers()
{
    static std::vector<HttpExchange *> list;
    return list;
}

/// For callbacks of GIO: keeps the exchange until the callback takes it.
gpointer keep(const std::shared_ptr<HttpExchange> &exchange)
{
    return new std::shared_ptr<HttpExchange>(exchange);
}

std::shared_ptr<HttpExchange> take(gpointer kept)
{
    const std::unique_ptr<std::shared_ptr<HttpExchange>> owned(
        static_cast<std::shared_ptr<HttpExchange> *>(kept));
    return *owned;
}

std::string charsetOf(SoupMessageHeaders *headers)
{
    GHashTable *parameters = nullptr;
    soup_message_headers_get_content_type(headers, &parameters);
    if (!parameters)
        return {};
    const void *charset = g_hash_table_lookup(parameters, "charset");
    std::string text(charset ? static_cast<const char *>(charset) : "");
    g_hash_table_unref(parameters);
    return text;
}

} // namespace

HttpExchange::HttpExchange(HttpRequest request, HttpCallback done)
    : m_request(std::move(request))
    , m_done(std::move(done))
{
}

void HttpExchange::watchCaller()
{
    if (GCancellable *cancellable = m_request.caller.cancellable.get()) {
        m_callerLeft = g_cancellable_connect(cancellable,
            G_CALLBACK(
                +[](GCancellable *, HttpExchange *self) { self->stop(HttpOutcome::Cancelled); }),
            this, nullptr);
    }
}

void HttpExchange::send(SoupSession *session, std::shared_ptr<void> place)
{
    m_reply.place = std::move(place);
    m_session = Ref<SoupSession>::share(session);
    sendMessage(SoupMessageFlags(0));
}

void HttpExchange::sendMessage(SoupMessageFlags more)
{
    m_message = newMessage(more);
    m_try = Ref<GCancellable>(g_cancellable_new());
    soup_session_send_async(m_session.get(), m_message.get(), G_PRIORITY_DEFAULT, m_try.get(),
        &HttpExchange::answered, keep(shared_from_this()));
}

Ref<SoupMessage> HttpExchange::newMessage(SoupMessageFlags more)
{
    const bool isGet = m_request.soapAction.empty();
    Ref<SoupMessage> message(soup_message_new(isGet ? "GET" : "POST", m_request.url.c_str()));
    // libsoup uses a kept connection for a POST only where it is said to be idempotent.
    soup_message_add_flags(message.get(),
        static_cast<SoupMessageFlags>(SOUP_MESSAGE_NO_REDIRECT | SOUP_MESSAGE_IDEMPOTENT | more));
    g_signal_connect(message.get(), "got-informational", G_CALLBACK(gotInterimAnswer), this);
    if (isGet)
        return message;
    soup_message_headers_replace(soup_message_get_request_headers(message.get()), "SOAPAction",
        m_request.soapAction.c_str());
    GBytes *body = g_bytes_new(m_request.body.data(), m_request.body.size());
    soup_message_set_request_body_from_bytes(message.get(), "text/xml; charset=\"utf-8\"", body);
    g_bytes_unref(body);
    return message;
}

/// libsoup reads on as long as such answers come, and nobody else gets a turn; a cancelled request
/// makes it stop.
void HttpExchange::gotInterimAnswer(SoupMessage *, HttpExchange *self)
{
    if (++self->m_interimAnswers > limits::interimAnswers)
        self->stop(HttpOutcome::TooLarge, "it begins over and over");
}

/// Some servers close a connection that they have just promised to keep; a request that comes in
/// between is lost. libsoup may still hold the first message, so the second try has its own.
bool HttpExchange::sendAgain(const GError *error)
{
    if (m_isSecondTry || m_putBack || isStopped() || outcomeOf(error) != HttpOutcome::Broken)
        return false;
    m_isSecondTry = true;
    g_signal_handlers_disconnect_by_data(m_message.get(), this);
    sendMessage(SOUP_MESSAGE_NEW_CONNECTION);
    return true;
}

void HttpExchange::putBack(std::function<void()> done)
{
    if (!m_session || m_stream || isStopped())
        return;
    m_putBack = std::move(done);
    g_cancellable_cancel(m_try.get());
}

bool HttpExchange::isTakenBack()
{
    if (!m_putBack || isStopped())
        return false;
    g_signal_handlers_disconnect_by_data(m_message.get(), this);
    m_message = {};
    m_session = {};
    std::exchange(m_putBack, nullptr)();
    m_reply.place.reset();
    return true;
}

void HttpExchange::answered(GObject *, GAsyncResult *result, gpointer kept)
{
    const auto self = take(kept);
    GError *error = nullptr;
    self->m_stream =
        Ref<GInputStream>(soup_session_send_finish(self->m_session.get(), result, &error));
    if (error && (self->sendAgain(error) || self->isTakenBack())) {
        g_error_free(error);
        return;
    }
    self->m_putBack = nullptr;
    if (error) {
        // Hundreds of connections may break at one time.
        later([self, error] { self->fail(error); });
        return;
    }
    if (!self->m_done)
        return;
    self->m_host = hostOf(self->m_request.url);
    // Growing, a long one would be copied over and over.
    const auto length = static_cast<size_t>(soup_message_headers_get_content_length(
        soup_message_get_response_headers(self->m_message.get())));
    self->m_reply.body.reserve(std::min(length, self->m_request.maxBytes));
    readers().push_back(self.get());
    self->readOn();
}

/// What is there is taken at once: each turn of the main loop costs more than a read.
void HttpExchange::readOn()
{
    if (!m_done)
        return;
    static std::array<char, size_t{64} << 10> bytes;
    const auto stream = G_POLLABLE_INPUT_STREAM(m_stream.get());
    const int64_t end = g_get_monotonic_time() + limits::turnUs;
    do {
        if (m_reply.body.size() > limits::documentAtOnce && !m_seat && !isStopped()) {
            waitForSeat();
            return;
        }
        GError *error = nullptr;
        const gssize size = g_pollable_input_stream_read_nonblocking(
            stream, bytes.data(), bytes.size(), m_cancellable.get(), &error);
        if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK)) {
            g_error_free(error);
            waitForMore();
            return;
        }
        if (error) {
            later([self = shared_from_this(), error] { self->fail(error); });
            return;
        }
        if (!append(bytes.data(), static_cast<size_t>(size)))
            return;
    } while (g_get_monotonic_time() < end);
    // Not waited for: where all has come but the news of the end, nothing else does.
    later([self = shared_from_this()] { self->readOn(); }, m_host);
}

void HttpExchange::waitForMore()
{
    GSource *source = g_pollable_input_stream_create_source(
        G_POLLABLE_INPUT_STREAM(m_stream.get()), m_cancellable.get());
    const auto readable = +[](GObject *, gpointer kept) -> gboolean {
        take(kept)->readOn();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(source, G_SOURCE_FUNC(readable), keep(shared_from_this()), nullptr);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

/// Long answers of many servers may come faster than they are read.
void HttpExchange::waitForSeat()
{
    m_isPaused = true;
    Backlog::instance().receive(m_host, [self = shared_from_this()](Backlog::Seat seat) {
        if (self->isStopped())
            return;
        self->m_isPaused = false;
        self->m_seat = std::move(seat);
        self->keepSeat();
        self->readOn();
    });
}

void HttpExchange::keepSeat()
{
    m_seatTimer.start(limits::seatMs, [this, size = m_reply.body.size()] {
        if (m_reply.body.size() < size + limits::seatBytes)
            m_seat.reset();
        else
            keepSeat();
    });
}

/// Nothing is the end. Whether there may be more.
bool HttpExchange::append(const char *data, size_t size)
{
    m_reply.body.append(data, size);
    if (m_reply.body.size() > m_request.maxBytes) {
        finish(HttpOutcome::TooLarge,
            "it is longer than " + std::to_string(m_request.maxBytes >> 10) + " KiB");
    } else if (++m_pieces > limits::pieces(m_reply.body.size())) {
        finish(HttpOutcome::TooLarge, "it comes in too many small pieces");
    } else if (size == 0) {
        m_reply.status = soup_message_get_status(m_message.get());
        m_reply.charset = charsetOf(soup_message_get_response_headers(m_message.get()));
        finish(HttpOutcome::Answered, {});
    } else {
        makeRoom();
        return true;
    }
    return false;
}

/// Where all answers together take too much, one has to end: the longest of the machine whose
/// answers take most. Many short ones of its servers are no less than another's long one.
void HttpExchange::makeRoom()
{
    const auto size = [](const HttpExchange *reader) {
        return reader->m_reply.body.size();
    };
    size_t sum = 0;
    for (const HttpExchange *reader : readers())
        sum += size(reader);
    if (sum <= limits::bodiesBytes)
        return;
    std::map<std::string_view, size_t> ofHost;
    for (const HttpExchange *reader : readers())
        ofHost[reader->m_host] += size(reader);
    const auto isLess = [&](const HttpExchange *a, const HttpExchange *b) {
        return std::pair(ofHost[a->m_host], size(a)) < std::pair(ofHost[b->m_host], size(b));
    };
    HttpExchange *most = *std::max_element(readers().begin(), readers().end(), isLess);
    most->stop(HttpOutcome::TooLarge, "too many long answers come at once");
    // It ends later, and as much may come until then.
    most->m_reply.body = {};
}

void HttpExchange::stop(HttpOutcome outcome, std::string problem)
{
    if (isStopped())
        return;
    m_stopOutcome = outcome;
    m_stopProblem = std::move(problem);
    g_cancellable_cancel(m_cancellable.get());
    g_cancellable_cancel(m_try.get());
    if (m_session && !m_isPaused) {
        // Should libsoup not call back, it ends all the same.
        constexpr unsigned enoughMs = 1'000;
        m_end.start(enoughMs, [this] { finish(m_stopOutcome, std::move(m_stopProblem)); });
        return;
    }
    // Nothing is under way that could end it.
    later([self = shared_from_this()] {
        self->finish(self->m_stopOutcome, std::move(self->m_stopProblem));
    });
}

void HttpExchange::fail(GError *error)
{
    const HttpOutcome outcome = isStopped() ? m_stopOutcome : outcomeOf(error);
    std::string problem = takeMessage(error);
    finish(outcome, isStopped() ? std::move(m_stopProblem) : std::move(problem));
}

HttpOutcome HttpExchange::outcomeOf(const GError *error) const
{
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED))
        return m_stopOutcome;
    for (const int code : {G_IO_ERROR_CONNECTION_REFUSED, G_IO_ERROR_HOST_UNREACHABLE,
             G_IO_ERROR_NETWORK_UNREACHABLE, G_IO_ERROR_HOST_NOT_FOUND}) {
        if (g_error_matches(error, G_IO_ERROR, code))
            return HttpOutcome::Unreachable;
    }
    return error->domain == G_RESOLVER_ERROR ? HttpOutcome::Unreachable : HttpOutcome::Broken;
}

void HttpExchange::finish(HttpOutcome outcome, std::string problem)
{
    const auto self = shared_from_this();
    if (!m_done)
        return;
    m_end.stop();
    if (m_callerLeft != 0)
        g_cancellable_disconnect(m_request.caller.cancellable.get(), m_callerLeft);
    // Ends what libsoup still does for it.
    g_cancellable_cancel(m_cancellable.get());
    g_cancellable_cancel(m_try.get());
    readers().erase(std::remove(readers().begin(), readers().end(), this), readers().end());
    if (m_message)
        g_signal_handlers_disconnect_by_data(m_message.get(), this);
    m_stream = {};
    m_message = {};
    giveBackSpareMemorySoon();
    m_reply.outcome = outcome;
    if (outcome != HttpOutcome::Answered)
        m_reply.body = {};
    const size_t size = m_reply.body.size();
    if (size > limits::documentAtOnce)
        m_reply.place = Backlog::instance().hold(size, std::move(m_reply.place));
    m_seatTimer.stop();
    m_seat.reset();
    m_reply.problem = std::move(problem);
    const HttpCallback done = std::exchange(m_done, nullptr);
    done(std::move(m_reply));
}

} // namespace bridge
