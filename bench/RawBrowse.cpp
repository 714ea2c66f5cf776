#include "RawBrowse.h"

#include "core/Didl.h"
#include "core/Properties.h"
#include "core/SoapMessage.h"

#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const char serviceType[] = "urn:schemas-upnp-org:service:ContentDirectory:1";

const std::vector<std::string> askedFor = {"Type", "TypeEx", "MIMEType", "DisplayName", "Artist",
    "Album", "AlbumArtURL", "URLs", "Creator", "Genre", "Path", "Date", "TrackNumber", "Duration",
    "Bitrate", "SampleRate", "BitsPerSample"};

[[noreturn]] void fail()
{
    std::perror("The media server could not be asked directly");
    std::exit(3);
}

/// Sends all and receives to the end.
std::string converse(int socket, const std::string &request)
{
    if (send(socket, request.data(), request.size(), 0) != ssize_t(request.size()))
        fail();
    std::array<char, 65536> buffer;
    std::string answer;
    ssize_t length = 0;
    while ((length = recv(socket, buffer.data(), buffer.size(), 0)) > 0)
        answer.append(buffer.data(), std::size_t(length));
    if (length < 0)
        fail();
    return answer;
}

} // namespace

RawBrowse::RawBrowse(const std::string &address, int port, const std::string &controlPath)
    : m_head("POST " + controlPath + " HTTP/1.1\r\nHost: " + address + ":" + std::to_string(port)
        + "\r\nConnection: close\r\nContent-Type: text/xml; charset=\"utf-8\"\r\nSOAPAction: \""
        + serviceType + "#Browse\"\r\nContent-Length: ")
{
    m_server.sin_family = AF_INET;
    m_server.sin_port = htons(uint16_t(port));
    if (inet_pton(AF_INET, address.c_str(), &m_server.sin_addr) != 1)
        fail();
}

void RawBrowse::list(const std::string &container, int first, int count) const
{
    answer(container, first, count);
}

std::size_t RawBrowse::read(const std::string &container, int first, int count) const
{
    const std::string text = answer(container, first, count);
    auto soap = bridge::parseSoapAnswer(text.substr(text.find("\r\n\r\n") + 4), "Browse");
    const auto list = bridge::parseDidl(std::move(soap.values["Result"]));
    return list ? list->objects.size() : 0;
}

std::string RawBrowse::answer(const std::string &container, int first, int count) const
{
    using namespace bridge;
    const std::string body = soapEnvelope(serviceType, "Browse",
        {{"ObjectID", container}, {"BrowseFlag", "BrowseDirectChildren"},
            {"Filter", didlFilter(propertySetFromFilter(askedFor))},
            {"StartingIndex", std::to_string(first)}, {"RequestedCount", std::to_string(count)},
            {"SortCriteria", ""}});
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(connection, reinterpret_cast<const sockaddr *>(&m_server), sizeof m_server) != 0)
        fail();
    std::string answer =
        converse(connection, m_head + std::to_string(body.size()) + "\r\n\r\n" + body);
    close(connection);
    if (answer.find(" 200 ") > 12)
        fail();
    return answer;
}
