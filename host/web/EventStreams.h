#pragma once

#include "web/HttpServer.h"
#include "web/LiveChain.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <vector>

/// /api/servers: server-sent events. Each carries the whole state of its name, so that a client
/// that missed some knows all after the next: "servers" (the rows document of the root), "service"
/// ({"there","message"}) and what others publish. A new client gets the last of each name at once.
class EventStreams : public QObject
{
    Q_OBJECT

public:
    EventStreams(LiveChain &chain, HttpServer &server);

    /// One document for every client, under this name.
    void publish(const QByteArray &name, const OrkaHash &document);

private:
    void open(const ExchangePointer &exchange);
    void sendAll(const QByteArray &piece);
    void publishService();
    void readServers();

    LiveChain &m_chain;
    QMap<QByteArray, QByteArray> m_last;
    std::vector<ExchangePointer> m_streams;
    QTimer m_pulse;
    QTimer m_soon;
};
