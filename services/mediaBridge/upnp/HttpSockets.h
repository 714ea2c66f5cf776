#pragma once

#include "core/Timer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/epoll.h>
#include <unordered_map>

namespace bridge {

class HttpConnections;

/// Lets the connections of all servers act, for a short time of a turn. The main loop sees one
/// descriptor: with each that it looks at itself, every turn gets longer. The machine for which
/// least was done comes first, and of its servers the one for which least was: none can take all
/// time by sending as fast as it can. What a machine had while it alone had something to do isn't
/// held against it, nor is it saved up for while it had nothing. Main thread only.
class HttpSockets
{
public:
    static HttpSockets &instance();

    /// Tells `whose` what happens at the socket. `what` is one of libcurl's CURL_POLL_ constants.
    /// Whether that could be done.
    bool watch(int socket, HttpConnections *whose, int what);
    /// Its time has come, or no longer.
    void setDue(HttpConnections *whose, bool isDue);

private:
    struct Event
    {
        HttpConnections *whose;
        int socket;
        int events;
    };
    HttpSockets();
    void serve();
    bool serveForOneTurn();
    void act(const Event &event);
    std::optional<Event> next();
    int64_t usedBy(const std::string &machine) const;

    int m_epoll = epoll_create1(EPOLL_CLOEXEC);
    std::unordered_map<int, HttpConnections *> m_owners;
    std::set<HttpConnections *> m_due;
    Timer m_timer;
    /// Nanoseconds that each had; a machine that isn't there had as many as the last that came had
    /// before.
    std::map<std::string, int64_t> m_usedByMachine;
    int64_t m_usedByLast = 0;
    std::unordered_map<const HttpConnections *, int64_t> m_usedByServer;
    int64_t m_countedSince = 0;
};

} // namespace bridge
