#pragma once

#include <string>

/// What an object path of the fast service asks for. The object ids below a server are texts:
/// "rows1000" is a container of 1,000 tracks, "deep30" one at the top of a chain of 30 containers,
/// each with one track, "wide1000" one of 1,000 containers, each with one track. A server itself is
/// a container of 1,000, everything else of 20.
struct Target
{
    enum Kind { Rows, Deep, Wide };

    explicit Target(const std::string &path);
    /// The path of the object `id` below the same server.
    std::string sibling(const std::string &id) const;

    /// The server's path.
    std::string server;
    Kind kind = Rows;
    unsigned number = 20;
    /// The path is the server's own.
    bool isServer = false;
};

/// The UDN and the object path of server `number`, from 0.
std::string udnOf(unsigned number);
std::string serverPath(unsigned number);
/// The number of the server with this object path.
unsigned serverNumber(const std::string &path);
