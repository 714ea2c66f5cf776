#pragma once

#include <functional>
#include <glib.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <tuple>
#include <vector>

namespace bridge {

/// An address of this machine at which media servers can be heard.
struct LocalAddress
{
    std::string interface;
    /// The kernel's number for the interface. One that is made anew has another.
    unsigned index = 0;
    int family = AF_INET;
    /// Without a scope.
    std::string text;
    /// Good on one link only (169.254.0.0/16, fe80::/10).
    bool isLinkLocal = false;
    bool isLoopback = false;

    /// Lower is better: IPv4, then IPv6, then addresses that are good on one link only.
    int rank() const { return (family == AF_INET ? 0 : 1) + (isLinkLocal ? 2 : 0); }
    bool operator==(const LocalAddress &other) const
    {
        return std::tie(index, interface, text)
            == std::tie(other.index, other.interface, other.text);
    }
};

/// The addresses of interfaces that are up, connected and can do multicast; the loopback's where
/// there is no other. `interfaces` limits it to these; empty for all. Nothing comes back where the
/// kernel didn't say.
std::optional<std::vector<LocalAddress>> localAddresses(const std::vector<std::string> &interfaces);

/// Tells when the kernel reports a change of links or addresses.
class AddressWatch
{
public:
    AddressWatch() = default;
    ~AddressWatch();
    AddressWatch(const AddressWatch &) = delete;
    AddressWatch &operator=(const AddressWatch &) = delete;

    /// May be called several times for one change.
    std::function<void()> onChange;

    /// False where the kernel gives no such reports.
    bool start();

private:
    static gboolean readable(int fd, GIOCondition, gpointer self);

    int m_fd = -1;
    guint m_source = 0;
};

} // namespace bridge
