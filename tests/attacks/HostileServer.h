#pragma once

#include <atomic>
#include <functional>
#include <string>

/// Sends bytes on a connection; false once nobody takes them any more.
using Send = std::function<bool(const std::string &)>;
/// Answers one request, which is given with its body.
using Serve = std::function<void(const std::string &request, const Send &send)>;

/// A media server of plain sockets and threads at 10.77.0.1, which may answer anything.
class HostileServer
{
public:
    explicit HostileServer(Serve serve);
    /// Closes every connection and leaves without a word.
    ~HostileServer();

    /// Says that a device with this UDN is here; its description stands at its name.
    void announce(const std::string &udn) const;
    int requests() const { return m_requests; }

private:
    void accept();
    void converse(int connection);

    Serve m_serve;
    int m_listener;
    unsigned short m_port = 0;
    std::atomic<bool> m_isEnding{false};
    std::atomic<int> m_requests{0};
    std::atomic<int> m_threads{0};
};

/// Announces a device, also from an address that no interface has.
void announce(const std::string &udn, const char *host, unsigned short port,
    const std::string &moreHeaders = {});
/// A complete answer.
std::string httpAnswer(const std::string &body, const std::string &moreHeaders = {});
/// A description with this in front of the end of its device element.
std::string description(const std::string &udn, const std::string &more = {});
std::string soapResult(const std::string &action, const std::string &values);
/// A text so many times.
std::string times(size_t count, const std::string &text);
