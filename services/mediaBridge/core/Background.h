#pragma once

#include <functional>
#include <string>

namespace bridge {

/// A thread for work that would hold up the main loop, one piece after the other, so that only one
/// at a time takes memory. Those for whom it works take turns.
namespace background {

/// `work` runs in the thread and must share nothing with the main loop; `then` runs in the main
/// loop afterwards. `whose` as for `later`. Main thread only.
void run(const std::string &whose, std::function<void()> work, std::function<void()> then);
/// The same for a document of so many bytes; a short one is read in the main loop, as `soon` does.
void read(
    const std::string &whose, size_t bytes, std::function<void()> work, std::function<void()> then);
/// Ends the thread with the piece that it works on; what waits is dropped. For the program's end.
void stop();

} // namespace background

} // namespace bridge
