#pragma once

#include "upnp/ServerTracker.h"

#include <map>

namespace bridge {

/// Every media server that was heard of, one entry per UDN.
class ServerRegistry
{
public:
    explicit ServerRegistry(std::vector<std::string> interfaces);

    /// A server has become available, or is available no longer.
    ServerTracker::Announce onChange;

    void start() { m_discovery.start(); }
    /// Searches again, and looks whether the known servers still answer.
    void rescan();

    /// Available servers, in the order of their paths.
    std::vector<std::shared_ptr<MediaServer>> servers() const;
    /// Null for one that isn't there. `serverPath` is the server's D-Bus path.
    std::shared_ptr<MediaServer> find(const std::string &serverPath) const;

private:
    void found(const std::string &udn, const Route &route);
    void lost(const std::string &udn, GUPnPContext *context);

    /// By the server's D-Bus path.
    std::map<std::string, std::shared_ptr<ServerTracker>> m_trackers;
    Discovery m_discovery;
};

} // namespace bridge
