#pragma once

#include "core/Limits.h"
#include "upnp/DescriptionLook.h"
#include "upnp/LookQueue.h"
#include "upnp/MediaServer.h"

namespace bridge {

/// Follows one UDN: the ways to it, whether it answers, and what clients were told about it.
/// Announced once description and capabilities were read. What anybody may say of it on the
/// network, that it goes or that it is somewhere else now, is only a reason to look: where it still
/// answers, it stays where it is. Withdrawn a moment after it went, so that a server which restarts
/// or changes its address in that time never leaves the list.
class ServerTracker : public std::enable_shared_from_this<ServerTracker>
{
public:
    /// Tells clients that a server is there, or no longer.
    using Announce = std::function<void(const std::shared_ptr<MediaServer> &, bool isThere)>;

    /// Where looks wait: those at servers in the list don't wait for the others.
    struct Queues
    {
        LookQueue listed{limits::servers};
        LookQueue strangers{limits::looks};
    };
    /// `queues` must outlive it.
    ServerTracker(std::string udn, std::string host, Queues &queues, Announce announce);
    /// Ends what is still asked of the server.
    ~ServerTracker();
    ServerTracker(const ServerTracker &) = delete;
    ServerTracker &operator=(const ServerTracker &) = delete;

    /// Announced there, to be believed for `maxAge` seconds.
    void heard(const Route &route, unsigned maxAge);
    void saidGoodbye(unsigned listener);
    void listenerGone(unsigned listener);
    /// Looks whether the server still answers, a second look at a time at most.
    void look();
    /// Withdraws the server if it was announced, for the end of the tracking.
    void withdraw();

    /// The server as clients know it; null while it isn't announced.
    std::shared_ptr<MediaServer> announced() const { return m_isAnnounced ? m_server : nullptr; }
    const std::string &udn() const { return m_udn; }
    /// Who was the first to announce it.
    const std::string &host() const { return m_host; }
    /// In the list, and its description is at the same port of the same machine.
    bool isAtPlaceOf(const MediaServer &other) const;
    /// There is a way to it that nobody has taken back.
    bool hasRoute() const { return !m_routes.isEmpty(); }
    /// See RouteList.
    bool isOnlyRemembered() const { return m_routes.isOnlyRemembered(); }
    bool isNamed() const { return m_routes.isNamed(); }
    std::optional<unsigned> namedSource() const { return m_routes.namedSource(); }
    /// It has never been in the list.
    bool isStranger() const { return !m_server; }
    /// It has announced itself, and its description is asked for: nothing is known of it yet.
    bool isAwaited() const;
    /// Looks in a row that found nothing.
    unsigned failures() const { return m_failures; }
    /// Why the last look brought nothing, in a sentence; empty where it did.
    const std::string &problem() const { return m_problem; }
    /// It hasn't answered for a while, or nobody listens where it was.
    std::function<void()> onMissed;
    /// A look brought nothing.
    std::function<void(const std::string &problem)> onFailed;
    /// Called when nothing is left to track; may delete the tracker's last owner.
    std::function<void()> onForgettable;

private:
    bool isLooking() const { return m_isWaiting || m_look || m_candidate; }
    void lookAt(LookQueue::Place place);
    void looked(LookResult result);
    void readCapabilities(DeviceDescription description);
    void accept();
    void succeed();
    void learnCapabilities();
    void announceAgain();
    unsigned patienceMs() const;
    enum class Failed { Silent, Gone, Replaced };
    void fail(Failed how, std::string problem);
    void finish();
    void goneForNow(unsigned settleMs);
    void missed();
    void forgetIfNothingIsLeft();
    bool isHopeless() const;
    void lookLater(unsigned ms);
    void watchExpiry();

    std::string m_udn;
    std::string m_host;
    Queues &m_queues;
    Announce m_announce;
    std::shared_ptr<HttpSession> m_session = HttpSession::create();
    RouteList m_routes;
    std::shared_ptr<MediaServer> m_server;
    bool m_isAnnounced = false;
    int64_t m_announcedAt = 0;
    int64_t m_goodbyeAt = 0;

    /// The look under way, in its three stages: waiting, description, capabilities.
    bool m_isWaiting = false;
    std::shared_ptr<DescriptionLook> m_look;
    std::shared_ptr<MediaServer> m_candidate;
    std::shared_ptr<HttpSession> m_candidateSession;
    Route m_candidateRoute;
    LookQueue::Place m_place;
    Timer m_placeTime;
    int64_t m_lookedAt = 0;
    /// What the last description took.
    int64_t m_descriptionMs = 0;
    bool m_mustLookAgain = false;
    int64_t m_finishedAt = 0;

    unsigned m_failures = 0;
    std::string m_problem;
    unsigned m_looksInDoubt = 0;
    unsigned m_capabilityRetries = 0;
    bool m_isLearning = false;
    Timer m_learn;
    Timer m_withdrawal;
    Timer m_next;
    Timer m_expiry;
};

} // namespace bridge
