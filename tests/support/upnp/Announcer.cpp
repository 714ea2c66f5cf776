#include "Announcer.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <libgssdp/gssdp.h>
#include <map>
#include <net/if.h>
#include <vector>

namespace {

constexpr unsigned maxAgeSeconds = 1800;

template<typename T>
using GObjectPtr = std::unique_ptr<T, decltype(&g_object_unref)>;

/// An interface that a test has removed is no news.
GLogWriterOutput dropSsdpWarnings(
    GLogLevelFlags level, const GLogField *fields, gsize count, gpointer data)
{
    for (gsize i = 0; i < count; ++i)
        if (g_str_equal(fields[i].key, "GLIB_DOMAIN")
            && g_str_equal(fields[i].value, "gssdp-client"))
            return G_LOG_WRITER_HANDLED;
    return g_log_writer_default(level, fields, count, data);
}

/// One client an address, shared by all servers of the process: each client hears every packet of
/// the network.
GSSDPClient *clientFor(const char *interface, const char *address)
{
    static std::map<std::string, GSSDPClient *> clients;
    if (clients.empty())
        g_log_set_writer_func(dropSsdpWarnings, nullptr, nullptr);
    const auto known = clients.find(address);
    if (known != clients.end())
        return known->second;
    const GObjectPtr<GInetAddress> inet(g_inet_address_new_from_string(address), g_object_unref);
    GError *error = nullptr;
    GSSDPClient *client =
        gssdp_client_new_full(interface, inet.get(), 0, GSSDP_UDA_VERSION_1_0, &error);
    if (error) {
        g_printerr("No SSDP on %s %s: %s\n", interface, address, error->message);
        g_error_free(error);
        return nullptr;
    }
    return clients[address] = client;
}

struct Address
{
    std::string interface, text;
    bool v6;
};

std::vector<Address> addresses()
{
    std::vector<Address> found;
    ifaddrs *list = nullptr;
    if (getifaddrs(&list) != 0)
        return found;
    for (const ifaddrs *it = list; it; it = it->ifa_next) {
        constexpr unsigned wanted = IFF_UP | IFF_MULTICAST;
        if (!it->ifa_addr || (it->ifa_flags & (wanted | IFF_LOOPBACK)) != wanted)
            continue;
        char text[INET6_ADDRSTRLEN] = "";
        const int family = it->ifa_addr->sa_family;
        if (family == AF_INET)
            inet_ntop(family, &reinterpret_cast<sockaddr_in *>(it->ifa_addr)->sin_addr, text,
                sizeof text);
        else if (family == AF_INET6)
            inet_ntop(family, &reinterpret_cast<sockaddr_in6 *>(it->ifa_addr)->sin6_addr, text,
                sizeof text);
        const std::string address = text;
        if (!address.empty() && address.rfind("fe80:", 0) != 0)
            found.push_back({it->ifa_name, address, family == AF_INET6});
    }
    freeifaddrs(list);
    return found;
}

} // namespace

struct Announcer::Private
{
    std::vector<GSSDPResourceGroup *> groups;
};

Announcer::Announcer(const QString &udn, quint16 port)
    : d(new Private)
{
    const std::string id = udn.toStdString();
    const std::vector<std::string> types{"urn:schemas-upnp-org:device:MediaServer:1",
        "urn:schemas-upnp-org:service:ContentDirectory:1",
        "urn:schemas-upnp-org:service:ConnectionManager:1"};
    for (const Address &address : addresses()) {
        GSSDPClient *client = clientFor(address.interface.c_str(), address.text.c_str());
        if (!client)
            continue;
        const std::string host = address.v6 ? "[" + address.text + "]" : address.text;
        const std::string location =
            "http://" + host + ":" + std::to_string(port) + "/description.xml";
        GSSDPResourceGroup *group = gssdp_resource_group_new(client);
        gssdp_resource_group_set_max_age(group, maxAgeSeconds);
        gssdp_resource_group_set_message_delay(group, 2);
        const auto announce = [&](const std::string &target, const std::string &usn) {
            gssdp_resource_group_add_resource_simple(
                group, target.c_str(), usn.c_str(), location.c_str());
        };
        announce("upnp:rootdevice", id + "::upnp:rootdevice");
        announce(id, id);
        for (const std::string &type : types)
            announce(type, id + "::" + type);
        gssdp_resource_group_set_available(group, TRUE);
        d->groups.push_back(group);
    }
}

Announcer::~Announcer()
{
    for (GSSDPResourceGroup *group : d->groups)
        g_object_unref(group);
}

void Announcer::silence()
{
    for (GSSDPResourceGroup *group : d->groups) {
        GSSDPClient *client = gssdp_resource_group_get_client(group);
        g_object_set(client, "active", FALSE, nullptr);
        g_object_unref(group);
        g_object_set(client, "active", TRUE, nullptr);
    }
    d->groups.clear();
}

int Announcer::addressCount() const
{
    return int(d->groups.size());
}
