#pragma once

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>

namespace bridge {

/// Lets few looks at unknown servers be under way at a time, in all and at one host, so that
/// whoever announces thousands of servers takes neither descriptors nor time from those in use.
/// Hosts that had fewer looks come first, of these the one that was heard last. Owned by one
/// registry; must outlive every place it gave.
class LookQueue
{
public:
    /// A place, which is given back when the last copy goes.
    using Place = std::shared_ptr<void>;
    using Start = std::function<void(Place)>;

    /// Calls `start` when there is a place, perhaps at once; not at all where `owner` has gone.
    void wait(const std::string &host, std::weak_ptr<void> owner, Start start);

private:
    struct Waiting
    {
        std::string host;
        std::weak_ptr<void> owner;
        Start start;
    };
    struct Host
    {
        unsigned underWay = 0;
        unsigned started = 0;
    };

    void forgetIdleHosts();
    std::list<Waiting>::iterator next();
    void startWaiting();
    void giveBack(const std::string &host);

    std::list<Waiting> m_waiting;
    std::map<std::string, Host> m_hosts;
    unsigned m_underWay = 0;
    bool m_isStarting = false;
};

} // namespace bridge
