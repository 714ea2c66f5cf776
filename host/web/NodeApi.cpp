#include "web/NodeApi.h"

#include "Failure.h"
#include "output/JsonOutput.h"
#include "tree/Place.h"

#include <api/core/OrkaPlayListItem.h>

#include <QElapsedTimer>

namespace {

constexpr int mostRows = 1000;

QStringList rolesOf(const Exchange &exchange)
{
    const QString list = exchange.parameter(QStringLiteral("roles"));
    return list.isEmpty() ? OrkaRoles::all() : list.split(QLatin1Char(','));
}

int numberOf(const Exchange &exchange, const QString &name, int otherwise)
{
    const QString text = exchange.parameter(name);
    bool isNumber = true;
    const int number = text.isEmpty() ? otherwise : text.toInt(&isNumber);
    if (!isNumber || number < 0)
        throw wrongUsage(QStringLiteral("\"%1\" is a number from 0.").arg(name));
    return number;
}

CMPath pathOf(const Exchange &exchange)
{
    return parsePath(exchange.parameter(QStringLiteral("path")));
}

/// Says how long the worker took, by W3C's Server Timing; a browser's network view shows it.
void tellTime(Exchange &exchange, const QElapsedTimer &sinceAsked)
{
    const double milliseconds = double(sinceAsked.nsecsElapsed()) / 1e6;
    exchange.setHeader("Server-Timing", "worker;dur=" + QByteArray::number(milliseconds, 'f', 2));
}

QElapsedTimer startedClock()
{
    QElapsedTimer clock;
    clock.start();
    return clock;
}

} // namespace

NodeApi::NodeApi(LiveChain &chain, CarriedAddresses &carried, HttpServer &server)
    : m_chain(chain)
    , m_carried(carried)
{
    server.route("GET", "/api/rows", [this](const ExchangePointer &exchange) { rows(exchange); });
    server.route("GET", "/api/data", [this](const ExchangePointer &exchange) { data(exchange); });
    server.route("POST", "/api/set", [this](const ExchangePointer &exchange) { set(exchange); });
}

void NodeApi::rows(const ExchangePointer &exchange)
{
    const CMPath path = pathOf(*exchange);
    const QStringList roles = rolesOf(*exchange);
    const int first = numberOf(*exchange, QStringLiteral("first"), 0);
    const int last = numberOf(*exchange, QStringLiteral("last"), first + 19);
    if (last < first || last - first >= mostRows) {
        throw wrongUsage(QStringLiteral("Ask for 1 to %1 rows at once: \"first\" and \"last\" are "
                                        "the first and the last of them, counted from 0.")
                             .arg(mostRows));
    }
    const QElapsedTimer asked = startedClock();
    m_chain.rows(path, first, last, roles, [=](const CMError &error, const OrkaRowsRoles &answer) {
        tellTime(*exchange, asked);
        if (error.isError()) {
            exchange->refuse(error);
            return;
        }
        const Rows rows = rowsOf(answer, roles);
        for (const OrkaRoles &row : rows.rows)
            m_carried.note(row);
        exchange->answer(rowsDocument(path, rows));
    });
}

void NodeApi::data(const ExchangePointer &exchange)
{
    const CMPath path = pathOf(*exchange);
    const QStringList roles = rolesOf(*exchange);
    const QElapsedTimer asked = startedClock();
    m_chain.data(path, roles, [=](const CMError &error, const QVariantList &values) {
        tellTime(*exchange, asked);
        if (error.isError()) {
            exchange->refuse(error);
            return;
        }
        const OrkaRoles record = recordOf(roles, values);
        m_carried.note(record);
        exchange->answer(dataDocument(path, record));
    });
}

void NodeApi::set(const ExchangePointer &exchange)
{
    const CMPath path = pathOf(*exchange);
    const QVariant value = valueFromJson(QString::fromUtf8(exchange->body()));
    const QElapsedTimer asked = startedClock();
    m_chain.set(path, value, [=](const CMError &error, const QVariant &answer) {
        tellTime(*exchange, asked);
        if (error.isError()) {
            exchange->refuse(error);
            return;
        }
        for (const QVariant &entry : answer.toList()) {
            const OrkaPlayListItem item = OrkaHash::fromVariant(entry);
            m_carried.noteArt(item.artworkUrl());
            m_carried.noteMedia(item.url());
        }
        exchange->answer(valueDocument(answer));
    });
}
