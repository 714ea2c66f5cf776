#pragma once

#include <functional>
#include <string>

namespace bridge {

/// Calls `work` from the main loop, a few milliseconds of all of it a turn: thousands that come at
/// once neither hold up everybody else nor wait until nobody else has anything to do. What is done
/// for the same `whose` (a machine on the network; empty for the bridge itself) keeps its order,
/// and those who wait take turns. Main thread only.
void later(std::function<void()> work, const std::string &whose = {});
/// The same, but at once, from inside this call, where nothing waits and little was done so lately.
void soon(const std::function<void()> &work, const std::string &whose);

} // namespace bridge
