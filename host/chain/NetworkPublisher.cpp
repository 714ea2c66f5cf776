#include "chain/NetworkPublisher.h"

#include <api/core/CMValueItem.h>
#include <api/core/OrkaValue.h>
#include <api/core/orka.h>

#include <QFileInfo>
#include <QSocketNotifier>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Addresses = OrkaList<OrkaNetworkAddress>;

bool isWireless(const char *interface)
{
    return QFileInfo::exists(
        QStringLiteral("/sys/class/net/%1/wireless").arg(QString::fromLocal8Bit(interface)));
}

/// The numeric address, empty for one that nobody else could reach.
QString reachableIpv4(const sockaddr *address)
{
    const in_addr ip = reinterpret_cast<const sockaddr_in *>(address)->sin_addr;
    const bool linkLocal = (ntohl(ip.s_addr) >> 16) == 0xa9fe; // 169.254.0.0/16
    char text[INET_ADDRSTRLEN] = {};
    return linkLocal ? QString() : QString::fromLatin1(inet_ntop(AF_INET, &ip, text, sizeof(text)));
}

QString reachableIpv6(const sockaddr *address)
{
    const in6_addr ip = reinterpret_cast<const sockaddr_in6 *>(address)->sin6_addr;
    char text[INET6_ADDRSTRLEN] = {};
    return IN6_IS_ADDR_LINKLOCAL(&ip)
        ? QString()
        : QString::fromLatin1(inet_ntop(AF_INET6, &ip, text, sizeof(text)));
}

struct AddressesByKind
{
    Addresses wired;
    Addresses wireless;

    void add(const ifaddrs &entry, const QString &ip)
    {
        OrkaNetworkAddress address;
        address.setIp(ip);
        (isWireless(entry.ifa_name) ? wireless : wired).append(address);
    }
};

void addFamily(AddressesByKind &found, const ifaddrs *entries, int family)
{
    for (const ifaddrs *entry = entries; entry != nullptr; entry = entry->ifa_next) {
        const bool usable = (entry->ifa_flags & IFF_UP) != 0
            && (entry->ifa_flags & IFF_LOOPBACK) == 0 && entry->ifa_addr != nullptr
            && entry->ifa_addr->sa_family == family;
        if (!usable)
            continue;
        const QString ip =
            family == AF_INET ? reachableIpv4(entry->ifa_addr) : reachableIpv6(entry->ifa_addr);
        if (!ip.isEmpty())
            found.add(*entry, ip);
    }
}

} // namespace

NetworkPublisher::NetworkPublisher(QObject *parent)
    : QObject(parent)
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(500);
    connect(&m_settle, &QTimer::timeout, this, &NetworkPublisher::publish);
    openNetlink();
    publish();
}

NetworkPublisher::~NetworkPublisher()
{
    delete findChild<QSocketNotifier *>(); // before its descriptor
    if (m_netlink >= 0)
        close(m_netlink);
}

OrkaNetworkInfo NetworkPublisher::currentInfo()
{
    AddressesByKind found;
    ifaddrs *entries = nullptr;
    if (getifaddrs(&entries) == 0) {
        const std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> owner(entries, freeifaddrs);
        addFamily(found, entries, AF_INET);
        addFamily(found, entries, AF_INET6);
    }
    OrkaNetworkWiredInterface wired;
    wired.setAddresses(found.wired);
    OrkaNetworkWirelessInterface wireless;
    wireless.setAddresses(found.wireless);
    OrkaNetworkInfo info;
    info.setWired(wired);
    info.setWireless(wireless);
    return info;
}

QStringList NetworkPublisher::currentAddresses()
{
    const OrkaNetworkInfo info = currentInfo();
    QStringList addresses;
    for (const QVariantHash &address : info.wired().addresses() + info.wireless().addresses())
        addresses.append(OrkaNetworkAddress(OrkaHash(address)).ip());
    return addresses;
}

void NetworkPublisher::openNetlink()
{
    m_netlink = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    sockaddr_nl groups = {};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (m_netlink < 0
        || bind(m_netlink, reinterpret_cast<const sockaddr *>(&groups), sizeof(groups)) != 0) {
        return; // changes go unnoticed; the addresses at the start are published all the same
    }
    auto *notifier = new QSocketNotifier(m_netlink, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        drainNetlink();
        if (!m_settle.isActive()) { // a steady stream of changes can't put it off for ever
            m_settle.start();
        }
    });
}

void NetworkPublisher::drainNetlink() const
{
    char buffer[8192];
    while (recv(m_netlink, buffer, sizeof(buffer), 0) > 0) {
        // What changed doesn't matter: all addresses are read anew.
    }
}

void NetworkPublisher::publish()
{
    OrkaValue value;
    value.setNetworkInfo(currentInfo());
    CMValueStore::setValue(OrkaNetworkInfoPath(), value);
}
