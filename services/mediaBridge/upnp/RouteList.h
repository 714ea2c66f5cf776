#pragma once

#include "upnp/Discovery.h"

namespace bridge {

/// The ways to one server, in the order in which they are to be tried: those it has always had
/// before those that anybody might have announced since, then by rank. Eight at most, and few of
/// one machine that were never seen to be right.
class RouteList
{
public:
    enum class Heard { Known, New };

    /// A route was announced, and is believed until `expires` (microseconds of the monotonic
    /// clock). `isTrusted`: there is no other that it could take over from. A ninth takes the place
    /// of the oldest that was never seen to be right, or is ignored.
    Heard hear(const Route &route, int64_t expires, bool isTrusted);
    /// The description was there, so the route counts as one the server has always had.
    void confirm(const Route &route);
    /// Somebody said goodbye there: its routes stay only while they answer, as do those on which
    /// no goodbye is ever heard.
    void doubt(unsigned listener);
    /// The same for routes whose time is over; true where that made any doubtful.
    bool doubtExpired(int64_t now);
    bool isDoubted(const Route &route) const;
    bool isTrusted(const Route &route) const;
    bool areAllDoubted() const;

    void drop(unsigned listener);
    void drop(const Route &route);
    void dropDoubted();

    bool isEmpty() const { return m_routes.empty(); }
    std::vector<Route> inOrder() const;
    /// The machines that they lead to.
    std::vector<std::string> hosts() const;
    /// It was announced at the remembered place in an earlier run only.
    bool isOnlyRemembered() const;
    /// One of them came from a named address.
    bool isNamed() const;
    /// The first source's number where there are routes of named addresses only.
    std::optional<unsigned> namedSource() const;
    /// When the next route's time is over; 0 where none is waited for.
    int64_t nextExpiry() const;

private:
    struct Entry : Route
    {
        int64_t expires = 0;
        std::string host;
        bool isTrusted = false;
        /// The description was there.
        bool isConfirmed = false;
        bool isDoubted = false;
    };
    std::vector<Entry>::iterator find(const Route &route);
    std::vector<Entry>::const_iterator find(const Route &route) const;
    bool makeRoom(const std::string &host);

    std::vector<Entry> m_routes;
};

} // namespace bridge
