#pragma once

#include "web/Connections.h"
#include "web/Exchange.h"
#include "web/RequestGuard.h"

#include <functional>
#include <vector>

/// An HTTP server in the program's event loop. Whatever comes in is bounded: connections, their
/// patience, addresses, bodies. What the guard lets through goes to the first route that fits.
class HttpServer
{
public:
    using Handler = std::function<void(const ExchangePointer &)>;

    explicit HttpServer(RequestGuard &guard);
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    /// Where a path that ends in "/" means all that begins with it. GET stands for HEAD, too.
    void route(const char *method, const char *path, Handler handler);
    /// Listens at this address, on the first free of some ports from `port` on. Throws Failure.
    quint16 listen(const QString &address, quint16 port, bool orNext);
    /// Speaks TLS with this certificate wherever it listens from now on.
    void setCertificate(GTlsCertificate *certificate);

private:
    struct Route
    {
        QByteArray method;
        QByteArray path;
        Handler handler;
    };

    static void onEarly(
        SoupServer *, SoupServerMessage *message, const char *path, GHashTable *, gpointer server);
    static void onRequest(
        SoupServer *, SoupServerMessage *message, const char *path, GHashTable *, gpointer server);
    bool admits(Exchange &exchange);
    void dispatch(const ExchangePointer &exchange);

    RequestGuard &m_guard;
    GRef<SoupServer> m_server;
    Connections m_connections;
    std::vector<Route> m_routes;
    /// Bytes of the bodies that are on their way or are being answered.
    std::shared_ptr<goffset> m_bodies = std::make_shared<goffset>(0);
};
