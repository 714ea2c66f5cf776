#pragma once

#include "core/MediaObject.h"

namespace bridge {

/// Bits per second. UPnP counts bytes, many servers count bits all the same, so the figure is held
/// against size and duration where both are known, and these count where it is more than four times
/// off either way. Absent where the server gave no figure, or one
/// that doesn't fit 32 bits.
std::optional<int32_t> bitsPerSecond(const Resource &resource);

} // namespace bridge
