#pragma once

#include "upnp/HttpUrl.h"
#include "upnp/NamedServers.h"
#include "upnp/Newcomers.h"
#include "upnp/ServerMemory.h"
#include "upnp/ServerTracker.h"

#include <map>

namespace bridge {

/// Every media server that was heard of, one entry per UDN; so many in all and by host as this
/// process has descriptors for. Servers that never answered properly make room for others, so do
/// those of a host that has several, and all but named ones for a server that somebody names.
class ServerRegistry
{
public:
    /// `memory` is the file that keeps what was found; empty for none.
    ServerRegistry(std::vector<std::string> interfaces, std::string memory);
    ~ServerRegistry();
    ServerRegistry(const ServerRegistry &) = delete;
    ServerRegistry &operator=(const ServerRegistry &) = delete;

    /// A server has become available, or is available no longer.
    ServerTracker::Announce onChange;

    /// Every server that is remembered, and one at every named address, is there: nobody need wait
    /// for the first search. Not called where none is remembered or one isn't where it was.
    std::function<void()> onAllRemembered;

    /// Searches, and asks the remembered servers.
    void start();
    /// Searches again, and looks whether the known servers still answer.
    void rescan();

    /// Addresses where servers are looked for besides the search.
    void addNamed(const ServerAddress &address, NamedServers::Reached reached = {});
    void forgetNamed(const ServerAddress &address);

    /// Available servers, in the order of their paths.
    std::vector<std::shared_ptr<MediaServer>> servers() const;
    /// Null for one that isn't there. `serverPath` is the server's D-Bus path.
    std::shared_ptr<MediaServer> find(const std::string &serverPath) const;

    /// The addresses of this machine at which servers can be heard: "10.0.0.2 on eth0".
    std::vector<std::string> listening() const { return m_discovery.listening(); }
    /// Why somebody may miss a server: a sentence for each device that couldn't be read, and for
    /// each address where nothing can be heard or found. A few dozen at most.
    std::vector<std::string> troubles() const;
    /// A sentence for each server that announces itself and can't be read, or that was there in an
    /// earlier run and hasn't answered in this one. Not for those that are named.
    std::vector<std::string> absent() const;
    /// Why the list of servers may be about to become longer, in sentences.
    std::vector<std::string> awaited() const;

private:
    struct Absent
    {
        HttpUrl location;
        std::string sentence;
    };

    void forgetAbsentAt(const std::string &location);
    void announced(const std::string &udn, const Route &route, unsigned maxAge);
    bool heard(const std::string &udn, const Route &route, unsigned maxAge);
    std::string troubleOf(const ServerTracker &tracker) const;
    void connectNamed();
    void askRemembered();
    void remember(const ServerTracker &tracker);
    void rememberAll();
    void changed(const std::shared_ptr<MediaServer> &server, bool isThere);
    void failed(const std::string &path, const std::string &problem);
    bool makeRoomFor(const std::string &host, bool isNamed);
    void refuse(const std::string &host);
    std::shared_ptr<ServerTracker> newTracker(
        const std::string &udn, const std::string &path, const std::string &host);

    ServerTracker::Queues m_queues;
    /// By the server's D-Bus path.
    std::map<std::string, std::shared_ptr<ServerTracker>> m_trackers;
    size_t m_maxServers;
    bool m_wasFull = false;
    Timer m_review;
    int64_t m_startedAt = 0;
    ServerMemory m_memory;
    Timer m_remember;
    /// Paths of remembered servers that haven't answered yet.
    std::set<std::string> m_awaited;
    /// Of remembered servers that haven't been there in this run, by path.
    std::map<std::string, Absent> m_absent;
    /// Some are remembered, and it isn't told yet that they are there.
    bool m_isRecalling = false;
    bool m_hasMissed = false;
    NamedServers m_named;
    Newcomers m_newcomers;
    Discovery m_discovery;
};

} // namespace bridge
