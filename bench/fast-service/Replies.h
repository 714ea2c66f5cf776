#pragma once

#include "Message.h"
#include "ObjectPath.h"

#include <map>

/// Bodies of replies, written when they are first asked for and copied from then on, so that an
/// answer costs the service no more than the memory it moves.
class Replies
{
public:
    /// ListChildren of `count` tracks.
    Message children(unsigned count);
    /// ListChildren of a container in a chain: one track and, but at the end, the next container.
    Message chainLink(const ObjectPath &path);
    /// ListChildren of a container of containers.
    Message containers(const ObjectPath &path);
    /// SearchObjectsEx with `count` tracks found.
    Message found(unsigned count);
    /// GetAll of a track.
    Message track();
    /// GetAll of a server.
    Message server(const std::string &path);
    /// GetAll of a container.
    Message container(const std::string &path);

private:
    std::map<unsigned, Message> m_children;
};
