#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace bridge {

/// What a media server says of itself on the network: that it is there, or that it goes.
struct SsdpMessage
{
    /// Such as "uuid:4d69…"; 1 to 128 printable characters.
    std::string udn;
    bool isGoodbye = false;
    /// URL of its description; empty for a goodbye. Not checked yet.
    std::string location;
    /// Seconds for which it counts as there unless it says so again, 1 to 86,400.
    unsigned maxAge = 1800;
};

/// Reads an announcement (NOTIFY) or an answer to a search. Nothing comes back for what isn't about
/// a media server, or has no proper name or place.
std::optional<SsdpMessage> parseSsdp(std::string_view packet);

/// The search for media servers, as it is sent to `host` ("239.255.255.250:1900",
/// "[ff02::c]:1900").
std::string ssdpSearch(const std::string &host);

/// Whether a UDN is printable and not too long, as every one has to be.
bool isProperUdn(const std::string &udn);

} // namespace bridge
