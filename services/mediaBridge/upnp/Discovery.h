#pragma once

#include "core/Glib.h"

#include <functional>
#include <libgupnp/gupnp.h>
#include <string>
#include <vector>

namespace bridge {

/// One way to a media server: where it was heard, and its description's URL there.
struct Route
{
    Ref<GUPnPContext> context;
    std::string location;
    /// Better routes are lower: IPv4, then IPv6, then addresses that are good on one link only.
    int rank = 0;
};

/// Listens for media servers on every address of the machine that can do multicast, loopback too
/// where nothing else is up, and follows addresses as they come and go.
class Discovery
{
public:
    /// `interfaces` limits it to these; empty for all.
    explicit Discovery(std::vector<std::string> interfaces);
    ~Discovery();
    Discovery(const Discovery &) = delete;
    Discovery &operator=(const Discovery &) = delete;

    /// Called per address and server; the same server comes once per address.
    std::function<void(const std::string &udn, const Route &)> onFound;
    /// The server said goodbye there, fell silent, or the address is gone.
    std::function<void(const std::string &udn, GUPnPContext *)> onLost;

    /// Starts to listen and sends the first search.
    void start();
    /// Searches again on every address.
    void rescan();

private:
    static void contextAvailable(GUPnPContextManager *, GUPnPContext *context, Discovery *self);
    static void contextUnavailable(GUPnPContextManager *, GUPnPContext *context, Discovery *self);
    static void resourceAvailable(
        GSSDPResourceBrowser *browser, const char *usn, GList *locations, Discovery *self);
    static void resourceUnavailable(
        GSSDPResourceBrowser *browser, const char *usn, Discovery *self);
    bool isWanted(GUPnPContext *context) const;

    std::vector<std::string> m_interfaces;
    Ref<GUPnPContextManager> m_manager;
    std::vector<Ref<GSSDPResourceBrowser>> m_browsers;
    guint m_rescanTimer = 0;
};

} // namespace bridge
