#include "tree/ServerList.h"

#include "Text.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "chain/Wait.h"
#include "tree/RowsReader.h"

#include <api/core/CMRoot.h>

#include <QTimer>

#include <algorithm>

namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds stillFor(1000);
/// A worker that has been told of a server reads its properties for so long.
constexpr Milliseconds readingTime(150);
/// Those that the media service lists aren't waited for: a worker reads them meanwhile.
constexpr Milliseconds leastWait(300);
constexpr Milliseconds questionLimit(300);
constexpr int lookEvery = 50; // milliseconds
/// A server that no worker ever lists isn't worth more.
constexpr int mostWorkers = 3;

bool hasServer(const ServerList::Servers &servers, const QString &base)
{
    return std::any_of(servers.begin(), servers.end(),
        [&](const OrkaRoles &server) { return ServerList::serverBase(server.path()) == base; });
}

} // namespace

ServerList::ServerList(Session &session)
    : m_session(session)
{
    connect(CMRoot(), &CMRootWorker::rowsChanged, this, [this](const CMPath &path) {
        if (path == m_session.root())
            noteChange();
    });
    startAgain();
}

void ServerList::noteChange()
{
    m_stale = true;
    m_sinceChange.start();
    emit changed();
}

void ServerList::startAgain()
{
    m_clock.start();
    m_mended = 0;
    m_udns.clear();
    m_unreadable.clear();
    connect(&m_session.mediaService().servers(), &ServiceServers::changed, this,
        [this] { m_sinceChange.start(); });
    noteChange();
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

bool ServerList::isOfServers()
{
    const auto isServer = [](const OrkaRoles &row) {
        return row.path().param(QStringLiteral("itemType")) == QLatin1String("server");
    };
    return servers().isEmpty() || std::any_of(servers().begin(), servers().end(), isServer);
}

bool ServerList::waitUntil(const std::function<bool()> &done, Milliseconds limit) const
{
    Wait wait(limit, Text::tr("Looking for media servers"));
    connect(this, &ServerList::changed, &wait, &Wait::wake);
    ServiceStarter &service = m_session.mediaService();
    connect(&service, &ServiceStarter::gone, &wait, &Wait::wake);
    connect(&service.servers(), &ServiceServers::changed, &wait, &Wait::wake);
    connect(&service.namedServers(), &NamedServers::changed, &wait, &Wait::wake);
    QTimer look; // for what becomes true by the time alone
    connect(&look, &QTimer::timeout, &wait, &Wait::wake);
    look.start(lookEvery);
    const bool isDone = wait.until([&] { return !service.isThere() || done(); });
    service.requireSameOwner(); // with its bus it goes without a word, and every server with it
    return isDone;
}

Milliseconds ServerList::remaining() const
{
    const Milliseconds limit = std::max(m_session.options().wait, leastWait);
    const Milliseconds left = limit - Milliseconds(m_clock.elapsed());
    return std::max(left, Milliseconds(0));
}

bool ServerList::waitFor(const std::function<bool(const Servers &)> &enough)
{
    const bool mayGiveUp = !m_session.options().waitIsNamed;
    bool isEnough = false;
    waitUntil(
        [&] {
            isEnough = enough(servers());
            if (isEnough || !isComplete())
                return isEnough;
            isEnough = enough(servers()); // one may have shown up meanwhile
            return isEnough || mayGiveUp;
        },
        remaining());
    return isEnough;
}

void ServerList::standStill(Milliseconds time)
{
    bool changing = !m_session.mediaService().servers().isSettled();
    // Those that the service knows may still be read by the worker.
    if (!changing)
        waitUntil([this] { return isComplete(); }, std::min(time, remaining()));
    while (changing && remaining().count() > 0) {
        changing = waitUntil([this] { return m_stale; }, std::min(time, remaining()));
        servers();
    }
}

void ServerList::settle(const std::function<void(const Servers &)> &seen)
{
    waitUntil(
        [&] {
            if (seen)
                seen(servers());
            return isComplete();
        },
        remaining());
}

/// A bridge that was there before this command has had its time to hear of one, too.
bool ServerList::mayBeEmpty() const
{
    const GlobalOptions &options = m_session.options();
    const ServiceStarter &service = m_session.mediaService();
    return !options.waitIsNamed && service.isBridge() && service.servers().age() >= options.wait;
}

bool ServerList::isComplete()
{
    const bool hasServers = !servers().isEmpty();
    const ServiceServers &service = m_session.mediaService().servers();
    if (service.state() != ServiceServers::Listed || !isOfServers())
        return hasServers && m_sinceChange.elapsed() >= stillFor.count();
    mend();
    const QStringList lacking = missing();
    return (!service.paths().isEmpty() || mayBeEmpty()) && service.isSettled()
        && !m_session.mediaService().namedServers().isPending()
        && std::all_of(lacking.begin(), lacking.end(),
            [this](const QString &path) { return m_unreadable.contains(path); })
        && !isAwaiting();
}

/// The bridge has heard of a server that it can't list yet.
bool ServerList::isAwaiting() const
{
    return m_session.mediaService().isBridge()
        && !ServiceCalls(questionLimit).awaitedServers().isEmpty();
}

QStringList ServerList::missing()
{
    QStringList lacking;
    if (!isOfServers())
        return lacking;
    const QStringList paths = m_session.mediaService().servers().paths();
    for (const QString &path : paths) {
        const auto isRow = [&](const OrkaRoles &server) {
            const QString udn = serverBase(server.path()).mid(1);
            return isPathOf(path, udn) || m_udns.value(path) == udn;
        };
        if (std::none_of(servers().begin(), servers().end(), isRow))
            lacking.append(path);
    }
    return lacking;
}

void ServerList::mend()
{
    if (m_mended == mostWorkers || m_sinceChange.elapsed() < readingTime.count() || isWhole())
        return;
    bool isMissed = false;
    for (const QString &path : missing())
        isMissed = isReadable(path) || isMissed;
    if (!isMissed || isWhole())
        return; // the worker waits for the same answers, or is about to have them
    ++m_mended;
    qInfo("The worker has missed a media server that the media service lists; made anew.");
    m_session.makeWorker();
    noteChange();
}

/// Whether the media service has told all that a worker asks of a server before it lists it.
bool ServerList::isReadable(const QString &server)
{
    const ServiceCalls service(questionLimit);
    const ServiceAnswer udn = service.property(server, QStringLiteral("UDN"));
    if (!udn.came)
        return false;
    const ServiceAnswer name = service.property(server, QStringLiteral("FriendlyName"));
    // A worker does without these, but waits for them.
    const bool hasCaps = service.property(server, QStringLiteral("SearchCaps")).came;
    if (udn.isGood())
        m_udns.insert(server, valueOf(udn).toString());
    if (udn.isError() || name.isError())
        m_unreadable.insert(server);
    return udn.isGood() && name.isGood() && hasCaps;
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
