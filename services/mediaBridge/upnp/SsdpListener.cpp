#include "upnp/SsdpListener.h"

#include "Log.h"
#include "core/Glib.h"
#include "core/Limits.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace bridge {

namespace {

constexpr uint16_t ssdpPort = 1900;
// How long one socket rests; where many hear the same, each rests longer.
constexpr unsigned shortestRestMs = 2;
unsigned openSockets = 0;
// As many routers as UPnP wants its packets to cross.
constexpr int hops = 4;

struct SocketAddress
{
    SocketAddress() = default;
    SocketAddress(int family, const std::string &text, uint16_t port, unsigned scope)
    {
        if (family == AF_INET) {
            auto &ip = reinterpret_cast<sockaddr_in &>(storage);
            ip.sin_family = AF_INET;
            ip.sin_port = htons(port);
            inet_pton(AF_INET, text.c_str(), &ip.sin_addr);
            size = sizeof(sockaddr_in);
        } else {
            auto &ip = reinterpret_cast<sockaddr_in6 &>(storage);
            ip.sin6_family = AF_INET6;
            ip.sin6_port = htons(port);
            ip.sin6_scope_id = scope;
            inet_pton(AF_INET6, text.c_str(), &ip.sin6_addr);
            size = sizeof(sockaddr_in6);
        }
    }
    sockaddr *get() { return reinterpret_cast<sockaddr *>(&storage); }
    std::string text() const
    {
        const bool isIPv4 = storage.ss_family == AF_INET;
        const void *ip = isIPv4
            ? static_cast<const void *>(&reinterpret_cast<const sockaddr_in &>(storage).sin_addr)
            : &reinterpret_cast<const sockaddr_in6 &>(storage).sin6_addr;
        std::array<char, INET6_ADDRSTRLEN> buffer{};
        inet_ntop(storage.ss_family, ip, buffer.data(), buffer.size());
        return buffer.data();
    }

    sockaddr_storage storage{};
    socklen_t size = sizeof storage;
};

} // namespace

UdpSocket::~UdpSocket()
{
    if (m_source != 0)
        g_source_remove(m_source);
    if (m_fd < 0)
        return;
    close(m_fd);
    --openSockets;
}

bool UdpSocket::open(int family)
{
    m_family = family;
    m_fd = socket(family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    openSockets += m_fd >= 0 ? 1 : 0;
    return m_fd >= 0;
}

bool UdpSocket::set(int level, int option, const void *value, size_t size) const
{
    return setsockopt(m_fd, level, option, value, static_cast<socklen_t>(size)) == 0;
}

bool UdpSocket::bind(const std::string &address, uint16_t port, unsigned scope) const
{
    SocketAddress local(m_family, address, port, scope);
    return ::bind(m_fd, local.get(), local.size) == 0;
}

bool UdpSocket::send(
    const std::string &text, const std::string &address, uint16_t port, unsigned scope) const
{
    SocketAddress to(m_family, address, port, scope);
    return sendto(m_fd, text.data(), text.size(), MSG_NOSIGNAL, to.get(), to.size) >= 0;
}

void UdpSocket::listen()
{
    m_source = watchDescriptor(m_fd, G_IO_IN, &UdpSocket::readable, this);
}

gboolean UdpSocket::readable(int, GIOCondition, gpointer self)
{
    auto *socket = static_cast<UdpSocket *>(self);
    socket->m_source = 0;
    socket->readSome();
    return G_SOURCE_REMOVE;
}

/// Rests afterwards, so that a flood of packets neither takes all the time nor makes the main loop
/// turn for each.
void UdpSocket::readSome()
{
    for (int i = 0; i < limits::packetsAtOnce; ++i) {
        if (receive())
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            onBroken();
            return;
        }
        break;
    }
    m_rest.start(std::max(shortestRestMs, openSockets / 2), [this] { listen(); });
}

bool UdpSocket::receive() const
{
    std::array<char, limits::packetBytes> packet;
    SocketAddress from;
    const ssize_t size =
        recvfrom(m_fd, packet.data(), packet.size(), MSG_TRUNC, from.get(), &from.size);
    if (size < 0)
        return false;
    if (static_cast<size_t>(size) <= packet.size())
        onPacket({packet.data(), static_cast<size_t>(size)}, from.text());
    return true;
}

SsdpListener::SsdpListener(LocalAddress address)
    : m_address(std::move(address))
{
    // Which group a server takes for an address beyond the link, its library decides.
    if (m_address.family == AF_INET)
        m_groups = {"239.255.255.250"};
    else if (m_address.isLinkLocal)
        m_groups = {"ff02::c"};
    else
        m_groups = {"ff05::c", "ff0e::c"};
    for (UdpSocket *socket : {&m_notify, &m_search}) {
        socket->onPacket = [this](std::string_view packet, const std::string &sender) {
            if (const auto message = parseSsdp(packet))
                onMessage(*message, sender);
        };
        socket->onBroken = [this] {
            onBroken();
        };
    }
}

std::string SsdpListener::start()
{
    if (!openNotifySocket() || !openSearchSocket())
        return strerror(errno);
    m_notify.listen();
    m_search.listen();
    return {};
}

bool SsdpListener::openNotifySocket()
{
    const bool isIPv4 = m_address.family == AF_INET;
    if (!m_notify.open(m_address.family) || !m_notify.set(SOL_SOCKET, SO_REUSEADDR, 1))
        return false;
    // Only what comes through this interface; each has a listener of its own. For IPv6 the kernel
    // looks at the group alone, and the same link-local address is another machine on another link.
    // (Before Linux 5.7 only the superuser may choose.)
    const auto index = static_cast<int>(m_address.index);
    if (isIPv4) {
        m_notify.set(IPPROTO_IP, IP_MULTICAST_ALL, 0);
    } else {
        m_notify.set(IPPROTO_IPV6, IPV6_MULTICAST_ALL, 0);
        m_notify.set(SOL_SOCKET, SO_BINDTOIFINDEX, index);
    }
    if (!isIPv4 && !m_notify.set(IPPROTO_IPV6, IPV6_V6ONLY, 1))
        return false;
    if (!m_notify.bind(isIPv4 ? m_groups.front() : "::", ssdpPort, 0))
        return false;
    for (const std::string &group : m_groups) {
        bool isJoined = false;
        if (isIPv4) {
            ip_mreqn membership{};
            inet_pton(AF_INET, group.c_str(), &membership.imr_multiaddr);
            membership.imr_ifindex = index;
            isJoined = m_notify.set(IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership);
        } else {
            ipv6_mreq membership{};
            inet_pton(AF_INET6, group.c_str(), &membership.ipv6mr_multiaddr);
            membership.ipv6mr_interface = m_address.index;
            isJoined = m_notify.set(IPPROTO_IPV6, IPV6_JOIN_GROUP, &membership, sizeof membership);
        }
        if (!isJoined)
            return false;
    }
    return true;
}

bool SsdpListener::openSearchSocket()
{
    const auto index = static_cast<int>(m_address.index);
    if (!m_search.open(m_address.family))
        return false;
    if (m_address.family == AF_INET) {
        ip_mreqn from{};
        inet_pton(AF_INET, m_address.text.c_str(), &from.imr_address);
        from.imr_ifindex = index;
        return m_search.set(IPPROTO_IP, IP_MULTICAST_IF, &from, sizeof from)
            && m_search.set(IPPROTO_IP, IP_MULTICAST_TTL, hops)
            && m_search.bind(m_address.text, 0, 0);
    }
    return m_search.set(IPPROTO_IPV6, IPV6_MULTICAST_IF, index)
        && m_search.set(IPPROTO_IPV6, IPV6_MULTICAST_HOPS, hops)
        && m_search.bind(m_address.text, 0, m_address.isLinkLocal ? m_address.index : 0);
}

void SsdpListener::search()
{
    for (const std::string &group : m_groups) {
        const std::string host = m_address.family == AF_INET ? group : "[" + group + "]";
        if (!m_search.send(ssdpSearch(host + ":1900"), group, ssdpPort, m_address.index))
            logDebug("no search from " + m_address.text + " on " + m_address.interface + ": "
                + strerror(errno));
    }
}

} // namespace bridge
