#include "upnp/Discovery.h"

#include "Log.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr const char *target = "urn:schemas-upnp-org:device:MediaServer:1";
// Wireless networks lose multicast packets. Asking now and then keeps a server whose announcements
// were lost from expiring.
constexpr guint rescanSeconds = 300;

std::string udnOf(const char *usn)
{
    const std::string text = usn;
    return text.substr(0, text.find("::"));
}

int rankOf(GUPnPContext *context)
{
    GInetAddress *address = gssdp_client_get_address(GSSDP_CLIENT(context));
    if (!address)
        return 3;
    const bool isIPv4 = g_inet_address_get_family(address) == G_SOCKET_FAMILY_IPV4;
    const bool isLocal = g_inet_address_get_is_link_local(address) != FALSE;
    g_object_unref(address);
    return (isIPv4 ? 0 : 1) + (isLocal ? 2 : 0);
}

std::string describe(GUPnPContext *context)
{
    return textOrEmpty(gssdp_client_get_host_ip(GSSDP_CLIENT(context))) + " on "
        + textOrEmpty(gssdp_client_get_interface(GSSDP_CLIENT(context)));
}

} // namespace

Discovery::Discovery(std::vector<std::string> interfaces)
    : m_interfaces(std::move(interfaces))
{
}

Discovery::~Discovery()
{
    if (m_rescanTimer != 0)
        g_source_remove(m_rescanTimer);
    if (m_manager)
        g_signal_handlers_disconnect_by_data(m_manager.get(), this);
    for (const auto &browser : m_browsers)
        g_signal_handlers_disconnect_by_data(browser.get(), this);
}

void Discovery::start()
{
    m_manager = Ref<GUPnPContextManager>(
        gupnp_context_manager_create_full(GSSDP_UDA_VERSION_1_0, G_SOCKET_FAMILY_INVALID, 0));
    g_signal_connect(m_manager.get(), "context-available", G_CALLBACK(contextAvailable), this);
    g_signal_connect(m_manager.get(), "context-unavailable", G_CALLBACK(contextUnavailable), this);
    m_rescanTimer = g_timeout_add_seconds(
        rescanSeconds,
        [](gpointer self) -> gboolean {
            static_cast<Discovery *>(self)->rescan();
            return G_SOURCE_CONTINUE;
        },
        this);
}

void Discovery::rescan()
{
    for (const auto &browser : m_browsers)
        gssdp_resource_browser_rescan(browser.get());
}

bool Discovery::isWanted(GUPnPContext *context) const
{
    const std::string interface = textOrEmpty(gssdp_client_get_interface(GSSDP_CLIENT(context)));
    return m_interfaces.empty()
        || std::find(m_interfaces.begin(), m_interfaces.end(), interface) != m_interfaces.end();
}

void Discovery::contextAvailable(GUPnPContextManager *, GUPnPContext *context, Discovery *self)
{
    if (!self->isWanted(context))
        return;
    logInfo("listening at " + describe(context));
    Ref<GSSDPResourceBrowser> browser(gssdp_resource_browser_new(GSSDP_CLIENT(context), target));
    gssdp_resource_browser_set_mx(browser.get(), 1);
    g_signal_connect(browser.get(), "resource-available", G_CALLBACK(resourceAvailable), self);
    g_signal_connect(browser.get(), "resource-unavailable", G_CALLBACK(resourceUnavailable), self);
    self->m_browsers.push_back(browser);
    gssdp_resource_browser_set_active(browser.get(), TRUE);
}

void Discovery::contextUnavailable(GUPnPContextManager *, GUPnPContext *context, Discovery *self)
{
    const auto found =
        std::find_if(self->m_browsers.begin(), self->m_browsers.end(), [&](const auto &browser) {
            return gssdp_resource_browser_get_client(browser.get()) == GSSDP_CLIENT(context);
        });
    if (found == self->m_browsers.end())
        return;
    logInfo("no longer listening at " + describe(context));
    const Ref<GSSDPResourceBrowser> browser = *found;
    self->m_browsers.erase(found);
    // Tells of every server that was heard there before it goes quiet.
    gssdp_resource_browser_set_active(browser.get(), FALSE);
    g_signal_handlers_disconnect_by_data(browser.get(), self);
}

void Discovery::resourceAvailable(
    GSSDPResourceBrowser *browser, const char *usn, GList *locations, Discovery *self)
{
    if (!locations)
        return;
    auto *context = GUPNP_CONTEXT(gssdp_resource_browser_get_client(browser));
    const auto *heard = static_cast<const char *>(locations->data);
    // A link-local address is of use only together with the link.
    const std::string scoped = takeString(gupnp_context_rewrite_uri(context, heard));
    const std::string location = scoped.empty() ? heard : scoped;
    logDebug(std::string("heard ") + usn + " at " + location + " through " + describe(context));
    self->onFound(udnOf(usn), {Ref<GUPnPContext>::share(context), location, rankOf(context)});
}

void Discovery::resourceUnavailable(GSSDPResourceBrowser *browser, const char *usn, Discovery *self)
{
    auto *context = GUPNP_CONTEXT(gssdp_resource_browser_get_client(browser));
    logDebug(std::string("gone: ") + usn + " through " + describe(context));
    self->onLost(udnOf(usn), context);
}

} // namespace bridge
