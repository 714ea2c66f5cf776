#pragma once

#include "core/MediaObject.h"

#include <limits>
#include <optional>

namespace bridge {

/// What a DIDL-Lite document holds, in its order.
struct DidlList
{
    std::vector<MediaObject> objects;
    /// False where the document is malformed or cut: what comes after the last object is lost.
    bool isWhole = true;
    /// The next object is malformed itself, rather than cut.
    bool endsAtFault = false;
};

/// Reading ends behind `maxObjects`; texts and lists of an object have bounds of their own.
/// Nothing comes back only where the text isn't DIDL-Lite at all; an empty text is an empty list.
/// Whatever an object lacks or has wrong costs that one value; only one whose end isn't there is
/// left out.
std::optional<DidlList> parseDidl(
    std::string didl, size_t maxObjects = std::numeric_limits<uint32_t>::max());

} // namespace bridge
