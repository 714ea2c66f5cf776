#include "upnp/HttpSockets.h"

#include "Log.h"
#include "core/Glib.h"
#include "core/Limits.h"
#include "upnp/HttpConnections.h"

#include <algorithm>
#include <array>
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
            auto *const sockets = static_cast<HttpSockets *>(self);
            // Else twice a turn.
            if (!sockets->m_timer.isRunning())
                sockets->serve();
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

void HttpSockets::setDue(HttpConnections *whose, bool isDue)
{
    if (!isDue) {
        m_due.erase(whose);
        return;
    }
    m_due.insert(whose);
    if (!m_timer.isRunning())
        m_timer.start(0, [this] { serve(); });
}

void HttpSockets::serve()
{
    const int64_t now = g_get_monotonic_time();
    constexpr int64_t lately = G_USEC_PER_SEC / 4;
    if (serveForOneTurn() || now - m_countedSince > lately) {
        m_usedByMachine.clear();
        m_usedByServer.clear();
        m_usedByLast = 0;
        m_countedSince = now;
    }
    if (!m_due.empty())
        m_timer.start(0, [this] { serve(); });
}

/// Whether nothing is left to do.
bool HttpSockets::serveForOneTurn()
{
    const int64_t end = g_get_monotonic_time() + limits::turnUs;
    // One at a time: whatever is done may close the others.
    while (const auto event = next()) {
        act(*event);
        if (g_get_monotonic_time() > end)
            return false;
    }
    return true;
}

void HttpSockets::act(const Event &event)
{
    if (event.socket == CURL_SOCKET_TIMEOUT)
        m_due.erase(event.whose);
    // It may be gone afterwards.
    const std::string machine = event.whose->host();
    const int64_t took = event.whose->act(event.socket, event.events);
    m_usedByLast = usedBy(machine);
    m_usedByMachine[machine] = m_usedByLast + took;
    m_usedByServer[event.whose] += took;
}

int64_t HttpSockets::usedBy(const std::string &machine) const
{
    const auto used = m_usedByMachine.find(machine);
    return used == m_usedByMachine.end() ? m_usedByLast : std::max(used->second, m_usedByLast);
}

/// What there is to do for whom least was done.
std::optional<HttpSockets::Event> HttpSockets::next()
{
    std::optional<Event> best;
    std::pair<int64_t, int64_t> least;
    const auto offer = [&](const Event &event) {
        const auto used = std::pair(usedBy(event.whose->host()), m_usedByServer[event.whose]);
        if (!best || used < least) {
            best = event;
            least = used;
        }
    };
    for (HttpConnections *whose : m_due)
        offer({whose, CURL_SOCKET_TIMEOUT, 0});
    std::array<epoll_event, limits::requestsOfAll> ready{};
    const int count = epoll_wait(m_epoll, ready.data(), static_cast<int>(ready.size()), 0);
    for (int i = 0; i < count; ++i) {
        const auto &[events, data] = ready.at(static_cast<size_t>(i));
        const auto owner = m_owners.find(data.fd);
        if (owner == m_owners.end())
            epoll_ctl(m_epoll, EPOLL_CTL_DEL, data.fd, nullptr);
        else
            offer({owner->second, data.fd,
                ((events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0)
                    | ((events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0)});
    }
    return best;
}

} // namespace bridge
