#pragma once

#include <functional>

namespace bridge {

/// A thread for work that would hold up the main loop, one piece after the other, so that only one
/// at a time takes memory.
namespace background {

/// `work` runs in the thread and must share nothing with the main loop; `then` runs in the main
/// loop afterwards. Main thread only.
void run(std::function<void()> work, std::function<void()> then);
/// Ends the thread with the piece that it works on; what waits is dropped. For the program's end.
void stop();

} // namespace background

} // namespace bridge
