#pragma once

#include <QString>

/// How many calls a program may have waiting for their replies on a bus, found out by trying: one
/// connection of ours calls another that never answers.
struct PendingReplies
{
    /// How many calls the bus took.
    int taken = 0;
    /// Whether it refused one for being too many; else the limit is above `taken`.
    bool limited = false;
    /// Why nothing could be measured; empty where it could.
    QString error;
};

/// `bus` as in the options; at most `most` calls are tried. Throws StuckBus, which calls the bus
/// `description`, where it hangs.
PendingReplies measurePendingReplies(
    const QString &bus, const QString &description, int most = 2048);
