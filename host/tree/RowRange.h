#pragma once

#include <QString>

/// Rows from `first` to `last`, inclusive, counted from 0.
struct RowRange
{
    int first = 0;
    /// Where nobody named a range: as far as there are rows.
    int last = everything;

    static constexpr int everything = 2147483646;
    bool isOpen() const { return last == everything; }
};

/// "A-B" as written on the command line. Throws Failure (wrong usage) for anything else, also
/// where B is before A or too big.
RowRange parseRowRange(const QString &text);

/// "START,END,STEP": positions from 0, the end inclusive, a step of at least 1.
struct SampleRange
{
    int start = 0;
    int end = 0;
    int step = 1;

    /// How many positions there are; a worker answers at most as many rows.
    int positions() const { return (end - start) / step + 1; }
    QString toString() const;
};

SampleRange parseSampleRange(const QString &text);
