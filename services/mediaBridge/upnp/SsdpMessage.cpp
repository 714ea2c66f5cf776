#include "upnp/SsdpMessage.h"

#include "core/Glib.h"
#include "core/Limits.h"
#include "core/Numbers.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace bridge {

namespace {

constexpr std::string_view mediaServer = "urn:schemas-upnp-org:device:MediaServer:";

/// By their names in small letters.
using Headers = std::map<std::string, std::string>;

std::string header(const Headers &headers, const char *name)
{
    const auto found = headers.find(name);
    return found == headers.end() ? std::string() : found->second;
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

std::string stripped(const std::string &text)
{
    constexpr const char *blanks = " \t\r";
    const size_t begin = text.find_first_not_of(blanks);
    return begin == std::string::npos
        ? std::string()
        : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

bool isStart(const std::string &line, bool isNotify)
{
    if (isNotify)
        return line.find(" HTTP/1.") != std::string::npos;
    const std::string status = line.substr(std::min(line.find(' '), line.size()));
    return line.compare(0, 7, "HTTP/1.") == 0 && (status + ' ').compare(0, 5, " 200 ") == 0;
}

/// Header lines of a NOTIFY or of an answer; none for anything else.
Headers parseHeaders(const std::string &packet, bool isNotify)
{
    std::istringstream lines(packet);
    std::string line;
    Headers headers;
    if (!std::getline(lines, line) || !isStart(stripped(line), isNotify))
        return {};
    while (std::getline(lines, line)) {
        const size_t colon = line.find(':');
        if (colon != std::string::npos)
            headers[stripped(takeString(g_ascii_strdown(line.substr(0, colon).c_str(), -1)))] =
                stripped(line.substr(colon + 1));
    }
    return headers;
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
    if (header(headers, isNotify ? "nt" : "st").compare(0, mediaServer.size(), mediaServer) != 0)
        return std::nullopt;
    const std::string usn = header(headers, "usn");
    SsdpMessage message;
    message.udn = usn.substr(0, usn.find("::"));
    message.location = header(headers, "location");
    message.maxAge = maxAgeOf(header(headers, "cache-control"));
    if (isNotify) {
        const std::string kind = header(headers, "nts");
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
