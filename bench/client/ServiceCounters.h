#pragma once

#include <QtGlobal>

/// What the fast service has counted. Blocks for its answer, so it is asked outside of what is
/// measured.
struct ServiceCounters
{
    /// Calls since the last time that somebody asked.
    uint calls = 0;
    /// When a property of a server was last answered: seconds of the monotonic clock.
    double lastProperty = 0;

    static ServiceCounters read();
};
