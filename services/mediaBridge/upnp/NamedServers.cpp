#include "upnp/NamedServers.h"

#include "Log.h"
#include "core/Later.h"
#include "core/Limits.h"
#include "core/ObjectAddress.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr unsigned firstPauseMs = 1'000;
constexpr unsigned longestPauseMs = 60'000;
constexpr unsigned rememberedAge = 300;
/// Below the 25 s after which a D-Bus caller gives up by itself.
constexpr unsigned patienceMs = 20'000;

void answer(
    std::vector<NamedServers::Reached> &waiting, const std::string &path, const Failure &failure)
{
    for (auto &reached : std::exchange(waiting, {}))
        later([reached = std::move(reached), path, failure] { reached(path, failure); });
}

} // namespace

std::list<NamedServers::Named>::iterator NamedServers::find(const ServerAddress &address)
{
    return std::find_if(m_named.begin(), m_named.end(),
        [&](const Named &named) { return named.address == address; });
}

void NamedServers::add(const ServerAddress &address, Reached reached)
{
    auto named = find(address);
    if (named == m_named.end() && m_named.size() >= limits::namedServers) {
        if (reached)
            reached({},
                {errors::limitsExceeded,
                    "Servers are looked for at " + std::to_string(limits::namedServers)
                        + " addresses already; forget one of them first."});
        return;
    }
    const bool isNew = named == m_named.end();
    if (isNew) {
        named = m_named.emplace(m_named.end());
        named->address = address;
        named->source = m_nextSource++;
        logInfo("looking for servers at " + address.text());
    }
    if (reached)
        named->waiting.push_back(std::move(reached));
    if (pathThere(*named).empty())
        look(*named);
    if (isNew)
        askRemembered(*named);
    if (!named->waiting.empty() && !named->patience.isRunning())
        named->patience.start(patienceMs, [this, named] { settle(*named, true); });
    settle(*named);
}

/// Beside the look, which takes longer where it has to wait for the search.
void NamedServers::askRemembered(Named &named)
{
    for (const RememberedServer &server : recall(named.address.text())) {
        if (const auto url = parseHttpUrl(server.location))
            heard(named, server.udn, {named.source, server.location, url->rank()}, rememberedAge);
    }
}

void NamedServers::forget(const ServerAddress &address)
{
    const auto named = find(address);
    if (named == m_named.end())
        return;
    auto waiting = std::exchange(named->waiting, {});
    const unsigned source = named->source;
    m_named.erase(named);
    onSourceGone(source);
    answer(waiting, {}, {errors::notReached, address.text() + " was forgotten meanwhile."});
}

void NamedServers::rescan()
{
    for (Named &named : m_named)
        look(named);
}

void NamedServers::look(Named &named)
{
    if (named.look)
        return;
    for (auto it = named.servers.begin(); it != named.servers.end();)
        it = isThere(it->first) ? std::next(it) : named.servers.erase(it);
    named.next.stop();
    named.look = std::make_shared<AddressLook>(
        named.address, named.source,
        [this, &named](const std::string &udn, const Route &route, unsigned maxAge) {
            heard(named, udn, route, maxAge);
        },
        [this, &named](const std::string &problem) { looked(named, problem); });
    named.look->start(named.problem.empty());
}

void NamedServers::lookLater(Named &named)
{
    constexpr unsigned enough = 16;
    const bool isAnyThere = !pathThere(named).empty();
    const unsigned pauseMs = isAnyThere
        ? longestPauseMs
        : std::min(firstPauseMs << std::min(named.failures, enough), longestPauseMs);
    named.failures = isAnyThere ? 0 : named.failures + 1;
    named.next.start(pauseMs, [this, &named] { check(named); });
}

/// What is there needs no new search. It is heard again with each check, so that it doesn't expire.
void NamedServers::check(Named &named)
{
    if (pathThere(named).empty()) {
        look(named);
        return;
    }
    lookLater(named);
    for (const auto &[path, server] : std::map(named.servers)) {
        if (isThere(path) && onHeard(server.udn, server.route, server.maxAge))
            onCheck(path);
    }
}

void NamedServers::heard(Named &named, const std::string &udn, const Route &route, unsigned maxAge)
{
    const std::string path = serverPathFromUdn(udn);
    if (named.servers.size() >= limits::serversOfOneName && named.servers.count(path) == 0)
        return;
    if (!onHeard(udn, route, maxAge))
        return;
    named.servers[path] = {udn, route, maxAge, {}};
    settle(named);
}

void NamedServers::looked(Named &named, const std::string &problem)
{
    named.look = nullptr;
    named.problem = problem;
    lookLater(named);
    settle(named);
}

void NamedServers::changed(const std::string &path, bool isThereNow)
{
    for (Named &named : m_named) {
        const auto server = named.servers.find(path);
        if (server == named.servers.end())
            continue;
        named.failures = 0;
        if (isThereNow)
            server->second.problem.clear();
        if (!named.look)
            lookLater(named);
        settle(named);
    }
}

void NamedServers::failed(const std::string &path, const std::string &problem)
{
    for (Named &named : m_named) {
        const auto server = named.servers.find(path);
        if (server == named.servers.end())
            continue;
        server->second.problem = problem;
        settle(named);
    }
}

/// Answers those who wait as soon as there is an answer.
void NamedServers::settle(Named &named, bool mustEnd)
{
    if (named.waiting.empty())
        return;
    const std::string path = pathThere(named);
    const bool isOpen = named.look
        || std::any_of(named.servers.begin(), named.servers.end(),
            [](const auto &server) { return server.second.problem.empty(); });
    if (path.empty() && isOpen && !mustEnd)
        return;
    named.patience.stop();
    if (!path.empty())
        answer(named.waiting, path, {});
    else
        answer(named.waiting, {}, {errors::notReached, problemOf(named)});
}

/// The first of its servers that is available; empty where none is.
std::string NamedServers::pathThere(const Named &named) const
{
    const auto server = std::find_if(named.servers.begin(), named.servers.end(),
        [this](const auto &known) { return isThere(known.first); });
    return server == named.servers.end() ? std::string() : server->first;
}

std::string NamedServers::problemOf(const Named &named) const
{
    if (!named.problem.empty())
        return named.problem;
    for (const auto &[path, server] : named.servers) {
        if (!server.problem.empty())
            return server.problem;
    }
    return "A media server at " + named.address.text()
        + " has not answered yet; it is still looked for.";
}

std::string NamedServers::addressOf(unsigned source) const
{
    for (const Named &named : m_named) {
        if (named.source == source)
            return named.address.text();
    }
    return {};
}

bool NamedServers::areAllThere() const
{
    return std::all_of(m_named.begin(), m_named.end(),
        [this](const Named &named) { return !pathThere(named).empty(); });
}

std::vector<std::string> NamedServers::troubles() const
{
    std::vector<std::string> sentences;
    for (const Named &named : m_named) {
        if (pathThere(named).empty() && (!named.look || !named.problem.empty()))
            sentences.push_back(problemOf(named));
    }
    return sentences;
}

} // namespace bridge
