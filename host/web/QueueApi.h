#pragma once

#include "web/CarriedAddresses.h"
#include "web/HttpServer.h"
#include "web/LiveChain.h"

#include <deque>

/// /api/queue: every track below a node (GET), and tracks as a playlist file (POST). Few are
/// gathered for at once, and some wait; one more is to come again.
class QueueApi
{
public:
    QueueApi(LiveChain &chain, CarriedAddresses &carried, HttpServer &server);

private:
    void gather(const ExchangePointer &exchange);
    void walkNext();
    void walk(const ExchangePointer &exchange, const CMPath &path);
    static void write(const ExchangePointer &exchange);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
    std::deque<std::pair<ExchangePointer, CMPath>> m_waiting;
    int m_walks = 0;
};

/// The items of {"items":[…]}. Throws Failure (wrong usage).
QVariantList itemsOf(const OrkaHash &body);
