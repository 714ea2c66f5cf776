#include "upnp/ServerTracker.h"

#include "Log.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr int64_t microsecondsInMs = 1000;
// Long enough for a client that was just told of a server to read its properties.
constexpr unsigned usualSettleMs = 1'000;
// The same where the server itself said goodbye.
constexpr unsigned goodbyeSettleMs = 300;
// For so long after it was announced, a server may still turn out to have a better route.
constexpr unsigned routesSettleMs = 3'000;
// However much is said of a server, it isn't asked more often.
constexpr unsigned pauseMs = 200;
constexpr unsigned pauseAfterFailureMs = 1'000;

// A server that has been in the list is asked every second; after ten minutes, every ten will do.
constexpr unsigned retryMs = 1'000;
constexpr unsigned patientRetries = 600;
constexpr unsigned slowRetryMs = 10'000;
// One that never answered properly is asked ever more seldom, and then forgotten.
constexpr unsigned longestBackOffMs = 60'000;
constexpr unsigned strangersRetries = 10;

// A description is waited for so long, and longer where it may come: of a server that was just
// heard for the first time, or that has always taken its time. The others don't wait for that.
constexpr unsigned usualPatienceMs = 4'000;
constexpr unsigned longestPatienceMs = 20'000;
constexpr unsigned patientLooks = 3;
// Looks at others wait so long for a stranger's: he may be slow on purpose.
constexpr unsigned strangersPlaceMs = 500;

constexpr unsigned firstCapabilityMs = 2'000;
constexpr unsigned capabilityRetryMs = 5'000;
// Between two calls of a client that reads a list.
constexpr unsigned callPauseMs = 1'000;
// After a goodbye, for a server that closes its port a little later.
constexpr unsigned firstDoubtMs = 100;

unsigned doubled(unsigned firstMs, unsigned times)
{
    constexpr unsigned enough = 16;
    return std::min(firstMs << std::min(times, enough), longestBackOffMs);
}

/// Milliseconds from `since`, a time of the monotonic clock.
int64_t msSince(int64_t since)
{
    return (g_get_monotonic_time() - since) / microsecondsInMs;
}

} // namespace

ServerTracker::ServerTracker(std::string udn, std::string host, Queues &queues, Announce announce)
    : m_udn(std::move(udn))
    , m_host(std::move(host))
    , m_queues(queues)
    , m_announce(std::move(announce))
{
}

/// Whoever is silent may be elsewhere, or another may be in its place.
void ServerTracker::missed()
{
    look();
    if (onMissed)
        onMissed();
}

ServerTracker::~ServerTracker()
{
    m_session->abort();
}

bool ServerTracker::isAwaited() const
{
    return !m_isAnnounced && isLooking() && m_failures == 0 && !m_routes.isOnlyRemembered();
}

unsigned ServerTracker::patienceMs() const
{
    if (isStranger())
        return m_failures < patientLooks ? longestPatienceMs : usualPatienceMs;
    return static_cast<unsigned>(
        std::clamp<int64_t>(3 * m_descriptionMs, usualPatienceMs, longestPatienceMs));
}

void ServerTracker::heard(const Route &route, unsigned maxAge)
{
    if (!m_isAnnounced && !isStranger())
        m_failures = 0; // it is back
    const bool isSettling = !m_isAnnounced || msSince(m_announcedAt) < routesSettleMs;
    const int64_t expires = g_get_monotonic_time() + int64_t{maxAge} * G_USEC_PER_SEC;
    const bool isNew = m_routes.hear(route, expires, isSettling) == RouteList::Heard::New;
    watchExpiry();
    const bool isBetter = m_routes.inOrder().front().location == route.location;
    const bool isMove = isNew && (isBetter || !isSettling);
    if (isNew && m_look)
        m_look->add(route);
    if (isMove || !m_isAnnounced || m_withdrawal.isRunning())
        look();
}

void ServerTracker::saidGoodbye(unsigned listener)
{
    m_routes.doubt(listener);
    m_goodbyeAt = g_get_monotonic_time();
    look();
}

void ServerTracker::listenerGone(unsigned listener)
{
    m_routes.drop(listener);
    watchExpiry();
    if (m_routes.isEmpty())
        goneForNow(usualSettleMs);
    else
        look();
}

void ServerTracker::watchExpiry()
{
    const int64_t next = m_routes.nextExpiry();
    if (next == 0) {
        m_expiry.stop();
        return;
    }
    const int64_t ms = std::max<int64_t>(-msSince(next), 0) + 1;
    m_expiry.start(static_cast<unsigned>(ms), [this] {
        if (m_routes.doubtExpired(g_get_monotonic_time()))
            look();
        watchExpiry();
    });
}

void ServerTracker::look()
{
    m_mustLookAgain = isLooking();
    if (m_mustLookAgain || m_routes.isEmpty())
        return;
    const bool isFailing = !m_isAnnounced && m_failures > 0;
    const int64_t restMs = (isFailing ? pauseAfterFailureMs : pauseMs) - msSince(m_finishedAt);
    if (m_finishedAt != 0 && restMs > 0) {
        lookLater(static_cast<unsigned>(restMs));
        return;
    }
    m_next.stop();
    m_isWaiting = true;
    LookQueue &queue = m_isAnnounced ? m_queues.listed : m_queues.strangers;
    queue.wait(m_routes.hosts(), weak_from_this(), [this](LookQueue::Place place) {
        m_isWaiting = false;
        lookAt(std::move(place));
    });
}

void ServerTracker::lookLater(unsigned ms)
{
    m_next.start(ms, [this] { look(); });
}

void ServerTracker::lookAt(LookQueue::Place place)
{
    m_place = std::move(place);
    m_placeTime.start(
        isStranger() ? strangersPlaceMs : usualPatienceMs, [this] { m_place = nullptr; });
    m_lookedAt = g_get_monotonic_time();
    m_look = std::make_shared<DescriptionLook>(
        m_udn, m_routes.inOrder(), patienceMs(), [weak = weak_from_this()](LookResult result) {
            if (const auto self = weak.lock())
                self->looked(std::move(result));
        });
    m_look->start();
}

void ServerTracker::looked(LookResult result)
{
    const auto ended = std::exchange(m_look, nullptr);
    if (!result.description) {
        const bool isGone = result.sawRefusal || m_routes.areAllDoubted();
        // Only where it was itself: whoever is announced at another's place is asked ever more
        // seldom.
        const bool isReplaced = result.isReplaced && !isStranger();
        for (const Route &route : isReplaced ? result.failed : std::vector<Route>())
            m_routes.drop(route);
        fail(isReplaced  ? Failed::Replaced
                : isGone ? Failed::Gone
                         : Failed::Silent,
            std::move(result.problem));
        return;
    }
    m_descriptionMs = msSince(m_lookedAt);
    // Where it has moved, what was silent is out of date, too.
    const bool hasMoved = !m_routes.isTrusted(result.route);
    for (const Route &route : hasMoved ? result.asked : result.failed)
        m_routes.drop(route);
    m_candidateRoute = result.route;
    readCapabilities(std::move(*result.description));
}

void ServerTracker::readCapabilities(DeviceDescription description)
{
    const bool isElsewhere =
        m_isAnnounced && description.controlUrl != m_server->description().controlUrl;
    m_candidateSession = isElsewhere ? HttpSession::create() : m_session;
    m_candidate = std::make_shared<MediaServer>(std::move(description), m_candidateSession);
    const auto isDeaf = std::make_shared<bool>(false);
    m_candidate->onUnreachable = [isDeaf] {
        *isDeaf = true;
    };
    m_candidate->readCapabilities(firstCapabilityMs, [weak = weak_from_this(), isDeaf] {
        const auto self = weak.lock();
        if (!self)
            return;
        if (*isDeaf) {
            self->fail(Failed::Gone,
                "Nobody listens at " + self->m_candidate->description().controlUrl
                    + ", the address for calls of \""
                    + self->m_candidate->description().friendlyName + "\".");
        } else {
            self->accept();
        }
    });
}

void ServerTracker::accept()
{
    if (m_routes.isEmpty()) {
        fail(Failed::Gone, m_candidate->description().location + " is no longer announced.");
        return;
    }
    m_candidate->onUnreachable = [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->missed();
    };
    m_withdrawal.stop();
    m_routes.confirm(m_candidateRoute);
    if (m_isAnnounced)
        m_candidate->inheritCapabilities(*m_server);
    const bool hasOtherCaps = m_server && m_candidate->searchCaps() != m_server->searchCaps();
    if (m_isAnnounced
        && m_candidate->description().friendlyName != m_server->description().friendlyName)
        withdraw();
    if (m_server)
        m_server->giveWayTo(m_candidate);
    m_session = m_candidateSession;
    m_session->onSilent = m_candidate->onUnreachable;
    m_server = std::move(m_candidate);
    if (!m_isAnnounced) {
        m_isAnnounced = true;
        m_announcedAt = g_get_monotonic_time();
        m_announce(m_server, true);
    } else if (hasOtherCaps) {
        announceAgain();
    }
    succeed();
}

void ServerTracker::succeed()
{
    m_failures = 0;
    m_problem.clear();
    if (m_routes.isDoubted(m_candidateRoute)) {
        lookLater(doubled(firstDoubtMs, m_looksInDoubt++));
    } else {
        m_looksInDoubt = 0;
    }
    if (!m_server->searchCaps() && !m_isLearning && !m_learn.isRunning())
        learnCapabilities();
    finish();
}

/// Of a server that was too busy to say what it can search. It is listed meanwhile.
void ServerTracker::learnCapabilities()
{
    m_isLearning = true;
    m_server->readCapabilities(
        MediaServer::answerTimeoutMs, [weak = weak_from_this(), asked = m_server] {
            const auto self = weak.lock();
            if (!self)
                return;
            self->m_isLearning = false;
            self->m_server->inheritCapabilities(*asked);
            if (self->m_server->searchCaps())
                self->announceAgain();
            else if (self->m_isAnnounced)
                self->m_learn.start(doubled(capabilityRetryMs, self->m_capabilityRetries++),
                    [tracker = self.get()] { tracker->learnCapabilities(); });
        });
}

/// Clients hear of the abilities as of a change, which ends their calls: while none is under way.
void ServerTracker::announceAgain()
{
    if (!m_isAnnounced)
        return;
    if (!m_session->isResting(callPauseMs)) {
        m_learn.start(callPauseMs, [this] { announceAgain(); });
        return;
    }
    m_capabilityRetries = 0;
    withdraw();
    m_isAnnounced = true;
    m_announcedAt = g_get_monotonic_time();
    m_announce(m_server, true);
}

/// A server that only takes too long is kept: it may be busy or stopped for a while.
void ServerTracker::fail(Failed how, std::string problem)
{
    const bool isGone = how != Failed::Silent;
    m_candidate = nullptr;
    logDebug(problem);
    m_problem = std::move(problem);
    ++m_failures;
    if (isGone)
        m_routes.dropDoubted();
    if (isGone || isHopeless())
        goneForNow(how == Failed::Replaced ? 0 : usualSettleMs);
    if (isStranger()) {
        // Closes what connections it still has.
        m_session->abort();
        lookLater(doubled(retryMs, m_failures - 1));
    } else {
        lookLater(m_failures < patientRetries ? retryMs : slowRetryMs);
    }
    finish();
    if (onFailed)
        onFailed(m_problem);
}

void ServerTracker::finish()
{
    m_finishedAt = g_get_monotonic_time();
    m_placeTime.stop();
    const LookQueue::Place place = std::move(m_place);
    if (std::exchange(m_mustLookAgain, false))
        look();
}

void ServerTracker::goneForNow(unsigned settleMs)
{
    if (m_withdrawal.isRunning() && settleMs != 0)
        return;
    const int64_t sinceGoodbyeMs = m_goodbyeAt == 0 ? settleMs : msSince(m_goodbyeAt);
    const int64_t waitMs = sinceGoodbyeMs < settleMs ? goodbyeSettleMs - sinceGoodbyeMs : settleMs;
    const int64_t restMs = std::max({waitMs, usualSettleMs - msSince(m_announcedAt), int64_t{0}});
    m_withdrawal.start(static_cast<unsigned>(restMs), [weak = weak_from_this()] {
        // Held, since forgetting it takes it out of the list it is in.
        const auto self = weak.lock();
        self->withdraw();
        self->forgetIfNothingIsLeft();
    });
}

void ServerTracker::forgetIfNothingIsLeft()
{
    if (!m_isAnnounced && (m_routes.isEmpty() || isHopeless()) && onForgettable)
        onForgettable();
}

bool ServerTracker::isAtPlaceOf(const MediaServer &other) const
{
    return m_isAnnounced && m_server.get() != &other && m_server->port() == other.port()
        && m_server->host() == other.host();
}

bool ServerTracker::isHopeless() const
{
    return isStranger() && m_failures >= strangersRetries;
}

void ServerTracker::withdraw()
{
    if (!std::exchange(m_isAnnounced, false))
        return;
    m_announce(m_server, false);
}

} // namespace bridge
