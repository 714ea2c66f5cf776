#pragma once

#include "web/CarriedAddresses.h"
#include "web/HttpServer.h"
#include "web/LiveChain.h"

/// /api/rows, /api/data and /api/set: one request of the SDK each, answered with the document that
/// --json prints. Addresses that rows carry are noted in `carried`.
class NodeApi
{
public:
    NodeApi(LiveChain &chain, CarriedAddresses &carried, HttpServer &server);

private:
    void rows(const ExchangePointer &exchange);
    void data(const ExchangePointer &exchange);
    void set(const ExchangePointer &exchange);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
};
