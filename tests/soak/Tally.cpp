#include "Tally.h"

#include <algorithm>
#include <numeric>

namespace {

/// The faults of the campaign, rows of the report.
const QStringList faultNames{"reply is an error", "reply of another signature",
    "properties of other types", "properties missing", "empty keys and values",
    "reply of 2,000 objects", "reply held", "replies out of order", "service frozen",
    "service killed", "service replaced by another", "server found", "server found twice",
    "server lost", "unknown server lost", "found a path that is no server",
    "network addresses changed", "worker destroyed with requests in flight"};

/// What is in use when nothing more is under way than always.
qint64 base(const QVector<qint64> &heap)
{
    return heap.isEmpty() ? 0 : *std::min_element(heap.begin(), heap.end());
}

template<typename Counts>
QString row(const QString &name, const Counts &counts)
{
    QString cells;
    for (const int count : counts)
        cells += QStringLiteral(" %1 |").arg(count);
    return QStringLiteral("| %1 |%2\n").arg(name, cells);
}

} // namespace

void Tally::inject(const QString &fault, int times)
{
    if (!faultNames.contains(fault))
        qFatal("\"%s\" is no name of a fault; the names are in Tally.cpp.", qPrintable(fault));
    m_faults[fault] += times;
}

qint64 Tally::growth() const
{
    const int quarter = heap.size() / 4;
    return quarter == 0 ? 0 : base(heap.mid(3 * quarter)) - base(heap.mid(quarter, quarter));
}

QString Tally::table() const
{
    QString text = "| request | sent | answered | unanswered by design | died with the worker | "
                   "unanswered otherwise | answered twice |\n|---|---|---|---|---|---|---|\n";
    QVector<int> total(int(Fate::Count) + 1);
    for (auto it = m_fates.begin(); it != m_fates.end(); ++it) {
        QVector<int> counts(it->begin(), it->end());
        counts.prepend(std::accumulate(it->begin(), it->end(), 0));
        std::transform(
            counts.begin(), counts.end(), total.begin(), total.begin(), std::plus<int>());
        text += row(it.key(), counts);
    }
    text += row("**all**", total) + "\n| fault | times |\n|---|---|\n";
    for (const QString &fault : faultNames)
        text += row(fault, QVector<int>{m_faults.value(fault)});
    text += QStringLiteral("\n| %1 rounds | |\n|---|---|\n").arg(rounds);
    text += row("calls that reached the media service", QVector<int>{calls});
    text += row("requests and barriers left over", QVector<int>{leftovers});
    text += row("kept for preparations without an answer, until the worker went",
        QVector<int>{keptByDesign});
    text += row(
        "rounds run again because an idle thread had to wait too", QVector<int>{silencesUnknown});
    return text
        + QStringLiteral("| longest silence of the event loop | %1 ms |\n"
                         "| growth of the heap, second to last quarter | %2 KiB |\n")
              .arg(longestSilence, 0, 'f', 1)
              .arg(growth() / 1024);
}
