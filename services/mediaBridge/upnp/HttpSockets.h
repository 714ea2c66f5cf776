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
/// time by sending as fast as it can. Main thread only.
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
    std::optional<Event> next();

    int m_epoll = epoll_create1(EPOLL_CLOEXEC);
    std::unordered_map<int, HttpConnections *> m_owners;
    std::set<HttpConnections *> m_due;
    Timer m_timer;
    /// Microseconds that each had lately.
    std::map<std::string, int64_t> m_usedByMachine;
    std::unordered_map<const HttpConnections *, int64_t> m_usedByServer;
    int64_t m_countedSince = 0;
};

} // namespace bridge
