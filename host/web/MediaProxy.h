#pragma once

#include "web/CarriedAddresses.h"
#include "web/HttpServer.h"
#include "web/LocalServers.h"

/// /media/BASE64: sound that rows of this run have named, passed on as it comes, with ranges, so
/// that a browser can play and seek it.
class MediaProxy
{
public:
    MediaProxy(const CarriedAddresses &carried, const LocalServers &local, HttpServer &server);

private:
    void answer(const ExchangePointer &exchange);

    const CarriedAddresses &m_carried;
    GRef<SoupSession> m_session;
};
