#include "Announcer.h"

#include <QNetworkInterface>

#include <libgssdp/gssdp.h>
#include <map>

namespace {

constexpr unsigned maxAgeSeconds = 1800;

/// An interface that a test has removed is no news.
GLogWriterOutput dropSsdpWarnings(
    GLogLevelFlags level, const GLogField *fields, gsize count, gpointer data)
{
    for (gsize i = 0; i < count; ++i) {
        if (g_str_equal(fields[i].key, "GLIB_DOMAIN")
            && g_str_equal(fields[i].value, "gssdp-client"))
            return G_LOG_WRITER_HANDLED;
    }
    return g_log_writer_default(level, fields, count, data);
}

/// One client an address, shared by all servers of the process: each client hears every packet of
/// the network.
GSSDPClient *clientFor(const QString &interface, const QString &address)
{
    static std::map<QString, GSSDPClient *> clients;
    if (clients.empty())
        g_log_set_writer_func(dropSsdpWarnings, nullptr, nullptr);
    const auto known = clients.find(address);
    if (known != clients.end())
        return known->second;
    GInetAddress *inet = g_inet_address_new_from_string(qPrintable(address));
    GError *error = nullptr;
    GSSDPClient *client =
        gssdp_client_new_full(qPrintable(interface), inet, 0, GSSDP_UDA_VERSION_1_0, &error);
    g_object_unref(inet);
    if (error) {
        g_printerr(
            "No SSDP on %s %s: %s\n", qPrintable(interface), qPrintable(address), error->message);
        g_error_free(error);
        return nullptr;
    }
    return clients[address] = client;
}

GSSDPResourceGroup *announce(GSSDPClient *client, const std::string &id, const std::string &url)
{
    GSSDPResourceGroup *group = gssdp_resource_group_new(client);
    gssdp_resource_group_set_max_age(group, maxAgeSeconds);
    gssdp_resource_group_set_message_delay(group, 2);
    gssdp_resource_group_add_resource_simple(group, id.c_str(), id.c_str(), url.c_str());
    for (const char *type : {"upnp:rootdevice", "urn:schemas-upnp-org:device:MediaServer:1",
             "urn:schemas-upnp-org:service:ContentDirectory:1"}) {
        const std::string usn = id + "::" + type;
        gssdp_resource_group_add_resource_simple(group, type, usn.c_str(), url.c_str());
    }
    gssdp_resource_group_set_available(group, TRUE);
    return group;
}

} // namespace

Announcer::Announcer(const QString &udn, quint16 port)
{
    constexpr auto wanted = QNetworkInterface::IsUp | QNetworkInterface::CanMulticast;
    for (const QNetworkInterface &interface : QNetworkInterface::allInterfaces()) {
        if ((interface.flags() & (wanted | QNetworkInterface::IsLoopBack)) != wanted)
            continue;
        for (const QNetworkAddressEntry &entry : interface.addressEntries()) {
            const QString address = entry.ip().toString();
            GSSDPClient *client =
                entry.ip().isLinkLocal() ? nullptr : clientFor(interface.name(), address);
            const QString host = address.contains(':') ? '[' + address + ']' : address;
            const QString url = "http://" + host + ':' + QString::number(port);
            if (client)
                m_groups.push_back(
                    announce(client, udn.toStdString(), url.toStdString() + "/description.xml"));
        }
    }
}

Announcer::~Announcer()
{
    for (GSSDPResourceGroup *group : m_groups)
        g_object_unref(group);
}

void Announcer::silence()
{
    for (GSSDPResourceGroup *group : m_groups) {
        GSSDPClient *client = gssdp_resource_group_get_client(group);
        g_object_set(client, "active", FALSE, nullptr);
        g_object_unref(group);
        g_object_set(client, "active", TRUE, nullptr);
    }
    m_groups.clear();
}
