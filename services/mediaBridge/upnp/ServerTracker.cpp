#include "upnp/ServerTracker.h"

#include "Log.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr unsigned descriptionTimeoutMs = 4'000;
// Long enough for a client that was just told of a server to read its properties.
constexpr unsigned settleMs = 1'000;
constexpr unsigned retryMs = 1'000;
// After ten minutes of asking every second, every ten seconds will do.
constexpr unsigned patientRetries = 600;
constexpr unsigned capabilityRetryMs = 5'000;
constexpr unsigned maxCapabilityRetries = 5;
constexpr unsigned slowRetryMs = 10'000;

bool looksTheSame(const MediaServer &a, const MediaServer &b)
{
    return a.description().friendlyName == b.description().friendlyName
        && a.searchCaps() == b.searchCaps();
}

} // namespace

ServerTracker::ServerTracker(std::string udn, Announce announce)
    : m_udn(std::move(udn))
    , m_announce(std::move(announce))
{
}

ServerTracker::~ServerTracker()
{
    soup_session_abort(m_session.get());
}

void ServerTracker::addRoute(const Route &route)
{
    removeRoute(route.context.get());
    const auto place = std::upper_bound(m_routes.begin(), m_routes.end(), route,
        [](const Route &a, const Route &b) { return a.rank < b.rank; });
    const bool isBest = place == m_routes.begin();
    m_routes.insert(place, route);
    m_failedProbes = 0;
    if (isBest || !m_isAnnounced || m_withdrawal.isRunning())
        probe();
}

void ServerTracker::removeRoute(GUPnPContext *context)
{
    const auto route = std::find_if(m_routes.begin(), m_routes.end(),
        [&](const Route &known) { return known.context.get() == context; });
    if (route == m_routes.end())
        return;
    const bool wasUsed = m_server && m_server->description().location == route->location;
    m_routes.erase(route);
    if (m_routes.empty())
        goneForNow();
    else if (wasUsed)
        probe();
}

void ServerTracker::probe()
{
    m_mustProbeAgain = m_isProbing;
    if (m_isProbing || m_routes.empty())
        return;
    m_isProbing = true;
    m_sawRefusal = false;
    m_retry.stop();
    tryRoute(0);
}

void ServerTracker::tryRoute(size_t index)
{
    if (index >= m_routes.size()) {
        finishProbe(false);
        return;
    }
    httpGet(m_session.get(), m_routes[index].location, descriptionTimeoutMs, nullptr,
        [weak = weak_from_this(), index](HttpReply reply) {
            if (const auto self = weak.lock())
                self->gotDescription(index, std::move(reply));
        });
}

void ServerTracker::gotDescription(size_t index, HttpReply reply)
{
    // Routes may have come and gone meanwhile; the new ones are looked at in a probe of their own.
    if (index >= m_routes.size() || m_mustProbeAgain) {
        finishProbe(false);
        return;
    }
    const Route &route = m_routes[index];
    auto description = readDescription(std::move(reply.body), m_udn, route.location);
    if (reply.status != 200 || !description) {
        logDebug(route.location + " gives no description of " + m_udn
            + (reply.problem.empty() ? std::string() : ": " + reply.problem));
        m_sawRefusal = m_sawRefusal || reply.outcome != HttpOutcome::TimedOut;
        tryRoute(index + 1);
        return;
    }
    auto server = std::make_shared<MediaServer>(std::move(*description), m_session);
    server->onUnreachable = [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->probe();
    };
    server->readCapabilities([weak = weak_from_this(), server] {
        if (const auto self = weak.lock())
            self->accept(server);
    });
}

void ServerTracker::accept(std::shared_ptr<MediaServer> server)
{
    if (m_routes.empty()) {
        finishProbe(false);
        return;
    }
    m_withdrawal.stop();
    if (m_isAnnounced)
        server->inheritCapabilities(*m_server);
    if (m_isAnnounced && !looksTheSame(*server, *m_server))
        withdraw();
    m_server = std::move(server);
    if (!m_isAnnounced) {
        m_isAnnounced = true;
        m_announce(m_server, true);
    }
    finishProbe(true);
    askAgainForCapabilities();
}

/// A server that was too busy to say what it can search is asked again; clients hear of the answer
/// as of a change.
void ServerTracker::askAgainForCapabilities()
{
    if (m_server->searchCaps() || m_capabilityRetries >= maxCapabilityRetries)
        return;
    ++m_capabilityRetries;
    m_retry.start(capabilityRetryMs, [this] { probe(); });
}

void ServerTracker::finishProbe(bool success)
{
    m_isProbing = false;
    if (std::exchange(m_mustProbeAgain, false)) {
        probe();
        return;
    }
    m_failedProbes = success ? 0 : m_failedProbes + 1;
    if (success || m_routes.empty())
        return;
    // A server that only takes too long is kept: it may be busy or stopped for a while.
    if (m_sawRefusal)
        goneForNow();
    m_retry.start(m_failedProbes < patientRetries ? retryMs : slowRetryMs, [this] { probe(); });
}

void ServerTracker::goneForNow()
{
    if (m_withdrawal.isRunning())
        return;
    m_withdrawal.start(settleMs, [weak = weak_from_this()] {
        // Held, since forgetting it takes it out of the list it is in.
        const auto self = weak.lock();
        self->withdraw();
        if (self->isForgettable() && self->onForgettable)
            self->onForgettable();
    });
}

void ServerTracker::withdraw()
{
    if (!std::exchange(m_isAnnounced, false))
        return;
    m_announce(m_server, false);
}

} // namespace bridge
