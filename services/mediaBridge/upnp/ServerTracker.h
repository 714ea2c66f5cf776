#pragma once

#include "core/Timer.h"
#include "upnp/Discovery.h"
#include "upnp/MediaServer.h"

#include <memory>

namespace bridge {

/// Follows one UDN: the ways to it, whether it answers, and what clients were told about it.
/// Announced once description and capabilities were read; withdrawn a second after it went, so that
/// a server which restarts or changes its address in that time never leaves the list.
class ServerTracker : public std::enable_shared_from_this<ServerTracker>
{
public:
    /// Tells clients that a server is there, or no longer.
    using Announce = std::function<void(const std::shared_ptr<MediaServer> &, bool isThere)>;

    ServerTracker(std::string udn, Announce announce);
    /// Ends what is still asked of the server.
    ~ServerTracker();
    ServerTracker(const ServerTracker &) = delete;
    ServerTracker &operator=(const ServerTracker &) = delete;

    void addRoute(const Route &route);
    void removeRoute(GUPnPContext *context);
    /// Looks whether the server still answers; does nothing while it is being looked at.
    void probe();
    /// Withdraws the server if it was announced, for the end of the tracking.
    void withdraw();

    /// The server as clients know it; null while it isn't announced.
    std::shared_ptr<MediaServer> announced() const { return m_isAnnounced ? m_server : nullptr; }
    bool isForgettable() const { return m_routes.empty() && !m_isAnnounced; }
    /// Called when nothing is left to track; may delete the tracker's last owner.
    std::function<void()> onForgettable;

private:
    void tryRoute(size_t index);
    void gotDescription(size_t index, HttpReply reply);
    void accept(std::shared_ptr<MediaServer> server);
    void finishProbe(bool success);
    void goneForNow();
    void askAgainForCapabilities();

    std::string m_udn;
    Announce m_announce;
    Ref<SoupSession> m_session{newHttpSession()};
    std::vector<Route> m_routes;
    std::shared_ptr<MediaServer> m_server;
    bool m_isAnnounced = false;
    bool m_isProbing = false;
    bool m_mustProbeAgain = false;
    bool m_sawRefusal = false;
    unsigned m_failedProbes = 0;
    unsigned m_capabilityRetries = 0;
    Timer m_withdrawal;
    Timer m_retry;
};

} // namespace bridge
