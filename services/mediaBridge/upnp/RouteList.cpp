#include "upnp/RouteList.h"

#include "core/Limits.h"
#include "upnp/HttpUrl.h"

#include <algorithm>
#include <tuple>

namespace bridge {

namespace {

bool isSame(const Route &a, const Route &b)
{
    return a.listener == b.listener && a.location == b.location;
}

template<typename Routes, typename Condition>
void removeIf(Routes &routes, Condition condition)
{
    routes.erase(std::remove_if(routes.begin(), routes.end(), condition), routes.end());
}

} // namespace

std::vector<RouteList::Entry>::iterator RouteList::find(const Route &route)
{
    return std::find_if(
        m_routes.begin(), m_routes.end(), [&](const Entry &known) { return isSame(known, route); });
}

std::vector<RouteList::Entry>::const_iterator RouteList::find(const Route &route) const
{
    return std::find_if(
        m_routes.begin(), m_routes.end(), [&](const Entry &known) { return isSame(known, route); });
}

RouteList::Heard RouteList::hear(const Route &route, int64_t expires, bool isTrusted)
{
    auto known = find(route);
    // What was only remembered is what was heard now.
    if (known == m_routes.end() && route.isAnnounced()) {
        Route remembered = route;
        remembered.listener = rememberedSource;
        known = find(remembered);
    }
    if (known != m_routes.end()) {
        known->listener = route.listener;
        known->expires = expires;
        known->isDoubted = false;
        return Heard::Known;
    }
    Entry entry;
    static_cast<Route &>(entry) = route;
    entry.host = hostOf(route.location);
    if (!makeRoom(entry.host))
        return Heard::Known;
    entry.expires = expires;
    entry.isTrusted = isTrusted;
    m_routes.push_back(std::move(entry));
    return Heard::New;
}

/// The oldest that was never seen to be right goes first: of the same machine where that has named
/// some already, else one that anybody might have announced.
bool RouteList::makeRoom(const std::string &host)
{
    const auto oldest = [this](auto condition) {
        return std::find_if(m_routes.begin(), m_routes.end(),
            [&](const Entry &route) { return !route.isConfirmed && condition(route); });
    };
    const auto isOfHost = [&](const Entry &route) {
        return route.host == host;
    };
    const auto guesses = std::count_if(m_routes.begin(), m_routes.end(),
        [&](const Entry &route) { return !route.isConfirmed && isOfHost(route); });
    auto leaving = m_routes.end();
    if (guesses >= limits::guessesOfOneHost) {
        leaving = oldest(isOfHost);
    } else if (m_routes.size() < limits::addressesOfOneServer) {
        return true;
    } else {
        leaving = oldest([](const Entry &route) { return !route.isTrusted; });
        if (leaving == m_routes.end())
            leaving = oldest([](const Entry &) { return true; });
    }
    if (leaving == m_routes.end())
        return false;
    m_routes.erase(leaving);
    return true;
}

void RouteList::confirm(const Route &route)
{
    const auto known = find(route);
    if (known != m_routes.end())
        known->isTrusted = known->isConfirmed = true;
}

void RouteList::doubt(unsigned listener)
{
    for (Entry &route : m_routes)
        route.isDoubted = route.isDoubted || route.listener == listener || !route.isAnnounced();
}

bool RouteList::doubtExpired(int64_t now)
{
    bool isAny = false;
    for (Entry &route : m_routes) {
        if (route.isDoubted || route.expires > now)
            continue;
        route.isDoubted = true;
        isAny = true;
    }
    return isAny;
}

bool RouteList::isDoubted(const Route &route) const
{
    const auto known = find(route);
    return known != m_routes.end() && known->isDoubted;
}

bool RouteList::isTrusted(const Route &route) const
{
    const auto known = find(route);
    return known != m_routes.end() && known->isTrusted;
}

bool RouteList::areAllDoubted() const
{
    return std::all_of(
        m_routes.begin(), m_routes.end(), [](const Entry &route) { return route.isDoubted; });
}

void RouteList::drop(unsigned listener)
{
    removeIf(m_routes, [&](const Entry &route) { return route.listener == listener; });
}

void RouteList::drop(const Route &route)
{
    removeIf(m_routes, [&](const Entry &known) { return known.location == route.location; });
}

void RouteList::dropDoubted()
{
    removeIf(m_routes, [](const Entry &route) { return route.isDoubted; });
}

std::vector<Route> RouteList::inOrder() const
{
    std::vector<Entry> sorted = m_routes;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Entry &a, const Entry &b) {
        return std::tuple(!a.isTrusted, a.rank) < std::tuple(!b.isTrusted, b.rank);
    });
    std::vector<Route> routes;
    for (const Entry &entry : sorted) {
        // Heard at two addresses of this machine, it is still one place.
        const bool isKnown = std::any_of(routes.begin(), routes.end(),
            [&](const Route &route) { return route.location == entry.location; });
        if (!isKnown)
            routes.push_back(entry);
    }
    return routes;
}

std::vector<std::string> RouteList::hosts() const
{
    std::vector<std::string> hosts;
    for (const Entry &route : m_routes)
        hosts.push_back(route.host);
    return hosts;
}

bool RouteList::isOnlyRemembered() const
{
    return !m_routes.empty()
        && std::all_of(m_routes.begin(), m_routes.end(),
            [](const Entry &route) { return route.listener == rememberedSource; });
}

bool RouteList::isNamed() const
{
    return std::any_of(
        m_routes.begin(), m_routes.end(), [](const Entry &route) { return route.isNamed(); });
}

std::optional<unsigned> RouteList::namedSource() const
{
    const bool isNamedOnly = !m_routes.empty()
        && std::all_of(
            m_routes.begin(), m_routes.end(), [](const Entry &route) { return route.isNamed(); });
    return isNamedOnly ? std::optional(m_routes.front().listener) : std::nullopt;
}

int64_t RouteList::nextExpiry() const
{
    int64_t next = 0;
    for (const Entry &route : m_routes) {
        if (!route.isDoubted && (next == 0 || route.expires < next))
            next = route.expires;
    }
    return next;
}

} // namespace bridge
