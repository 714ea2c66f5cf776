#pragma once

#include "core/Failure.h"
#include "core/RememberedServer.h"
#include "upnp/AddressLook.h"

#include <list>

namespace bridge {

/// The addresses at which somebody wants media servers to be looked for, where multicast may not
/// reach. While nothing is there, each is looked at again, ever more seldom but once a minute at
/// least. A server that is there is asked for its description once a minute, since no goodbye of
/// its may be heard. Owned by the registry; main thread only.
class NamedServers
{
public:
    /// What was named led to the server at this D-Bus path; or the failure's name isn't empty.
    using Reached = std::function<void(const std::string &path, const Failure &)>;

    /// A server was heard there; false where it can't be followed.
    std::function<bool(const std::string &udn, const Route &, unsigned maxAge)> onHeard;
    /// The address was forgotten, and what was heard there with it.
    std::function<void(unsigned source)> onSourceGone;
    /// What was found by this address in an earlier run.
    std::function<std::vector<RememberedServer>(const std::string &address)> recall;
    /// Looks whether the server at this path still answers.
    std::function<void(const std::string &path)> onCheck;
    /// Whether the server at this path is available.
    std::function<bool(const std::string &path)> isThere;

    /// Looks there at once and from now on. `reached` may be empty; else it is called once, perhaps
    /// at once, and after 20 seconds at the latest.
    void add(const ServerAddress &address, Reached reached);
    void forget(const ServerAddress &address);
    /// Looks at every address.
    void rescan();

    /// The server at `path` has become available, or is so no longer.
    void changed(const std::string &path, bool isThereNow);
    /// A look at it brought nothing, and why.
    void failed(const std::string &path, const std::string &problem);

    /// The address behind a route's source; empty where there is none.
    std::string addressOf(unsigned source) const;
    /// Something is there at every address.
    bool areAllThere() const;
    /// For each address where nothing is, why; a sentence each.
    std::vector<std::string> troubles() const;

private:
    struct Server
    {
        std::string udn;
        Route route;
        unsigned maxAge = 0;
        /// Why it can't be used; empty where it can, and where that isn't known yet.
        std::string problem;
    };
    struct Named
    {
        ServerAddress address;
        unsigned source = 0;
        std::shared_ptr<AddressLook> look;
        /// What was heard there, by path.
        std::map<std::string, Server> servers;
        /// Why the last look heard nothing.
        std::string problem;
        unsigned failures = 0;
        std::vector<Reached> waiting;
        Timer next;
        Timer patience;
    };

    std::list<Named>::iterator find(const ServerAddress &address);
    void askRemembered(Named &named);
    void look(Named &named);
    void check(Named &named);
    void lookLater(Named &named);
    void heard(Named &named, const std::string &udn, const Route &route, unsigned maxAge);
    void looked(Named &named, const std::string &problem);
    void settle(Named &named, bool mustEnd = false);
    std::string pathThere(const Named &named) const;
    std::string problemOf(const Named &named) const;

    std::list<Named> m_named;
    unsigned m_nextSource = firstNamedSource;
};

} // namespace bridge
