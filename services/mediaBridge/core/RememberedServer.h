#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bridge {

/// A server as it is remembered from one run of the program to the next.
struct RememberedServer
{
    std::string udn;
    /// URL of its description.
    std::string location;
    std::string name;
    /// The address by which it was found, where that was not by multicast.
    std::string address;
    /// Seconds since 1970.
    int64_t lastSeen = 0;
    /// Starts in a row at which it wasn't where it had been.
    unsigned missed = 0;
};

/// Reads what `printServers` made. A text that is damaged or of another version gives no servers,
/// one that names a server badly the others. Those that weren't seen for 30 days before `now` or
/// were missed three times are left out.
std::vector<RememberedServer> parseServers(const std::string &text, int64_t now);

/// The 64 that were seen last.
std::string printServers(std::vector<RememberedServer> servers);

} // namespace bridge
