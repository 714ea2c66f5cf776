#pragma once

#include "core/TurnQueue.h"

#include <functional>
#include <memory>

namespace bridge {

/// Bytes of long answers that came and aren't worked off yet, for all servers together. Whoever
/// receives more waits where there are too many, so that nobody can send faster than is read.
/// Main thread only.
class Backlog
{
public:
    static Backlog &instance();

    bool isFull() const;
    /// Calls `goOn` from the main loop once there is room. `whose` as for `later`.
    void wait(const std::string &whose, std::function<void()> goOn);
    /// Counts so many bytes until the last copy goes of what it gives back, and `with` goes with
    /// it.
    std::shared_ptr<void> hold(size_t bytes, std::shared_ptr<void> with);

private:
    void release(size_t bytes);

    size_t m_bytes = 0;
    TurnQueue<std::function<void()>> m_waiting;
};

} // namespace bridge
