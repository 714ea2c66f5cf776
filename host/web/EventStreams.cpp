#include "web/EventStreams.h"

#include "output/JsonOutput.h"
#include "web/NodeApi.h"

#include <api/core/CMRoot.h>

#include <algorithm>

namespace {

constexpr int mostUnsent = 32;
constexpr unsigned mostStreams = 128;
constexpr std::chrono::seconds pulse(15);
const char stillHere[] = "event: pulse\ndata: {}\n\n";

QByteArray eventText(const QByteArray &name, const OrkaHash &document)
{
    return "event: " + name + "\ndata: " + document.toJsonString().toUtf8() + "\n\n";
}

} // namespace

EventStreams::EventStreams(LiveChain &chain, HttpServer &server)
    : m_chain(chain)
{
    server.route(
        "GET", "/api/servers", [this](const ExchangePointer &exchange) { open(exchange); });
    connect(&m_chain, &LiveChain::changed, this, &EventStreams::publishService);
    connect(CMRoot(), &CMRootWorker::rowsChanged, this, [this](const CMPath &path) {
        if (path == m_chain.root())
            m_soon.start();
    });
    m_soon.setSingleShot(true);
    m_soon.setInterval(20);
    connect(&m_soon, &QTimer::timeout, this, &EventStreams::readServers);
    // Finds clients that have left, keeps what lies between from closing quiet connections, and
    // tells clients that we are there.
    connect(&m_pulse, &QTimer::timeout, this, [this] { sendAll(stillHere); });
    m_pulse.start(pulse);
    publishService();
}

void EventStreams::publish(const QByteArray &name, const OrkaHash &document)
{
    const QByteArray text = eventText(name, document);
    if (std::exchange(m_last[name], text) != text)
        sendAll(text);
}

void EventStreams::open(const ExchangePointer &exchange)
{
    if (m_streams.size() >= mostStreams) {
        sendAll(stillHere); // of which clients that have left are found, for who tries again
        exchange->refuse(503, "tooMany",
            QStringLiteral("Too many pages are open at once. Close some and load this one again."));
        return;
    }
    exchange->setHeader("Cache-Control", "no-store");
    exchange->begin(200, "text/event-stream");
    QByteArray all = "retry: 1000\n\n";
    for (const QByteArray &text : qAsConst(m_last))
        all += text;
    exchange->send(all);
    exchange->setFinished([this, raw = exchange.get()] {
        m_streams.erase(std::remove_if(m_streams.begin(), m_streams.end(),
                            [raw](const ExchangePointer &stream) { return stream.get() == raw; }),
            m_streams.end());
    });
    m_streams.push_back(exchange);
}

void EventStreams::sendAll(const QByteArray &piece)
{
    const std::vector<ExchangePointer> streams = m_streams; // sending may end one
    for (const ExchangePointer &stream : streams) {
        if (stream->unsent() > mostUnsent) {
            stream->cut();
        } else {
            stream->send(piece);
        }
    }
}

void EventStreams::publishService()
{
    OrkaHash document;
    document.setValue(QStringLiteral("there"), m_chain.isThere());
    document.setValue(QStringLiteral("message"), m_chain.trouble());
    publish("service", document);
    if (m_chain.isThere()) {
        m_soon.start();
    } else {
        publish("servers", rowsDocument(m_chain.root(), Rows()));
    }
}

void EventStreams::readServers()
{
    const QStringList roles = OrkaRoles::all();
    m_chain.rows(
        m_chain.root(), 0, 999, roles, [=](const CMError &error, const OrkaRowsRoles &answer) {
            if (!error.isError())
                publish("servers", rowsDocument(m_chain.root(), rowsOf(answer, roles)));
        });
}
