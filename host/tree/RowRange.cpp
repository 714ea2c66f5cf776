#include "tree/RowRange.h"

#include "Failure.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QStringList>

namespace {

/// Digits alone, below 2147483647; -1 for anything else.
int parsePosition(const QString &text)
{
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return -1;
    }
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value <= RowRange::everything ? value : -1;
}

} // namespace

RowRange parseRowRange(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('-'));
    const int first = parsePosition(parts.value(0));
    const int last = parsePosition(parts.value(1));
    if (parts.size() != 2 || first < 0 || last < 0) {
        throw wrongUsage(Text::tr("%1 is no range of rows. Write the first and the last row, "
                                  "counted from 0, like --rows 0-19.")
                             .arg(quoted(text)));
    }
    if (last < first) {
        throw wrongUsage(Text::tr("The range of rows %1 ends before it begins. Write the "
                                  "smaller number first, like --rows 0-19.")
                             .arg(quoted(text)));
    }
    return {first, last};
}

QString SampleRange::toString() const
{
    return QStringLiteral("%1,%2,%3").arg(start).arg(end).arg(step);
}

SampleRange parseSampleRange(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    const SampleRange range{parsePosition(parts.value(0)), parsePosition(parts.value(1)),
        parsePosition(parts.value(2))};
    if (parts.size() != 3 || range.start < 0 || range.end < 0 || range.step < 0) {
        throw wrongUsage(Text::tr("%1 is no sample. Write START,END,STEP: positions counted "
                                  "from 0 and the distance between two of them, like "
                                  "0,9999,100.")
                             .arg(quoted(text)));
    }
    if (range.step < 1) {
        throw wrongUsage(Text::tr("A sample with step 0 would take the same row again and "
                                  "again. Write a step of at least 1, like 0,9999,100."));
    }
    if (range.end < range.start) {
        throw wrongUsage(Text::tr("The sample %1 ends before it begins. Write the smaller "
                                  "position first, like 0,9999,100.")
                             .arg(quoted(text)));
    }
    return range;
}
