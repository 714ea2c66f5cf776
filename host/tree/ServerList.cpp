#include "tree/ServerList.h"

#include "chain/Session.h"
#include "chain/Wait.h"
#include "tree/RowsReader.h"

#include <api/core/CMRoot.h>

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds stillFor(1000);

bool hasServer(const ServerList::Servers &servers, const QString &base)
{
    return std::any_of(servers.begin(), servers.end(),
        [&](const OrkaRoles &server) { return ServerList::serverBase(server.path()) == base; });
}

} // namespace

ServerList::ServerList(Session &session)
    : m_session(session)
{
    m_clock.start();
    connect(CMRoot(), &CMRootWorker::rowsChanged, this, [this](const CMPath &path) {
        if (path == m_session.root()) {
            m_stale = true;
            emit changed();
        }
    });
}

const ServerList::Servers &ServerList::servers()
{
    if (m_stale) {
        m_stale = false; // first, so that a change meanwhile isn't missed
        m_servers = readRows(m_session, m_session.root(), {}, OrkaRoles::all()).rows;
        for (const OrkaRoles &server : qAsConst(m_servers))
            m_session.setName(server.path(), server.title().toString());
    }
    return m_servers;
}

QString ServerList::serverBase(const CMPath &path)
{
    return QLatin1Char('/') + path.base().section(QLatin1Char('/'), 1, 1);
}

bool ServerList::waitUntil(const std::function<bool()> &done, std::chrono::milliseconds limit) const
{
    Wait wait(limit, QStringLiteral("Looking for media servers"));
    connect(this, &ServerList::changed, &wait, &Wait::wake);
    const ServiceOnBus &service = m_session.mediaService();
    connect(&service, &ServiceOnBus::gone, &wait, &Wait::wake);
    const bool isDone = wait.until([&] { return !service.isThere() || done(); });
    service.requireThere();
    return isDone;
}

std::chrono::milliseconds ServerList::remaining() const
{
    const std::chrono::milliseconds left =
        m_session.options().wait - std::chrono::milliseconds(m_clock.elapsed());
    return std::max(left, std::chrono::milliseconds(0));
}

bool ServerList::waitFor(const std::function<bool(const Servers &)> &enough)
{
    return waitUntil([&] { return enough(servers()); }, remaining());
}

void ServerList::standStill(std::chrono::milliseconds time)
{
    bool changing = true;
    while (changing && remaining().count() > 0) {
        changing = waitUntil([this] { return m_stale; }, std::min(time, remaining()));
        servers();
    }
}

void ServerList::settle()
{
    waitFor([](const Servers &servers) { return !servers.isEmpty(); });
    standStill(stillFor);
}

bool ServerList::waitForServersOf(const QVector<CMPath> &paths)
{
    QStringList bases;
    for (const CMPath &path : paths)
        bases.append(serverBase(path));
    if (bases.removeAll(QStringLiteral("/")) > 0)
        settle();
    return waitFor([&](const Servers &servers) {
        return std::all_of(bases.begin(), bases.end(),
            [&](const QString &base) { return hasServer(servers, base); });
    });
}
