#pragma once

#include "web/CarriedAddresses.h"
#include "web/HttpServer.h"
#include "web/LiveChain.h"

/// /api/queue: every track below a node (GET), and tracks as a playlist file (POST).
class QueueApi
{
public:
    QueueApi(LiveChain &chain, CarriedAddresses &carried, HttpServer &server);

private:
    void gather(const ExchangePointer &exchange);
    static void write(const ExchangePointer &exchange);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
};

/// The items of a body {"items":[…]}. Throws Failure (wrong usage).
QVariantList itemsOfBody(const Exchange &exchange);
