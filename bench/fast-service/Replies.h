#pragma once

#include "Target.h"
#include "bus/Message.h"

#include <map>

/// Bodies of long replies, written when they are first asked for and copied from then on, so that
/// an answer costs the service no more than the memory it moves.
class Replies
{
public:
    /// ListChildren of `count` tracks.
    bridge::Message children(unsigned count);
    /// ListChildren of a container in a chain: one track and, but at the end, the next container.
    static bridge::Message chainLink(const Target &target);
    /// ListChildren of a container of containers.
    static bridge::Message containers(const Target &target);
    /// SearchObjectsEx with `count` tracks found.
    bridge::Message found(unsigned count);
    /// Anything else.
    static bridge::Message value(const bridge::Value &value);
    static bridge::Message variant(const bridge::Value &value);

private:
    std::map<unsigned, bridge::Message> m_children;
};
