#pragma once

#include "Failure.h"

#include <chrono>
#include <functional>

/// The bus hangs: a thread is left behind in it, so that the program has to end without tidying up.
class StuckBus : public Failure
{
public:
    /// `bus` is described for people.
    explicit StuckBus(const QString &bus);
};

/// Runs `task`, which blocks for ever where the bus hangs, in a thread of its own. Throws StuckBus
/// when it takes longer than `limit`, and what Ctrl-C throws; the thread is left behind then, so
/// the task owns what it uses.
void inTimeOnBus(
    const QString &bus, std::chrono::milliseconds limit, const std::function<void()> &task);
