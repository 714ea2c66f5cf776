#include "web/HttpServer.h"

#include "Failure.h"
#include "Text.h"

namespace {

constexpr goffset mostBodies = 32 << 20; // of all requests at once
constexpr int mostAddress = 8192;

/// What a request needs, in bytes.
goffset mostBody(const QByteArray &path)
{
    if (path == "/api/queue" || path == "/api/player")
        return 8 << 20;
    return path == "/api/set" ? 1 << 20 : 4096;
}

struct BodyShare
{
    std::shared_ptr<goffset> all;
    goffset size;
    ~BodyShare() { *all -= size; }
};

void freeShare(gpointer share)
{
    delete static_cast<BodyShare *>(share);
}

goffset bodySize(SoupServerMessage *message)
{
    SoupMessageHeaders *headers = soup_server_message_get_request_headers(message);
    return soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CONTENT_LENGTH
        ? soup_message_headers_get_content_length(headers)
        : 0;
}

bool isChunked(SoupServerMessage *message)
{
    return soup_message_headers_get_encoding(soup_server_message_get_request_headers(message))
        == SOUP_ENCODING_CHUNKED;
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

/// Of who is refused no body is kept.
void HttpServer::onEarly(
    SoupServer *, SoupServerMessage *message, const char *, GHashTable *, gpointer server)
{
    auto *self = static_cast<HttpServer *>(server);
    Exchange exchange(message, false);
    const goffset size = bodySize(message);
    if (self->admits(exchange)) {
        *self->m_bodies += size;
        g_object_set_data_full(
            G_OBJECT(message), "body", new BodyShare{self->m_bodies, size}, freeShare);
        return;
    }
    soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
    if (size > 0 || isChunked(message))
        exchange.setHeader("Connection", "close");
}

bool HttpServer::admits(Exchange &exchange)
{
    const char *query = g_uri_get_query(soup_server_message_get_uri(exchange.message()));
    const goffset size = bodySize(exchange.message());
    const goffset most = mostBody(exchange.rawPath());
    if (exchange.rawPath().size() + (query != nullptr ? qstrlen(query) : 0) > mostAddress) {
        exchange.refuse(414, "tooLong",
            QStringLiteral("This address is longer than %1 characters. Ask for less at once.")
                .arg(mostAddress));
    } else if (isChunked(exchange.message())) {
        exchange.refuse(411, "noLength",
            QStringLiteral("Say how long the body is, with the header \"Content-Length\"."));
    } else if (size > most) {
        exchange.refuse(413, "tooLong",
            QStringLiteral("This body is longer than %1 bytes. Send less at once.").arg(most));
    } else if (m_guard.admits(exchange) && *m_bodies + size > mostBodies) {
        exchange.setHeader("Retry-After", "1");
        exchange.refuse(503, "tooMany",
            QStringLiteral("Too many long requests come at once. Try again in a moment."));
    }
    return exchange.isOpen();
}

void HttpServer::onRequest(
    SoupServer *, SoupServerMessage *message, const char *, GHashTable *, gpointer server)
{
    static_cast<HttpServer *>(server)->dispatch(std::make_shared<Exchange>(message));
}

void HttpServer::dispatch(const ExchangePointer &exchange)
{
    const bool wasAdmitted = g_object_get_data(G_OBJECT(exchange->message()), "body") != nullptr;
    if (!wasAdmitted && !admits(*exchange))
        return;
    const QByteArray path = exchange->rawPath();
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
