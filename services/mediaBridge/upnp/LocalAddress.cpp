#include "upnp/LocalAddress.h"

#include "core/Glib.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <ifaddrs.h>
#include <linux/rtnetlink.h>
#include <memory>
#include <net/if.h>
#include <unistd.h>

namespace bridge {

namespace {

bool canHear(unsigned flags)
{
    const bool isConnected = (flags & IFF_UP) != 0 && (flags & IFF_RUNNING) != 0;
    return isConnected && (flags & (IFF_MULTICAST | IFF_LOOPBACK)) != 0;
}

LocalAddress read(const ifaddrs &entry)
{
    LocalAddress address;
    address.interface = entry.ifa_name;
    address.index = if_nametoindex(entry.ifa_name);
    address.family = entry.ifa_addr->sa_family;
    address.isLoopback = (entry.ifa_flags & IFF_LOOPBACK) != 0;
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address.family == AF_INET) {
        const auto &ip = reinterpret_cast<const sockaddr_in *>(entry.ifa_addr)->sin_addr;
        inet_ntop(AF_INET, &ip, text.data(), text.size());
        constexpr in_addr_t linkLocal = 0xa9fe;
        address.isLinkLocal = (ntohl(ip.s_addr) >> 16) == linkLocal;
    } else {
        const auto &ip = reinterpret_cast<const sockaddr_in6 *>(entry.ifa_addr)->sin6_addr;
        inet_ntop(AF_INET6, &ip, text.data(), text.size());
        address.isLinkLocal = IN6_IS_ADDR_LINKLOCAL(&ip) != 0;
    }
    address.text = text.data();
    return address;
}

} // namespace

std::optional<std::vector<LocalAddress>> localAddresses(const std::vector<std::string> &interfaces)
{
    ifaddrs *first = nullptr;
    if (getifaddrs(&first) != 0)
        return std::nullopt;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owned(first, &freeifaddrs);
    const auto isNamed = [&](const char *name) {
        return std::find(interfaces.begin(), interfaces.end(), name) != interfaces.end();
    };
    std::vector<LocalAddress> found;
    for (const ifaddrs *entry = first; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || !canHear(entry->ifa_flags)
            || (entry->ifa_addr->sa_family != AF_INET && entry->ifa_addr->sa_family != AF_INET6))
            continue;
        if (interfaces.empty() || isNamed(entry->ifa_name))
            found.push_back(read(*entry));
    }
    const auto isOutside = [](const LocalAddress &address) {
        return !address.isLoopback;
    };
    if (interfaces.empty() && std::any_of(found.begin(), found.end(), isOutside))
        found.erase(std::partition(found.begin(), found.end(), isOutside), found.end());
    return found;
}

AddressWatch::~AddressWatch()
{
    if (m_source != 0)
        g_source_remove(m_source);
    if (m_fd >= 0)
        close(m_fd);
}

bool AddressWatch::start()
{
    m_fd = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    sockaddr_nl groups{};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (m_fd < 0 || bind(m_fd, reinterpret_cast<sockaddr *>(&groups), sizeof groups) != 0)
        return false;
    m_source = watchDescriptor(m_fd, G_IO_IN, &AddressWatch::readable, this);
    return true;
}

gboolean AddressWatch::readable(int fd, GIOCondition, gpointer self)
{
    // What changed is seen by looking at the addresses themselves; nothing can be missed that way,
    // not even where the kernel had more reports than room.
    std::array<char, 16384> report{};
    constexpr int enough = 64;
    for (int i = 0; i < enough && recv(fd, report.data(), report.size(), 0) > 0; ++i) {
    }
    static_cast<AddressWatch *>(self)->onChange();
    return G_SOURCE_CONTINUE;
}

} // namespace bridge
