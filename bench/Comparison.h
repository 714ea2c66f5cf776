#pragma once

#include <QVariant>

#include <functional>

/// Two ways to the same answer, in turns: one round is the one, then the other; what counts is the
/// median of the rounds' ratios, so that what else the machine does falls on both.
struct Comparison
{
    using Work = std::function<QVariant()>;

    const char *name;
    /// Of each side in one round.
    int repetitions;
    double seconds;
    /// What it is measured against, and its name.
    Work base;
    const char *baseName;
    Work plugin;

    /// Reports the ratio, and the median time of both sides in microseconds. Throwing the answers
    /// away isn't measured.
    void run() const;
};
