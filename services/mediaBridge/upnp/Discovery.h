#pragma once

#include "core/Timer.h"
#include "upnp/SsdpListener.h"

#include <map>
#include <set>

namespace bridge {

/// Instead of a listener: the place is remembered from an earlier run.
inline constexpr unsigned rememberedSource = 0;
/// From here on: an address that somebody named.
inline constexpr unsigned firstNamedSource = 1U << 31;

/// One way to a media server: where it was heard, and its description's URL there.
struct Route
{
    /// The address of this machine, by a number that is never used again.
    unsigned listener = 0;
    /// An "http" URL whose host is the sender of the announcement.
    std::string location;
    /// Lower is better.
    int rank = 0;

    /// Announced by multicast, which tells of a goodbye, too.
    bool isAnnounced() const { return listener != rememberedSource && !isNamed(); }
    bool isNamed() const { return listener >= firstNamedSource; }
};

/// Listens for media servers on every address of the machine that can do multicast, loopback too
/// where nothing else is up. Addresses that come and go are followed: what is listened at is
/// compared with what there is, at the start, with every report of the kernel and now and then.
class Discovery
{
public:
    /// `interfaces` limits it to these; empty for all.
    explicit Discovery(std::vector<std::string> interfaces);
    Discovery(const Discovery &) = delete;
    Discovery &operator=(const Discovery &) = delete;

    /// A server said that it is there, and for how many seconds that is to be believed; the same
    /// server is heard once per address, and again and again.
    std::function<void(const std::string &udn, const Route &, unsigned maxAge)> onHeard;
    /// Somebody said that the server goes.
    std::function<void(const std::string &udn, unsigned listener)> onGoodbye;
    /// The address is gone, and what was heard there with it.
    std::function<void(unsigned listener)> onListenerGone;

    /// Starts to listen and sends the first search.
    void start();
    /// Searches again on every address.
    void rescan();

    /// An address has come so lately that servers may not have answered the search there yet.
    bool isSearching() const;
    /// There is no other network than the machine's own.
    bool isAtLoopback() const;
    /// Where media servers can be heard: "10.0.0.2 on eth0".
    std::vector<std::string> listening() const;
    /// What keeps servers from being heard or used, in sentences; bounded.
    std::vector<std::string> troubles() const;

private:
    void reconcile();
    void dropGone(std::vector<LocalAddress> &wanted);
    bool add(const LocalAddress &address);
    void received(unsigned id, const SsdpMessage &message, const std::string &sender);
    void searchOn(size_t round);

    std::vector<std::string> m_interfaces;
    AddressWatch m_watch;
    std::map<unsigned, std::unique_ptr<SsdpListener>> m_listeners;
    unsigned m_nextListener = 1;
    /// Listeners that hear nothing any more.
    std::set<unsigned> m_broken;
    /// How often in a row some address could not be listened at.
    unsigned m_failedRounds = 0;
    /// By address: why it can't be listened at.
    std::map<std::string, std::string> m_deaf;
    /// By sender: what is wrong with its announcements.
    std::map<std::string, std::string> m_odd;
    Timer m_change;
    Timer m_compare;
    Timer m_search;
    int64_t m_searched = 0;
    /// When the last address came.
    int64_t m_addedAt = 0;
};

} // namespace bridge
