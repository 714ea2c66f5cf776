#include "ServerAddress.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <net/if.h>
#include <strings.h>
#include <tuple>

namespace bridge {

namespace {

constexpr size_t longest = 1024;
constexpr int httpPort = 80;
constexpr size_t longestQuoted = 100;
constexpr std::string_view afterProtocol = "://";

/// Where common servers have their descriptions, unless somebody chose another port.
struct UsualPlace
{
    int port;
    const char *path;
};
constexpr UsualPlace usualPlaces[] = {{8200, "/rootDesc.xml"}, // MiniDLNA
    {49152, "/description.xml"}, // Gerbera, and others on libupnp
    {49000, "/MediaServerDevDesc.xml"}, // FRITZ!Box
    {50001, "/desc/device.xml"}, // Synology
    {8895, "/deviceDescription/MediaServer"}, // Serviio
    {32469, "/DeviceDescription.xml"}}; // Plex

// Why a text is no address.
const std::string noForm = "give a host (nas, 10.0.0.2), a host and its port (nas:8200) or the "
                           "URL of a description (http://nas:8200/rootDesc.xml).";
const std::string otherProtocol = "media servers are asked over http:// alone.";
const std::string hasUser = "media servers are asked without a user name; leave it out.";
const std::string badPort = "ports go from 1 to 65535.";
const std::string noInterface = "it is good on one link only; name the network interface, as in "
                                "\"fe80::1%eth0\".";
const std::string needlessInterface = "only addresses that begin with fe80 have a network "
                                      "interface (%); leave it out.";

bool isPlain(const std::string &text)
{
    return !text.empty() && text.size() <= longest
        && std::none_of(text.begin(), text.end(),
            [](unsigned char c) { return c <= ' ' || c == 0x7f || c == '"' || c == '<'; });
}

bool isLetterOrDigit(unsigned char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Of host names and network interfaces; names may be in any script.
bool isName(const std::string &text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return isLetterOrDigit(c) || c >= 0x80 || c == '.' || c == '-' || c == '_';
    });
}

/// The shortest form of a numeric address; empty where it is none.
std::string numeric(int family, const std::string &host)
{
    in6_addr address{};
    char text[INET6_ADDRSTRLEN];
    return inet_pton(family, host.c_str(), &address) == 1
            && inet_ntop(family, &address, text, sizeof text) != nullptr
        ? text
        : std::string();
}

bool isLinkLocal(const std::string &ipv6)
{
    in6_addr address{};
    return inet_pton(AF_INET6, ipv6.c_str(), &address) == 1 && IN6_IS_ADDR_LINKLOCAL(&address);
}

/// "eth0" of "25eth0", as it stands in URLs.
std::string withoutEscape(const std::string &scope)
{
    return scope.size() > 2 && scope.compare(0, 2, "25") == 0 ? scope.substr(2) : scope;
}

/// An IPv6 address, of which two forms become the same. Returns what is wrong.
std::string setIPv6(ServerAddress &address, const std::string &text)
{
    const size_t percent = text.find('%');
    address.host = numeric(AF_INET6, text.substr(0, percent));
    if (address.host.empty())
        return noForm;
    if (percent == std::string::npos)
        return isLinkLocal(address.host) ? noInterface : std::string();
    address.scope = withoutEscape(text.substr(percent + 1));
    if (!isName(address.scope) || address.scope.size() >= IF_NAMESIZE)
        return noInterface;
    return isLinkLocal(address.host) ? std::string() : needlessInterface;
}

/// The same for a name or an IPv4 address.
std::string setName(ServerAddress &address, const std::string &text)
{
    address.host = numeric(AF_INET, text);
    if (!address.host.empty())
        return {};
    if (!isName(text))
        return text.find('%') == std::string::npos ? noForm : needlessInterface;
    address.host = text;
    std::transform(text.begin(), text.end(), address.host.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return {};
}

/// Behind a colon.
std::string setPort(ServerAddress &address, std::string_view digits)
{
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
    return isNumber && address.port != 0 ? std::string() : badPort;
}

/// "nas", "nas:8200", "[::1]", "[::1]:8200".
std::string setHostAndPort(ServerAddress &address, const std::string &text)
{
    const size_t bracket = text.front() == '[' ? text.find(']') : 0;
    const size_t colon = bracket == std::string::npos ? bracket : text.find(':', bracket);
    const std::string host = text.substr(0, colon);
    const bool isIPv6 = bracket != 0;
    if (host.empty() || (isIPv6 && host.back() != ']'))
        return noForm;
    const std::string problem =
        isIPv6 ? setIPv6(address, host.substr(1, host.size() - 2)) : setName(address, host);
    return problem.empty() && colon != std::string::npos
        ? setPort(address, std::string_view(text).substr(colon + 1))
        : problem;
}

std::string setUrl(ServerAddress &address, const std::string &text, size_t protocol)
{
    if (strncasecmp(text.c_str(), "http://", 7) != 0)
        return otherProtocol;
    const size_t start = protocol + afterProtocol.size();
    const size_t end = text.find_first_of("/?#", start);
    const std::string place = text.substr(start, end - start);
    if (place.find('@') != std::string::npos)
        return hasUser;
    if (place.empty())
        return noForm;
    if (end != std::string::npos)
        address.path = text.substr(end, text.find('#', end) - end);
    if (address.path == "/")
        address.path.clear();
    const std::string problem = setHostAndPort(address, place);
    if (address.port == 0)
        address.port = httpPort;
    return problem;
}

/// Returns what is wrong.
std::string setAddress(ServerAddress &address, const std::string &text)
{
    if (!isPlain(text))
        return noForm;
    const size_t protocol = text.find(afterProtocol);
    if (protocol != std::string::npos)
        return setUrl(address, text, protocol);
    return std::count(text.begin(), text.end(), ':') > 1 && text.front() != '['
        ? setIPv6(address, text)
        : setHostAndPort(address, text);
}

/// Of UTF-8, whole ones in so many bytes.
std::string firstCharacters(const std::string &text, size_t bytes)
{
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xc0U) == 0x80U)
        --bytes;
    return text.substr(0, bytes);
}

std::string withPort(const std::string &host, int port)
{
    return port == 0 ? host : host + ":" + std::to_string(port);
}

} // namespace

bool ServerAddress::operator==(const ServerAddress &other) const
{
    return std::tie(host, scope, port, path)
        == std::tie(other.host, other.scope, other.port, other.path);
}

std::string ServerAddress::text() const
{
    const bool isIPv6 = host.find(':') != std::string::npos;
    std::string full = scope.empty() ? host : host + (path.empty() ? "%" : "%25") + scope;
    if (isIPv6 && port != 0)
        full = "[" + full + "]";
    if (path.empty())
        return withPort(full, port);
    return "http://" + withPort(full, port == httpPort ? 0 : port) + path;
}

std::optional<ServerAddress> parseServerAddress(const std::string &text, std::string *problem)
{
    ServerAddress address;
    const std::string why = setAddress(address, text);
    if (why.empty())
        return address;
    if (problem) {
        std::string shown = withoutPassword(text);
        if (shown.size() > longestQuoted)
            shown = firstCharacters(shown, longestQuoted) + "…";
        *problem = "\"" + shown + "\" is no address of a media server: " + why;
    }
    return std::nullopt;
}

std::string withoutPassword(const std::string &text)
{
    // Whatever stands in a password, the host stands behind the last of these.
    const size_t end = text.rfind('@');
    ServerAddress address;
    if (end == std::string::npos || setAddress(address, text).empty())
        return text;
    const size_t protocol = text.find(afterProtocol);
    const size_t start =
        protocol == std::string::npos || protocol > end ? 0 : protocol + afterProtocol.size();
    return text.substr(0, start) + "…" + text.substr(end);
}

std::vector<std::string> descriptionUrls(
    const ServerAddress &address, const std::string &numericHost)
{
    const auto url = [&](int port, const std::string &path) {
        return "http://" + withPort(numericHost, port) + path;
    };
    if (!address.path.empty())
        return {url(address.port, address.path)};
    std::vector<std::string> urls;
    if (address.port != 0)
        urls.push_back(url(address.port, "/"));
    for (const UsualPlace &place : usualPlaces)
        urls.push_back(url(address.port != 0 ? address.port : place.port, place.path));
    return urls;
}

std::string urlHost(std::string_view numeric, unsigned scope)
{
    if (numeric.find(':') == std::string_view::npos)
        return std::string(numeric);
    const std::string zone = scope == 0 ? std::string() : "%25" + std::to_string(scope);
    return "[" + std::string(numeric) + zone + "]";
}

} // namespace bridge
