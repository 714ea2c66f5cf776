#pragma once

#include "core/MediaObject.h"

#include <optional>
#include <string_view>

namespace bridge {

/// Reads the objects of a DIDL-Lite document, in its order. Nothing comes back only where the text
/// isn't DIDL-Lite at all; an empty text, like an empty document, is an empty list. Whatever an
/// object lacks or has wrong costs that one value: an object is never dropped, and characters that
/// XML forbids are skipped. May be called on any thread.
std::optional<std::vector<MediaObject>> parseDidl(std::string_view didl);

} // namespace bridge
