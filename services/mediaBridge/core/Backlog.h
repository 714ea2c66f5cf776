#pragma once

#include "core/TurnQueue.h"

#include <functional>
#include <memory>

namespace bridge {

/// Long answers of all servers: a few are received at a time, and none while too many bytes wait to
/// be worked off, so that nobody can send faster than is read. Machines take turns. Main thread
/// only.
class Backlog
{
public:
    /// Held while an answer is received, never null; may be let go earlier.
    using Seat = std::shared_ptr<void>;

    static Backlog &instance();

    /// Calls `goOn` from the main loop once one more may be received. `whose` as for `later`.
    void receive(const std::string &whose, std::function<void(Seat)> goOn);
    /// Counts so many bytes until the last copy goes of what it gives back, and `with` goes with
    /// it.
    std::shared_ptr<void> hold(size_t bytes, std::shared_ptr<void> with);

private:
    void serve();

    size_t m_bytes = 0;
    unsigned m_receiving = 0;
    TurnQueue<std::function<void(Seat)>> m_waiting;
};

} // namespace bridge
