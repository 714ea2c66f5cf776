#include "HostileServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

sockaddr_in address(const char *host, unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host, &address.sin_addr);
    return address;
}

bool isComplete(const std::string &request)
{
    const size_t head = request.find("\r\n\r\n"), length = request.find("Content-Length: ");
    if (head == std::string::npos)
        return false;
    return length > head || request.size() >= head + 4 + std::stoul(request.substr(length + 16));
}

} // namespace

HostileServer::HostileServer(Serve serve)
    : m_serve(std::move(serve))
    , m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in own = address("10.77.0.1", 0);
    socklen_t size = sizeof own;
    bind(m_listener, reinterpret_cast<sockaddr *>(&own), size);
    listen(m_listener, 1000);
    getsockname(m_listener, reinterpret_cast<sockaddr *>(&own), &size);
    m_port = ntohs(own.sin_port);
    ++m_threads;
    std::thread([this] { accept(); }).detach();
}

HostileServer::~HostileServer()
{
    m_isEnding = true;
    shutdown(m_listener, SHUT_RDWR);
    while (m_threads > 0)
        usleep(1000);
    close(m_listener);
}

void HostileServer::announce(const std::string &udn) const
{
    ::announce(udn, "10.77.0.1", m_port);
}

void HostileServer::accept()
{
    for (int next = 0; (next = ::accept(m_listener, nullptr, nullptr)) >= 0;) {
        ++m_threads;
        std::thread([this, next] { converse(next); }).detach();
    }
    --m_threads;
}

void HostileServer::converse(int connection)
{
    const auto isReady = [&](short event) {
        pollfd waiting{connection, event, 0};
        while (!m_isEnding && poll(&waiting, 1, 50) == 0) {
        }
        return !m_isEnding;
    };
    const Send send = [&](const std::string &text) {
        for (size_t sent = 0; sent < text.size();) {
            const ssize_t now = isReady(POLLOUT) ? ::send(connection, text.data() + sent,
                                    text.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT)
                                                 : -1;
            if (now <= 0)
                return false;
            sent += size_t(now);
        }
        return true;
    };
    std::string request;
    char bytes[4096];
    for (ssize_t size = 0;
         isReady(POLLIN) && (size = recv(connection, bytes, sizeof bytes, 0)) > 0;) {
        request.append(bytes, size_t(size));
        if (!isComplete(request))
            continue;
        ++m_requests;
        m_serve(request, send);
        request.clear();
    }
    close(connection);
    --m_threads;
}

void announce(
    const std::string &udn, const char *host, unsigned short port, const std::string &moreHeaders)
{
    const std::string type = "urn:schemas-upnp-org:device:MediaServer:1";
    const std::string text = "NOTIFY * HTTP/1.1\r\nHOST: 239.255.255.250:1900\r\nCACHE-CONTROL: "
                             "max-age=1800\r\nLOCATION: http://"
        + (host + (':' + std::to_string(port))) + '/' + udn + "\r\nNT: " + type
        + "\r\nNTS: ssdp:alive\r\nUSN: " + udn + "::" + type + "\r\n" + moreHeaders + "\r\n";
    const int udp = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0), yes = 1;
    setsockopt(udp, SOL_IP, IP_TRANSPARENT, &yes, sizeof yes);
    const in_addr lan = address("10.77.0.1", 0).sin_addr;
    setsockopt(udp, SOL_IP, IP_MULTICAST_IF, &lan, sizeof lan);
    const sockaddr_in own = address(host, 0), all = address("239.255.255.250", 1900);
    bind(udp, reinterpret_cast<const sockaddr *>(&own), sizeof own);
    sendto(udp, text.data(), text.size(), 0, reinterpret_cast<const sockaddr *>(&all), sizeof all);
    close(udp);
}

std::string httpAnswer(const std::string &body, const std::string &moreHeaders)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n" + moreHeaders
        + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string description(const std::string &udn, const std::string &more)
{
    return "<root><device><deviceType>urn:schemas-upnp-org:device:MediaServer:1</deviceType>"
           "<friendlyName>Hostile</friendlyName><UDN>"
        + udn
        + "</UDN><serviceList><service><serviceType>urn:schemas-upnp-org:service:ContentDirectory:1"
          "</serviceType><controlURL>/control</controlURL></service></serviceList>"
        + more + "</device></root>";
}

std::string soapResult(const std::string &action, const std::string &values)
{
    return "<s:Envelope><s:Body><u:" + action + "Response>" + values + "</u:" + action
        + "Response></s:Body></s:Envelope>";
}

std::string times(size_t count, const std::string &text)
{
    std::string all;
    all.reserve(count * text.size());
    while (count-- > 0)
        all += text;
    return all;
}
