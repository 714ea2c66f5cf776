#include "upnp/ServerRegistry.h"

#include "Log.h"
#include "core/Limits.h"
#include "core/ObjectAddress.h"
#include "core/Text.h"
#include "upnp/HttpUrl.h"

#include <algorithm>
#include <limits>
#include <sys/resource.h>
#include <tuple>

namespace bridge {

namespace {

constexpr size_t longestNameInLog = 100;
constexpr unsigned failuresToGiveWay = 4;
constexpr unsigned rememberMs = 3'600'000;
// By then five searches have been answered.
constexpr int64_t searchTakesUs = 4'000'000;
// Seconds after which a remembered place is doubted that nobody has announced.
constexpr unsigned rememberedAge = 300;
// Connections a server may have open and libcurl's two, and what else the process has.
constexpr rlim_t descriptorsOfOneServer = 8;
constexpr rlim_t otherDescriptors = 256;

/// Raises the limit on descriptors as far as it is needed and allowed, and says for how many
/// servers it is enough.
size_t serversThatFit()
{
    constexpr rlim_t wanted = limits::servers * descriptorsOfOneServer + otherDescriptors;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return limits::serversOfOneHost;
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = std::min(wanted, limit.rlim_max);
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            getrlimit(RLIMIT_NOFILE, &limit);
    }
    const rlim_t free = limit.rlim_cur - std::min(limit.rlim_cur / 2, otherDescriptors);
    return std::clamp<size_t>(free / descriptorsOfOneServer, 1, limits::servers);
}

} // namespace

ServerRegistry::ServerRegistry(std::vector<std::string> interfaces, std::string memory)
    : m_maxServers(serversThatFit())
    , m_memory(std::move(memory))
    , m_newcomers([this](const Newcomers::Announcement &newcomer) {
        heard(newcomer.udn, newcomer.route, newcomer.maxAge);
    })
    , m_discovery(std::move(interfaces))
{
    m_discovery.onHeard = [this](const std::string &udn, const Route &route, unsigned maxAge) {
        announced(udn, route, maxAge);
    };
    m_discovery.onGoodbye = [this](const std::string &udn, unsigned listener) {
        const auto tracker = m_trackers.find(serverPathFromUdn(udn));
        if (tracker != m_trackers.end())
            tracker->second->saidGoodbye(listener);
    };
    m_discovery.onListenerGone = [this](unsigned listener) {
        for (const auto &[path, tracker] : m_trackers)
            tracker->listenerGone(listener);
    };
    connectNamed();
}

ServerRegistry::~ServerRegistry()
{
    rememberAll();
}

void ServerRegistry::connectNamed()
{
    m_named.onSourceGone = m_discovery.onListenerGone;
    m_named.recall = [this](const std::string &address) {
        const auto remembered = m_memory.foundBy(address);
        m_isRecalling = m_isRecalling || !remembered.empty();
        return remembered;
    };
    m_named.onHeard = [this](const std::string &udn, const Route &route, unsigned maxAge) {
        return heard(udn, route, maxAge);
    };
    m_named.onCheck = [this](const std::string &path) {
        m_trackers.at(path)->look();
    };
    m_named.isThere = [this](const std::string &path) {
        return find(path) != nullptr;
    };
}

void ServerRegistry::start()
{
    m_startedAt = g_get_monotonic_time();
    m_discovery.start();
    askRemembered();
    m_remember.start(rememberMs, [this] { rememberAll(); });
}

/// Where it isn't any more, it is only missed; the search finds it wherever it is.
void ServerRegistry::askRemembered()
{
    for (const RememberedServer &server : m_memory.foundBy({})) {
        const auto url = parseHttpUrl(server.location);
        if (!url || !url->isNumeric || (url->isLoopback && !m_discovery.isAtLoopback()))
            continue;
        const std::string path = serverPathFromUdn(server.udn);
        m_awaited.insert(path);
        m_absent[path] = {*url,
            "The media server \"" + shortened(server.name, longestNameInLog)
                + "\" was there before, at " + hostOf(server.location)
                + ", but does not answer now."};
        heard(server.udn, {rememberedSource, server.location, url->rank()}, rememberedAge);
    }
    m_isRecalling = !m_awaited.empty();
}

void ServerRegistry::rememberAll()
{
    for (const auto &[path, tracker] : m_trackers)
        remember(*tracker);
    m_remember.start(rememberMs, [this] { rememberAll(); });
}

void ServerRegistry::remember(const ServerTracker &tracker)
{
    const auto server = tracker.announced();
    if (!server || !tracker.hasRoute())
        return;
    const auto source = tracker.namedSource();
    const DeviceDescription &description = server->description();
    m_memory.seen({description.udn, description.location, description.friendlyName,
        source ? m_named.addressOf(*source) : std::string()});
}

void ServerRegistry::addNamed(const ServerAddress &address, NamedServers::Reached reached)
{
    m_named.add(address, std::move(reached));
}

void ServerRegistry::forgetNamed(const ServerAddress &address)
{
    m_named.forget(address);
    m_memory.forget(address.text());
}

void ServerRegistry::rescan()
{
    m_discovery.rescan();
    m_named.rescan();
    for (const auto &[path, tracker] : m_trackers)
        tracker->look();
}

std::vector<std::shared_ptr<MediaServer>> ServerRegistry::servers() const
{
    std::vector<std::shared_ptr<MediaServer>> servers;
    for (const auto &[path, tracker] : m_trackers) {
        if (auto server = tracker->announced())
            servers.push_back(std::move(server));
    }
    return servers;
}

std::shared_ptr<MediaServer> ServerRegistry::find(const std::string &serverPath) const
{
    const auto tracker = m_trackers.find(serverPath);
    return tracker == m_trackers.end() ? nullptr : tracker->second->announced();
}

/// What keeps this server from being seen, or others like it; empty where nothing does.
std::string ServerRegistry::troubleOf(const ServerTracker &tracker) const
{
    const auto server = tracker.announced();
    if (!server)
        return tracker.problem();
    const bool isUnheard =
        tracker.isOnlyRemembered() && g_get_monotonic_time() - m_startedAt > searchTakesUs;
    return !isUnheard
        ? std::string()
        : "The media server \"" + shortened(server->description().friendlyName, longestNameInLog)
            + "\" is there, at " + hostOf(server->description().location)
            + ", but is not heard, neither announcing itself nor answering the search: multicast "
              "doesn't get through, or a firewall drops the answers.";
}

std::vector<std::string> ServerRegistry::troubles() const
{
    std::vector<std::string> sentences = m_named.troubles();
    for (std::string &sentence : m_discovery.troubles())
        sentences.push_back(std::move(sentence));
    if (!m_memory.problem().empty())
        sentences.push_back(m_memory.problem());
    for (const auto &[path, tracker] : m_trackers) {
        const std::string sentence = troubleOf(*tracker);
        const bool isNew = !sentence.empty()
            && std::find(sentences.begin(), sentences.end(), sentence) == sentences.end();
        if (isNew && sentences.size() < limits::troubles)
            sentences.push_back(sentence);
    }
    sentences.resize(std::min(sentences.size(), limits::troubles));
    return sentences;
}

std::vector<std::string> ServerRegistry::absent() const
{
    std::vector<std::string> sentences;
    for (const auto &[path, server] : m_absent) {
        const auto tracker = m_trackers.find(path);
        if (tracker == m_trackers.end() || !tracker->second->isAwaited())
            sentences.push_back(server.sentence);
    }
    for (const auto &[path, tracker] : m_trackers) {
        const bool isKnown = tracker->announced() || m_absent.count(path) > 0;
        if (!isKnown && !tracker->namedSource() && !tracker->problem().empty())
            sentences.push_back(tracker->problem());
    }
    sentences.resize(std::min(sentences.size(), limits::troubles));
    return sentences;
}

/// Whoever had the place before isn't missed: it was installed anew, say.
void ServerRegistry::forgetAbsentAt(const std::string &location)
{
    const auto url = parseHttpUrl(location);
    for (auto absent = m_absent.begin(); url && absent != m_absent.end();) {
        const HttpUrl &its = absent->second.location;
        const bool isThere = its.host == url->host && its.port == url->port;
        absent = isThere ? m_absent.erase(absent) : std::next(absent);
    }
}

std::vector<std::string> ServerRegistry::awaited() const
{
    std::vector<std::string> sentences;
    if (m_discovery.isSearching())
        sentences.emplace_back("The network has just come up or changed, and media servers are "
                               "still being searched for.");
    std::map<std::string, unsigned> perHost;
    for (const auto &[path, tracker] : m_trackers)
        perHost[tracker->host()] += tracker->isAwaited() ? 1 : 0;
    for (const auto &[host, count] : perHost) {
        if (count == 1)
            sentences.push_back("A media server at " + host
                + " has announced itself and not described itself yet.");
        else if (count > 1)
            sentences.push_back(std::to_string(count) + " media servers at " + host
                + " have announced themselves and not described themselves yet.");
    }
    sentences.resize(std::min(sentences.size(), limits::troubles));
    return sentences;
}

void ServerRegistry::announced(const std::string &udn, const Route &route, unsigned maxAge)
{
    if (m_trackers.count(serverPathFromUdn(udn)) == 0)
        m_newcomers.add({udn, route, maxAge});
    else
        heard(udn, route, maxAge);
}

bool ServerRegistry::heard(const std::string &udn, const Route &route, unsigned maxAge)
{
    const std::string path = serverPathFromUdn(udn);
    auto tracker = m_trackers.find(path);
    if (tracker == m_trackers.end()) {
        const std::string host = hostOf(route.location);
        if (!makeRoomFor(host, route.isNamed())) {
            refuse(host);
            return false;
        }
        tracker = m_trackers.emplace(path, newTracker(udn, path, host)).first;
    }
    tracker->second->heard(route, maxAge);
    return true;
}

/// A server that was heard for the first time takes the place of one that never answered, of its
/// own host where that has all its places. Where all of them answered, a host that has several
/// gives one up, or who was listed and doesn't answer now. One that somebody names always has room
/// among those that were only announced.
bool ServerRegistry::makeRoomFor(const std::string &host, bool isNamed)
{
    std::map<std::string, size_t> ofHost;
    for (const auto &[path, tracker] : m_trackers)
        ++ofHost[tracker->host()];
    const size_t own = ofHost[host];
    const bool isHostFull = own >= limits::serversOfOneHost;
    if (!isHostFull && m_trackers.size() < m_maxServers)
        return true;
    // Not at once where it is of the same host: who keeps making names up would be asked for ever.
    const unsigned fewest = isHostFull ? failuresToGiveWay : 1;
    using Rank = std::tuple<int, size_t, unsigned>;
    const Rank stays{isNamed ? -1 : 0, std::numeric_limits<size_t>::max(), 0};
    // Greater is sooner.
    const auto rank = [&](const ServerTracker &tracker) -> Rank {
        if (tracker.isNamed())
            return stays;
        const size_t count = ofHost[tracker.host()];
        const unsigned failures = tracker.failures();
        if (tracker.isStranger() && failures >= fewest && (!isHostFull || tracker.host() == host))
            return {3, failures, 0};
        if (!isHostFull && count >= own + 2)
            return {2, count, tracker.isStranger() ? failuresToGiveWay : failures};
        return {isHostFull || failures == 0 ? 0 : 1, failures, 0};
    };
    auto leaving = m_trackers.end();
    Rank best = stays;
    for (auto it = m_trackers.begin(); it != m_trackers.end(); ++it) {
        if (const auto its = rank(*it->second); its > best) {
            best = its;
            leaving = it;
        }
    }
    if (leaving == m_trackers.end())
        return false;
    const auto tracker = std::move(leaving->second);
    m_trackers.erase(leaving);
    tracker->withdraw();
    return true;
}

/// Whoever is refused is searched for again; by then it is known who still answers.
void ServerRegistry::refuse(const std::string &host)
{
    constexpr unsigned againMs = 10'000;
    if (!std::exchange(m_wasFull, true))
        logWarning("more media servers are announced than can be followed; new ones of " + host
            + " are ignored");
    if (!m_review.isRunning())
        m_review.start(againMs, [this] { rescan(); });
}

std::shared_ptr<ServerTracker> ServerRegistry::newTracker(
    const std::string &udn, const std::string &path, const std::string &host)
{
    auto tracker = std::make_shared<ServerTracker>(
        udn, host, m_queues, [this](const std::shared_ptr<MediaServer> &server, bool isThere) {
            const DeviceDescription &description = server->description();
            logInfo((isThere ? "found \"" : "lost \"")
                + description.friendlyName.substr(0, longestNameInLog) + "\" "
                + description.location);
            changed(server, isThere);
        });
    tracker->onFailed = [this, path](const std::string &problem) {
        failed(path, problem);
    };
    tracker->onMissed = [this] {
        m_discovery.rescan();
    };
    tracker->onForgettable = [this, path] {
        m_trackers.erase(path);
    };
    return tracker;
}

void ServerRegistry::changed(const std::shared_ptr<MediaServer> &server, bool isThere)
{
    const std::string &path = server->context().path;
    onChange(server, isThere);
    m_named.changed(path, isThere);
    if (!isThere)
        return;
    // One program at a time has the port: it may be the other's successor.
    for (const auto &[otherPath, tracker] : m_trackers) {
        if (tracker->isAtPlaceOf(*server))
            tracker->look();
    }
    remember(*m_trackers.at(path));
    m_awaited.erase(path);
    m_absent.erase(path);
    forgetAbsentAt(server->description().location);
    const bool areAllThere = m_awaited.empty() && !m_hasMissed && m_named.areAllThere();
    if (m_isRecalling && areAllThere) {
        m_isRecalling = false;
        onAllRemembered();
    }
}

void ServerRegistry::failed(const std::string &path, const std::string &problem)
{
    m_named.failed(path, problem);
    if (m_awaited.erase(path) == 0)
        return;
    m_hasMissed = true;
    ServerTracker &tracker = *m_trackers.at(path);
    m_memory.missed(tracker.udn());
    tracker.listenerGone(rememberedSource);
}

} // namespace bridge
