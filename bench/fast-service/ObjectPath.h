#pragma once

#include <string>

/// What an object path of the fast service asks for. Paths below a server are the hex digits of a
/// text: "rows1000" is a container of 1,000 tracks, "deep30" one at the top of a chain of 30
/// containers, each with one track, "wide1000" one of 1,000 containers, each with one track. A
/// server itself is a container of 1,000, everything else of 20.
struct ObjectPath
{
    enum Kind { Rows, Deep, Wide };

    explicit ObjectPath(const std::string &path);
    /// The path of the object `text` below the same server.
    std::string sibling(const std::string &text) const;

    std::string server;
    Kind kind = Rows;
    unsigned number = 20;
    /// The path is a server's own.
    bool isServer = false;
};

/// The object path of server `number`, from 0.
std::string serverPath(unsigned number);
/// The number of the server with this object path.
unsigned serverNumber(const std::string &path);
