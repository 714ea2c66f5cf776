#include "upnp/HttpSockets.h"

#include "Log.h"
#include "core/Glib.h"
#include "core/Limits.h"
#include "upnp/HttpConnections.h"

#include <cerrno>
#include <cstring>

namespace bridge {

HttpSockets &HttpSockets::instance()
{
    // Connections that are closed at the program's end come here.
    static auto &only = *new HttpSockets;
    return only;
}

HttpSockets::HttpSockets()
{
    if (m_epoll < 0) {
        logWarning("no media server can be asked: " + std::string(std::strerror(errno)));
        return;
    }
    watchDescriptor(
        m_epoll, G_IO_IN,
        [](int, GIOCondition, gpointer self) -> gboolean {
            static_cast<HttpSockets *>(self)->serve();
            return G_SOURCE_CONTINUE;
        },
        this);
}

bool HttpSockets::watch(int socket, HttpConnections *whose, int what)
{
    epoll_event event{};
    event.events = ((what & CURL_POLL_IN) != 0 ? unsigned{EPOLLIN} : 0U)
        | ((what & CURL_POLL_OUT) != 0 ? unsigned{EPOLLOUT} : 0U);
    event.data.fd = socket;
    if (event.events == 0) {
        epoll_ctl(m_epoll, EPOLL_CTL_DEL, socket, nullptr);
        m_owners.erase(socket);
        return true;
    }
    m_owners[socket] = whose;
    return epoll_ctl(m_epoll, EPOLL_CTL_MOD, socket, &event) == 0
        || epoll_ctl(m_epoll, EPOLL_CTL_ADD, socket, &event) == 0;
}

/// For a short time of a turn. One at a time: whatever is done may close the others.
void HttpSockets::serve()
{
    const int64_t end = g_get_monotonic_time() + limits::turnUs;
    epoll_event event{};
    while (epoll_wait(m_epoll, &event, 1, 0) > 0) {
        const int events = ((event.events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0)
            | ((event.events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0);
        const auto owner = m_owners.find(event.data.fd);
        if (owner == m_owners.end())
            epoll_ctl(m_epoll, EPOLL_CTL_DEL, event.data.fd, nullptr);
        else
            owner->second->act(event.data.fd, events);
        if (g_get_monotonic_time() > end)
            return;
    }
}

} // namespace bridge
