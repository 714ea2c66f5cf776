#include "upnp/HttpUrl.h"

#include "core/Glib.h"
#include "core/Numbers.h"

#include <algorithm>

namespace bridge {

std::optional<HttpUrl> parseHttpUrl(const std::string &text)
{
    char *host = nullptr;
    char *scheme = nullptr;
    int port = -1;
    if (g_uri_split(text.c_str(), G_URI_FLAGS_NONE, &scheme, nullptr, &host, &port, nullptr,
            nullptr, nullptr, nullptr)
        == FALSE)
        return std::nullopt;
    const std::string protocol = takeString(scheme);
    HttpUrl url;
    url.host = takeString(host);
    if (port >= 0)
        url.port = port;
    if (g_ascii_strcasecmp(protocol.c_str(), "http") != 0 || url.host.empty() || namesUser(text))
        return std::nullopt;
    const bool hasScope = url.host.find('%') != std::string::npos;
    url.host.resize(std::min(url.host.find('%'), url.host.size()));
    const Ref<GInetAddress> address(g_inet_address_new_from_string(url.host.c_str()));
    url.isNumeric = bool(address);
    if (address) {
        url.host = takeString(g_inet_address_to_string(address.get()));
        url.isLoopback = g_inet_address_get_is_loopback(address.get()) != FALSE;
        url.isIPv6LinkLocal = g_inet_address_get_family(address.get()) == G_SOCKET_FAMILY_IPV6
            && g_inet_address_get_is_link_local(address.get()) != FALSE;
    }
    // In a name, and behind an IPv4 address, it would make another host of what stands in front.
    if (hasScope && !url.isIPv6LinkLocal)
        return std::nullopt;
    return url;
}

bool namesUser(const std::string &url)
{
    char *user = nullptr;
    g_uri_split(url.c_str(), G_URI_FLAGS_NONE, nullptr, &user, nullptr, nullptr, nullptr, nullptr,
        nullptr, nullptr);
    const bool isNamed = user != nullptr;
    g_free(user);
    return isNamed;
}

std::string hostOf(const std::string &url)
{
    const auto parts = parseHttpUrl(url);
    return parts ? parts->host : std::string();
}

std::string withScope(const std::string &url, unsigned interfaceIndex)
{
    const size_t end = url.find(']');
    const auto parts = parseHttpUrl(url);
    if (!parts || !parts->isIPv6LinkLocal || end == std::string::npos)
        return url;
    const size_t scope = std::min(url.find('%'), end);
    return url.substr(0, scope) + "%25" + std::to_string(interfaceIndex) + url.substr(end);
}

std::string withScopeOf(const std::string &url, const std::string &other)
{
    const size_t scope = other.find("%25");
    const auto index = scope == std::string::npos
        ? std::nullopt
        : parseAs<uint32_t>(std::string_view(other).substr(scope + 3));
    return index ? withScope(url, *index) : url;
}

} // namespace bridge
