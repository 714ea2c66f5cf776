#pragma once

#include "core/Timer.h"
#include "upnp/Discovery.h"

#include <map>

namespace bridge {

/// Announcements of servers that aren't known yet. A few are taken a hundredth of a second, and the
/// machines that announced them take turns: a flood of names costs little, and keeps nobody else's
/// server waiting for long. Main thread only.
class Newcomers
{
public:
    struct Announcement
    {
        std::string udn;
        Route route;
        unsigned maxAge = 0;
    };
    using Take = std::function<void(const Announcement &)>;

    explicit Newcomers(Take take)
        : m_take(std::move(take))
    {
    }

    /// `take` may be called from inside this call. Where a machine, or all of them, have
    /// announced too many, the newest is dropped: it will be announced again.
    void add(Announcement announcement);

private:
    void takeSome();

    Take m_take;
    /// By machine, then by UDN.
    std::map<std::string, std::map<std::string, Announcement>> m_waiting;
    size_t m_count = 0;
    std::string m_lastHost;
    Timer m_next;
};

} // namespace bridge
