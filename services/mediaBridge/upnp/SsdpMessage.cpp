#include "upnp/SsdpMessage.h"

#include "core/Glib.h"
#include "core/Limits.h"
#include "core/Numbers.h"

#include <algorithm>
#include <libsoup/soup.h>
#include <memory>

namespace bridge {

namespace {

constexpr std::string_view mediaServer = "urn:schemas-upnp-org:device:MediaServer:";

struct HeadersDeleter
{
    void operator()(SoupMessageHeaders *headers) const { soup_message_headers_unref(headers); }
};
using Headers = std::unique_ptr<SoupMessageHeaders, HeadersDeleter>;

std::string header(const Headers &headers, const char *name)
{
    return textOrEmpty(soup_message_headers_get_one(headers.get(), name));
}

bool isProper(const std::string &text, size_t maxLength)
{
    return !text.empty() && text.size() <= maxLength
        && std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

unsigned maxAgeOf(const std::string &cacheControl)
{
    const size_t name = cacheControl.find("max-age");
    const size_t digits = cacheControl.find_first_of("0123456789", name);
    if (name == std::string::npos || digits == std::string::npos)
        return SsdpMessage().maxAge;
    const auto age = parseAs<uint32_t>(cacheControl.substr(digits));
    return std::clamp(age.value_or(limits::announcementSeconds), 1U, limits::announcementSeconds);
}

/// Header lines of a NOTIFY or of an answer; null for anything else.
Headers parseHeaders(const std::string &packet, bool isNotify)
{
    const auto length = static_cast<int>(packet.size());
    Headers headers(soup_message_headers_new(
        isNotify ? SOUP_MESSAGE_HEADERS_REQUEST : SOUP_MESSAGE_HEADERS_RESPONSE));
    guint status = SOUP_STATUS_OK;
    const bool isRead = isNotify ? soup_headers_parse_request(packet.data(), length, headers.get(),
                                       nullptr, nullptr, nullptr)
            == SOUP_STATUS_OK
                                 : soup_headers_parse_response(packet.data(), length, headers.get(),
                                       nullptr, &status, nullptr)
            != FALSE;
    return isRead && status == SOUP_STATUS_OK ? std::move(headers) : nullptr;
}

} // namespace

std::optional<SsdpMessage> parseSsdp(std::string_view packet)
{
    // Most of what is said on a network is about other things.
    if (packet.find(mediaServer) == std::string_view::npos
        || std::count(packet.begin(), packet.end(), '\n') > limits::packetLines)
        return std::nullopt;
    const size_t end = packet.find("\r\n\r\n");
    const std::string text(packet.substr(0, end == std::string_view::npos ? end : end + 2));
    const bool isNotify = text.compare(0, 7, "NOTIFY ") == 0;
    const Headers headers = parseHeaders(text, isNotify);
    if (!headers
        || header(headers, isNotify ? "NT" : "ST").compare(0, mediaServer.size(), mediaServer) != 0)
        return std::nullopt;
    const std::string usn = header(headers, "USN");
    SsdpMessage message;
    message.udn = usn.substr(0, usn.find("::"));
    message.location = header(headers, "Location");
    message.maxAge = maxAgeOf(header(headers, "Cache-Control"));
    if (isNotify) {
        const std::string kind = header(headers, "NTS");
        message.isGoodbye = kind == "ssdp:byebye";
        if (!message.isGoodbye && kind != "ssdp:alive")
            return std::nullopt;
    }
    if (!isProperUdn(message.udn)
        || (!message.isGoodbye && !isProper(message.location, limits::locationBytes)))
        return std::nullopt;
    return message;
}

bool isProperUdn(const std::string &udn)
{
    return isProper(udn, limits::udnBytes);
}

std::string ssdpSearch(const std::string &host)
{
    return "M-SEARCH * HTTP/1.1\r\nHOST: " + host + "\r\nMAN: \"ssdp:discover\"\r\nMX: 1\r\nST: "
        + std::string(mediaServer) + "1\r\nUSER-AGENT: Linux UPnP/1.0 orka-media-bridge\r\n\r\n";
}

} // namespace bridge
