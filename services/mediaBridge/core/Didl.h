#pragma once

#include "core/MediaObject.h"

#include <limits>
#include <optional>

namespace bridge {

/// What a DIDL-Lite document holds, in its order.
struct DidlList
{
    std::vector<MediaObject> objects;
    /// False where the document is malformed: what comes after the last object is lost, and with it
    /// perhaps a part of that object.
    bool isWhole = true;
};

/// Reading ends behind `maxObjects`; texts and lists of an object have bounds of their own.
/// Nothing comes back only where the text isn't DIDL-Lite at all; an empty text is an empty list.
/// Whatever an object lacks or has wrong costs that one value: an object is never dropped.
std::optional<DidlList> parseDidl(
    std::string didl, size_t maxObjects = std::numeric_limits<uint32_t>::max());

} // namespace bridge
