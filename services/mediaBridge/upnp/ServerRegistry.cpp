#include "upnp/ServerRegistry.h"

#include "Log.h"
#include "core/ObjectPath.h"

namespace bridge {

ServerRegistry::ServerRegistry(std::vector<std::string> interfaces)
    : m_discovery(std::move(interfaces))
{
    m_discovery.onFound = [this](const std::string &udn, const Route &route) {
        found(udn, route);
    };
    m_discovery.onLost = [this](const std::string &udn, GUPnPContext *context) {
        lost(udn, context);
    };
}

void ServerRegistry::rescan()
{
    m_discovery.rescan();
    for (const auto &[path, tracker] : m_trackers)
        tracker->probe();
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

void ServerRegistry::found(const std::string &udn, const Route &route)
{
    const std::string path = serverPathFromUdn(udn);
    auto &tracker = m_trackers[path];
    if (!tracker) {
        tracker = std::make_shared<ServerTracker>(
            udn, [this](const std::shared_ptr<MediaServer> &server, bool isThere) {
                logInfo((isThere ? "found \"" : "lost \"") + server->description().friendlyName
                    + "\" " + server->description().location);
                onChange(server, isThere);
            });
        tracker->onForgettable = [this, path] {
            m_trackers.erase(path);
        };
    }
    tracker->addRoute(route);
}

void ServerRegistry::lost(const std::string &udn, GUPnPContext *context)
{
    const auto tracker = m_trackers.find(serverPathFromUdn(udn));
    if (tracker != m_trackers.end())
        tracker->second->removeRoute(context);
}

} // namespace bridge
