#include "web/Fetch.h"

namespace {

constexpr int mostRedirects = 5;
const auto uriFlags = GUriFlags(SOUP_HTTP_URI_FLAGS);

struct UriUnref
{
    void operator()(GUri *uri) const { g_uri_unref(uri); }
};
using UriRef = std::unique_ptr<GUri, UriUnref>;

bool isSamePlace(GUri *a, GUri *b)
{
    return qstrcmp(g_uri_get_scheme(b), "http") == 0
        && g_ascii_strcasecmp(g_uri_get_host(a), g_uri_get_host(b)) == 0
        && g_uri_get_port(a) == g_uri_get_port(b);
}

} // namespace

GRef<SoupSession> newFetchSession(const LocalServers &local)
{
    SoupSession *session = soup_session_new_with_options(
        "max-conns", 64, "max-conns-per-host", 8, "timeout", 10, "user-agent", "orka", nullptr);
    soup_session_set_proxy_resolver(session, nullptr);
    g_object_set_data(G_OBJECT(session), "local", const_cast<LocalServers *>(&local));
    soup_session_remove_feature_by_type(session, SOUP_TYPE_CONTENT_DECODER);
    return GRef<SoupSession>(session);
}

Fetch::Fetch(SoupSession *session, const QByteArray &url,
    const QList<QPair<QByteArray, QByteArray>> &headers, Told told)
    : m_session(shareRef(session))
    , m_headers(headers)
    , m_told(std::move(told))
    , m_cancellable(g_cancellable_new())
{
    const UriRef uri(g_uri_parse(url.constData(), uriFlags, nullptr));
    send(uri.get());
}

Fetch::~Fetch()
{
    forgetMessage();
    g_object_set_data(G_OBJECT(m_cancellable.get()), "fetch", nullptr);
    g_cancellable_cancel(m_cancellable.get());
}

void Fetch::forgetMessage()
{
    if (m_message)
        g_signal_handlers_disconnect_by_data(m_message.get(), this);
}

/// Before each connection, to whatever address the name has led.
void Fetch::onEvent(SoupMessage *, GSocketClientEvent event, GIOStream *connection, gpointer fetch)
{
    if (event != G_SOCKET_CLIENT_CONNECTING)
        return;
    auto *self = static_cast<Fetch *>(fetch);
    auto *socket = G_SOCKET_CONNECTION(connection);
    const GRef<GSocketAddress> address(g_socket_connection_get_remote_address(socket, nullptr));
    const auto *local = static_cast<const LocalServers *>(
        g_object_get_data(G_OBJECT(self->m_session.get()), "local"));
    if (local->admits(address.get()))
        return;
    self->m_isRefused = true;
    g_socket_close(g_socket_connection_get_socket(socket), nullptr);
}

void Fetch::send(GUri *uri)
{
    forgetMessage();
    const bool isHttp = uri != nullptr && qstrcmp(g_uri_get_scheme(uri), "http") == 0
        && g_uri_get_host(uri) != nullptr;
    m_message.reset(isHttp ? soup_message_new_from_uri("GET", uri) : nullptr);
    if (!m_message) {
        const Told told = std::exchange(m_told, nullptr);
        told({QStringLiteral("It is no http address.")});
        return;
    }
    soup_message_set_flags(m_message.get(), SOUP_MESSAGE_NO_REDIRECT);
    g_signal_connect(m_message.get(), "network-event", G_CALLBACK(onEvent), this);
    SoupMessageHeaders *headers = soup_message_get_request_headers(m_message.get());
    for (const auto &[name, value] : qAsConst(m_headers))
        soup_message_headers_replace(headers, name.constData(), value.constData());
    g_object_set_data(G_OBJECT(m_cancellable.get()), "fetch", this);
    soup_session_send_async(m_session.get(), m_message.get(), G_PRIORITY_DEFAULT,
        m_cancellable.get(), onSent, g_object_ref(m_cancellable.get()));
}

void Fetch::onSent(GObject *session, GAsyncResult *result, gpointer data)
{
    const GRef<GCancellable> cancellable(static_cast<GCancellable *>(data));
    GError *error = nullptr;
    GRef<GInputStream> body(soup_session_send_finish(SOUP_SESSION(session), result, &error));
    const QString problem = takeMessage(error);
    auto *self = static_cast<Fetch *>(g_object_get_data(G_OBJECT(cancellable.get()), "fetch"));
    if (self == nullptr)
        return;
    self->m_body = std::move(body);
    if (self->m_body && self->follow())
        return;
    const Told told = std::exchange(self->m_told, nullptr);
    Answer answer;
    if (!self->m_body) {
        answer.problem = self->m_isRefused
            ? QStringLiteral("Its address leads to this machine, where no such media server is.")
            : problem;
    } else {
        answer.status = int(soup_message_get_status(self->m_message.get()));
        answer.headers = soup_message_get_response_headers(self->m_message.get());
        answer.body = self->m_body.get();
    }
    told(answer); // may let go of us
}

/// True where the answer leads elsewhere, and somebody hears of that later.
bool Fetch::follow()
{
    if (!SOUP_STATUS_IS_REDIRECTION(soup_message_get_status(m_message.get())))
        return false;
    const char *location = soup_message_headers_get_one(
        soup_message_get_response_headers(m_message.get()), "Location");
    if (location == nullptr)
        return false;
    GUri *here = soup_message_get_uri(m_message.get());
    const UriRef next(g_uri_parse_relative(here, location, uriFlags, nullptr));
    if (!next || !isSamePlace(here, next.get()) || ++m_redirects > mostRedirects)
        return false;
    m_body.reset();
    send(next.get());
    return true;
}
