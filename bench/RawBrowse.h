#pragma once

#include <netinet/in.h>
#include <string>

/// A ContentDirectory listing asked of a media server straight over its socket. Blocking; ends the
/// program with a sentence when the server doesn't answer.
class RawBrowse
{
public:
    /// The server's numeric IPv4 address, its port and the path of its control URL.
    RawBrowse(const std::string &address, int port, const std::string &controlPath);

    /// `count` children of `container` from `first` on, with the properties that the plug-in asks
    /// for. The answer is received and not read.
    void list(const std::string &container, int first, int count) const;
    /// The same, with the answer's objects read; gives how many there are.
    std::size_t read(const std::string &container, int first, int count) const;

private:
    std::string answer(const std::string &container, int first, int count) const;

    sockaddr_in m_server = {};
    std::string m_head;
};
