#include "web/QueueApi.h"

#include "Failure.h"
#include "output/JsonOutput.h"
#include "output/SafeText.h"
#include "tree/Place.h"
#include "web/QueueWalk.h"

#include <algorithm>

namespace {

constexpr int mostWalks = 2;
constexpr std::size_t mostWaiting = 16;

} // namespace

QVariantList itemsOf(const OrkaHash &body)
{
    const QVariant items = body.value(QStringLiteral("items"));
    if (items.type() != QVariant::List)
        throw wrongUsage(QStringLiteral("\"items\" is a list of tracks."));
    return items.toList();
}

QueueApi::QueueApi(LiveChain &chain, CarriedAddresses &carried, HttpServer &server)
    : m_chain(chain)
    , m_carried(carried)
{
    server.route(
        "GET", "/api/queue", [this](const ExchangePointer &exchange) { gather(exchange); });
    server.route("POST", "/api/queue", write);
}

void QueueApi::gather(const ExchangePointer &exchange)
{
    const CMPath path = parsePath(exchange->parameter(QStringLiteral("path")));
    const auto hasLeft = [](const auto &waiting) {
        return !waiting.first->isWanted();
    };
    m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(), hasLeft), m_waiting.end());
    if (m_waiting.size() >= mostWaiting) {
        exchange->setHeader("Retry-After", "10");
        exchange->refuse(503, "tooMany",
            QStringLiteral("Too many queues are being made at once. Try again in a moment."));
        return;
    }
    m_waiting.emplace_back(exchange, path);
    walkNext();
}

void QueueApi::walkNext()
{
    while (m_walks < mostWalks && !m_waiting.empty()) {
        const auto [exchange, path] = m_waiting.front();
        m_waiting.pop_front();
        if (!exchange->isWanted())
            continue;
        ++m_walks;
        walk(exchange, path);
    }
}

void QueueApi::walk(const ExchangePointer &exchange, const CMPath &path)
{
    new QueueWalk(
        m_chain, m_carried, path, [exchange] { return exchange->isWanted(); },
        [this, exchange](
            const CMError &error, const PlayListItems &items, const QStringList &problems) {
            --m_walks;
            QTimer::singleShot(0, &m_chain, [this] { walkNext(); });
            if (error.isError()) {
                exchange->refuse(error);
                return;
            }
            QVariantList list;
            for (const OrkaPlayListItem &item : items)
                list.append(item.toVariant());
            OrkaHash document =
                problems.isEmpty() ? OrkaHash() : errorDocument(incompleteError(problems));
            document.setValue(QStringLiteral("items"), list);
            document.setValue(QStringLiteral("complete"), problems.isEmpty());
            exchange->answer(document);
        });
}

void QueueApi::write(const ExchangePointer &exchange)
{
    PlayListItems items;
    const QVariant body = valueFromJson(QString::fromUtf8(exchange->body()));
    for (const QVariant &entry : itemsOf(OrkaHash::fromVariant(body))) {
        const OrkaPlayListItem item = OrkaHash::fromVariant(entry);
        if (!isPlayableUrl(item.url())) {
            throw wrongUsage(QStringLiteral("The track %1 has no address that a player may be "
                                            "given (http, https or rtsp). Leave it out.")
                                 .arg(quoted(itemName(item))));
        }
        items.append(item);
    }
    const QString format = exchange->parameter(QStringLiteral("format"));
    if (format == QLatin1String("m3u8")) {
        exchange->answer(
            200, "application/vnd.apple.mpegurl", toM3u8(items).toUtf8(), Exchange::Never);
    } else if (format == QLatin1String("xspf")) {
        exchange->answer(200, "application/xspf+xml", toXspf(items), Exchange::Never);
    } else {
        throw wrongUsage(QStringLiteral("\"format\" is m3u8 or xspf."));
    }
}
