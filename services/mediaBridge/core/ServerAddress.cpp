#include "core/ServerAddress.h"

#include "core/Text.h"

#include <algorithm>
#include <tuple>

namespace bridge {

namespace {

constexpr size_t longest = 1024;
constexpr int httpPort = 80;
constexpr size_t longestQuoted = 100;

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

bool isPlain(const std::string &text)
{
    return !text.empty() && text.size() <= longest
        && std::none_of(text.begin(), text.end(),
            [](unsigned char c) { return c <= ' ' || c == 0x7f || c == '"' || c == '<'; });
}

/// Takes the scope off, and makes two forms of one host the same.
bool setHost(ServerAddress &address, std::string host)
{
    const size_t percent = host.find('%');
    if (percent != std::string::npos) {
        address.scope = host.substr(percent + 1);
        host.resize(percent);
    }
    const Ref<GInetAddress> numeric(g_inet_address_new_from_string(host.c_str()));
    if (numeric) {
        address.host = takeString(g_inet_address_to_string(numeric.get()));
        return true;
    }
    // Only an IPv6 address has colons, and only a scope a percent sign.
    address.host = takeString(g_ascii_strdown(host.c_str(), -1));
    return !host.empty() && address.scope.empty()
        && host.find_first_of(":/?#@[]\\") == std::string::npos;
}

std::optional<ServerAddress> parseUrl(const std::string &text)
{
    char *scheme = nullptr, *user = nullptr, *host = nullptr, *path = nullptr, *query = nullptr;
    int port = 0;
    const bool isUrl = g_uri_split(text.c_str(), G_URI_FLAGS_ENCODED, &scheme, &user, &host, &port,
                           &path, &query, nullptr, nullptr)
        != FALSE;
    const std::string protocol = takeString(scheme);
    const bool hasUser = user != nullptr;
    g_free(user);
    std::string name = takeString(host);
    ServerAddress address;
    address.path = takeString(path);
    if (query)
        address.path += "?" + takeString(query);
    if (address.path == "/")
        address.path.clear();
    address.port = static_cast<uint16_t>(port > 0 ? port : httpPort);
    if (const size_t percent = name.find("%25"); percent != std::string::npos)
        name.erase(percent + 1, 2);
    if (!isUrl || hasUser || g_ascii_strcasecmp(protocol.c_str(), "http") != 0
        || !setHost(address, std::move(name)))
        return std::nullopt;
    return address;
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

std::optional<ServerAddress> parseServerAddress(const std::string &text)
{
    if (!isPlain(text))
        return std::nullopt;
    if (text.find("://") != std::string::npos)
        return parseUrl(text);
    ServerAddress address;
    if (std::count(text.begin(), text.end(), ':') > 1 && text.front() != '[')
        return setHost(address, text) ? std::optional(address) : std::nullopt;
    GSocketConnectable *parsed = g_network_address_parse(text.c_str(), 0, nullptr);
    const Ref<GNetworkAddress> network(parsed ? G_NETWORK_ADDRESS(parsed) : nullptr);
    if (!network || !setHost(address, g_network_address_get_hostname(network.get())))
        return std::nullopt;
    address.port = g_network_address_get_port(network.get());
    const bool hasPort = text.back() != ']' && text.rfind(':') != std::string::npos;
    return hasPort && address.port == 0 ? std::nullopt : std::optional(address);
}

std::string notAnAddress(const std::string &text)
{
    const std::string what = "\"" + shortened(text, longestQuoted) + "\" is no address: ";
    const size_t protocol = text.find("://");
    if (protocol != std::string::npos && g_ascii_strncasecmp(text.c_str(), "http:", 5) != 0)
        return what + "media servers are asked over http:// alone.";
    if (protocol != std::string::npos && text.find('@') < text.find('/', protocol + 3))
        return what + "media servers are asked without a user name; leave it out.";
    return what
        + "give a host (nas, 10.0.0.2), a host and its port (nas:8200) or the "
          "URL of a description (http://nas:8200/rootDesc.xml).";
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
