#pragma once

#include <sys/epoll.h>
#include <unordered_map>

namespace bridge {

class HttpConnections;

/// The sockets of all servers, of which the main loop sees one: with each that it looks at itself,
/// every turn gets longer. Main thread only.
class HttpSockets
{
public:
    static HttpSockets &instance();

    /// Tells `whose` what happens at the socket. `what` is one of libcurl's CURL_POLL_ constants.
    /// Whether that could be done.
    bool watch(int socket, HttpConnections *whose, int what);

private:
    HttpSockets();
    void serve();

    int m_epoll = epoll_create1(EPOLL_CLOEXEC);
    std::unordered_map<int, HttpConnections *> m_owners;
};

} // namespace bridge
