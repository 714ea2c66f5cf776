#include "util.h"

#include "UPnPServerList.h"
#include "cb_upnp.h"
#include "dleyna.h"
#include "log.h"

#include <QDBusMessage>
#include <QStringBuilder>

#include <algorithm>

namespace {

/// What a path text holds: "/first" or "/first/rest", both empty when the text is neither.
struct Captures
{
    QStringView first;
    QStringView rest;
};

bool isAlphanumeric(QChar c)
{
    const ushort u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z');
}

bool isUdnCharacter(QChar c)
{
    return isAlphanumeric(c) || c == QLatin1Char('-') || c == QLatin1Char(':');
}

bool isServerIdCharacter(QChar c)
{
    return isAlphanumeric(c) || c == QLatin1Char('_');
}

/// Matches "^/([first]+)(/[0-9a-zA-Z]+)?$" with a character class for `first`; like that regular
/// expression it takes one line end behind the text.
template<typename IsFirst>
Captures match(QStringView text, IsFirst isFirst)
{
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    if (!text.startsWith(QLatin1Char('/')))
        return {};
    const auto firstEnd = std::find_if_not(text.begin() + 1, text.end(), isFirst);
    const QStringView first(text.begin() + 1, firstEnd);
    if (first.isEmpty())
        return {};
    if (firstEnd == text.end())
        return {first, {}};
    const QStringView rest(firstEnd + 1, text.end());
    if (*firstEnd != QLatin1Char('/') || rest.isEmpty()
        || !std::all_of(rest.begin(), rest.end(), isAlphanumeric))
        return {};
    return {first, rest};
}

} // namespace

UPnPPath UPnPPath::fromDleyna(CMUPnPWorker *worker, UPnPServerList *serverList,
    const QDBusObjectPath &path, const Query &query)
{
    ServerLookUp servers(serverList);
    return fromDleyna(worker, &servers, path, query);
}

UPnPPath UPnPPath::fromDleyna(
    CMUPnPWorker *worker, ServerLookUp *servers, const QDBusObjectPath &path, const Query &query)
{
    const QString text = path.path();
    const Captures captures =
        match(text.midRef(dleyna::serverPathPrefix().size()), isServerIdCharacter);

    UPnPPath result;
    result.m_worker = worker;
    result.m_serverList = servers->serverList();
    result.m_udn = servers->udn(captures.first);
    if (result.m_udn.isEmpty()) {
        const QString server =
            dleyna::serverPathPrefix() + QLatin1Char('/') + captures.first.toString();
        LOG4CPLUS_ERROR(upnpUtilLog(),
            "Could not translate dleyna path \"" << logText(server) << "\" to server UDN");
    }
    result.objectId = captures.rest.toString();
    result.query = query;
    return result;
}

UPnPPath UPnPPath::fromOrka(CMUPnPWorker *worker, UPnPServerList *serverList, const CMPath &path)
{
    const QString base = sdk::baseOf(path);
    const Captures captures = match(base, isUdnCharacter);

    UPnPPath result;
    result.m_worker = worker;
    result.m_serverList = serverList;
    result.m_udn = captures.first.toString();
    result.objectId = captures.rest.toString();
    const auto params = sdk::paramsOf(path);
    for (auto it = params.begin(); it != params.end(); ++it)
        result.query.append({it.key(), it.value()});
    return result;
}

QString UPnPPath::queryValue(const QString &key) const
{
    for (const auto &pair : query) {
        if (pair.first == key)
            return pair.second;
    }
    return QString();
}

CMPath UPnPPath::orkaPathWithoutParams() const
{
    QString base;
    base.reserve(m_udn.size() + objectId.size() + 2);
    base.append(QLatin1Char('/')).append(m_udn);
    if (!objectId.isEmpty())
        base.append(QLatin1Char('/')).append(objectId);
    return m_worker->addPrefix(base);
}

CMPath UPnPPath::orkaPath() const
{
    CMPath path = orkaPathWithoutParams();
    for (const auto &pair : query)
        path = sdk::withParam(std::move(path), pair.first, pair.second);
    return path;
}

QDBusObjectPath UPnPPath::dbusPath() const
{
    QDBusObjectPath server = m_serverList->serverPath(m_udn);
    if (objectId.isEmpty())
        return server;
    return QDBusObjectPath(QString(server.path() % QLatin1Char('/') % objectId));
}

UPnPPath UPnPPath::withoutQuery(const QString &key) const
{
    UPnPPath result = *this;
    auto &pairs = result.query;
    pairs.erase(std::remove_if(pairs.begin(), pairs.end(),
                    [&key](const QPair<QString, QString> &pair) { return pair.first == key; }),
        pairs.end());
    return result;
}

QDBusPendingCall getPropertyAsync(
    const QString &service, const QString &path, const QString &interface, const QString &property)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, path, dleyna::propertiesInterface(), QStringLiteral("Get"));
    message << interface << property;
    return orkaDBusConnection().asyncCall(message, -1);
}

QDBusPendingCall getPropertyAsync(const QString &service, const QDBusObjectPath &path,
    const QString &interface, const QString &property)
{
    return getPropertyAsync(service, path.path(), interface, property);
}
