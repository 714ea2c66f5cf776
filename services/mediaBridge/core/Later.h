#pragma once

#include <functional>

namespace bridge {

/// Calls `work` from the main loop, in the order of these calls, a few milliseconds of them a turn:
/// thousands that come at once neither hold up everybody else nor wait until nobody else has
/// anything to do. Main thread only.
void later(std::function<void()> work);

} // namespace bridge
