#pragma once

#include "core/Timer.h"

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace bridge {

/// Lets few looks at servers be under way at a time, in all and at one host, and few begin, so that
/// whoever announces thousands of servers, or takes them back, gets neither descriptors nor time
/// from those in use. Hosts that had fewer looks come first, of these in turn the one that has
/// waited least, which comes after a flood, and the one that has waited longest, which came before
/// it. Owned by one registry; must outlive every place it gave.
class LookQueue
{
public:
    /// So many at a time.
    explicit LookQueue(size_t most)
        : m_most(most)
    {
    }

    /// A place, which is given back when the last copy goes.
    using Place = std::shared_ptr<void>;
    using Start = std::function<void(Place)>;

    /// Calls `start` when there is a place, perhaps at once; not at all where `owner` has gone. Of
    /// several hosts, the look counts for the one that had the fewest.
    void wait(std::vector<std::string> hosts, std::weak_ptr<void> owner, Start start);

private:
    struct Waiting
    {
        std::vector<std::string> hosts;
        std::weak_ptr<void> owner;
        Start start;
    };
    struct Host
    {
        unsigned underWay = 0;
        unsigned started = 0;
    };

    void forgetIdleHosts();
    const std::string &bestHost(const Waiting &waiting);
    std::list<Waiting>::iterator next();
    void startWaiting();
    void restLater();
    void giveBack(const std::string &host);

    std::list<Waiting> m_waiting;
    std::map<std::string, Host> m_hosts;
    size_t m_most;
    size_t m_underWay = 0;
    bool m_isStarting = false;
    bool m_takesOldest = false;
    /// Looks that began, but for one each 20 ms.
    unsigned m_begun = 0;
    Timer m_rest;
};

} // namespace bridge
