#include "web/HttpServer.h"

#include "Failure.h"
#include "Text.h"

namespace {

constexpr goffset mostBody = 8 << 20;
constexpr int mostAddress = 8192;

/// Why a request is refused before its body is read; 0 where it isn't.
int refusalOfSize(SoupServerMessage *message)
{
    SoupMessageHeaders *headers = soup_server_message_get_request_headers(message);
    const SoupEncoding encoding = soup_message_headers_get_encoding(headers);
    if (encoding == SOUP_ENCODING_CHUNKED)
        return 411;
    if (encoding == SOUP_ENCODING_CONTENT_LENGTH
        && soup_message_headers_get_content_length(headers) > mostBody) {
        return 413;
    }
    return 0;
}

} // namespace

HttpServer::HttpServer(RequestGuard &guard)
    : m_guard(guard)
    , m_server(SOUP_SERVER(g_object_new(SOUP_TYPE_SERVER, "server-header", "orka", nullptr)))
    , m_connections(m_server.get())
{
    soup_server_add_early_handler(m_server.get(), nullptr, onEarly, this, nullptr);
    soup_server_add_handler(m_server.get(), nullptr, onRequest, this, nullptr);
}

HttpServer::~HttpServer()
{
    soup_server_remove_handler(m_server.get(), nullptr);
    soup_server_disconnect(m_server.get());
}

void HttpServer::route(const char *method, const char *path, Handler handler)
{
    m_routes.push_back({method, path, std::move(handler)});
}

quint16 HttpServer::listen(const QString &address, quint16 port, bool orNext)
{
    constexpr int tries = 20;
    QString why;
    for (int i = 0; i < (orNext ? tries : 1) && port + i <= 65535; ++i) {
        bool isTaken = false;
        why = m_connections.listen(address, quint16(port + i), isTaken);
        if (why.isEmpty())
            return quint16(port + i);
        if (!isTaken)
            break;
    }
    throw missing(QStringLiteral("noPort"),
        Text::tr("The page can't be served at %1, port %2: %3. Name another with --listen "
                 "ADDRESS and --port N.")
            .arg(address, QString::number(port), why));
}

void HttpServer::setCertificate(GTlsCertificate *certificate)
{
    soup_server_set_tls_certificate(m_server.get(), certificate);
}

void HttpServer::onEarly(
    SoupServer *, SoupServerMessage *message, const char *, GHashTable *, gpointer)
{
    const int status = refusalOfSize(message);
    if (status == 0)
        return;
    soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
    soup_message_headers_replace(
        soup_server_message_get_response_headers(message), "Connection", "close");
    soup_server_message_set_status(message, guint(status), nullptr);
}

void HttpServer::onRequest(
    SoupServer *, SoupServerMessage *message, const char *, GHashTable *, gpointer server)
{
    static_cast<HttpServer *>(server)->dispatch(std::make_shared<Exchange>(message));
}

void HttpServer::dispatch(const ExchangePointer &exchange)
{
    const QByteArray path = exchange->rawPath();
    const char *query = g_uri_get_query(soup_server_message_get_uri(exchange->message()));
    if (path.size() + (query != nullptr ? qstrlen(query) : 0) > mostAddress) {
        exchange->refuse(414, "tooLong",
            QStringLiteral("This address is longer than %1 characters. Ask for less at once.")
                .arg(mostAddress));
        return;
    }
    if (!m_guard.admits(*exchange))
        return;
    const QByteArray method = exchange->method() == "HEAD" ? "GET" : exchange->method();
    bool isKnown = false;
    for (const Route &route : m_routes) {
        if (!(route.path.size() > 1 && route.path.endsWith('/') ? path.startsWith(route.path)
                                                                : path == route.path))
            continue;
        isKnown = true;
        if (route.method == method) {
            try {
                route.handler(exchange);
            } catch (const Failure &failure) {
                exchange->refuse(failure);
            }
            return;
        }
    }
    if (isKnown) {
        exchange->refuse(405, "wrongMethod",
            QStringLiteral("This address takes another method than %1.")
                .arg(QString::fromLatin1(exchange->method())));
    } else {
        exchange->refuse(404, "notFound", QStringLiteral("There is nothing at this address."));
    }
}
