#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How people name a media server by its address, for the bridge and the host: what one takes, the
/// other takes, too.
namespace bridge {

/// Where somebody wants a media server to be looked for: a host, a host and a port, or the URL of
/// its description.
struct ServerAddress
{
    /// A name in small letters or a numeric address, without brackets and scope.
    std::string host;
    /// The interface that a link-local IPv6 address is good on, by name or number; such an address
    /// alone has one.
    std::string scope;
    /// 0 where none was given.
    uint16_t port = 0;
    /// With its query; "/" and nothing count as none.
    std::string path;

    bool operator==(const ServerAddress &other) const;
    /// In its shortest form: "nas", "10.0.0.2:8200", "http://[fe80::1%25eth0]/d.xml".
    std::string text() const;
};

/// Nothing where `text` is none, and why in a sentence: longer than 1,024 bytes, another protocol
/// than "http", a user name. The interface may stand behind "%" or "%25".
std::optional<ServerAddress> parseServerAddress(
    const std::string &text, std::string *problem = nullptr);

/// `text` as it may be shown: where it is no address, without all that may be a password in it.
std::string withoutPassword(const std::string &text);

/// URLs at which the description may be, once the host is known by its number. `numericHost` is as
/// it stands in a URL. With a path it is one; else those of common servers.
std::vector<std::string> descriptionUrls(
    const ServerAddress &address, const std::string &numericHost);

/// `numeric` as it stands in a URL, in brackets where it is an IPv6 address; `scope` is the number
/// of the interface, 0 for none.
std::string urlHost(std::string_view numeric, unsigned scope);

} // namespace bridge
