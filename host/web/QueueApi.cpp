#include "web/QueueApi.h"

#include "Failure.h"
#include "output/JsonOutput.h"
#include "tree/Place.h"
#include "web/QueueWalk.h"

QVariantList itemsOfBody(const Exchange &exchange)
{
    const QVariant body = valueFromJson(QString::fromUtf8(exchange.body()));
    return OrkaHash::fromVariant(body).value(QStringLiteral("items")).toList();
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
    new QueueWalk(m_chain, m_carried, path,
        [exchange](const CMError &error, const PlayListItems &items, const QStringList &problems) {
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
    for (const QVariant &entry : itemsOfBody(*exchange)) {
        const OrkaPlayListItem item = OrkaHash::fromVariant(entry);
        if (isPlayableUrl(item.url()))
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
