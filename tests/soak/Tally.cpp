#include "Tally.h"

#include <algorithm>

namespace {

const char *const faultNames[int(Fault::Count)] = {"reply is an error",
    "reply of another signature", "properties of other types", "properties missing",
    "empty keys and values", "reply of 2,000 objects", "reply held", "replies out of order",
    "service frozen", "service killed", "service replaced by another", "server found",
    "server found twice", "server lost", "unknown server lost", "found a path that is no server",
    "network addresses changed", "worker destroyed with requests in flight"};

/// What is in use when nothing more is under way than always.
qint64 base(const QVector<qint64> &heap)
{
    return heap.isEmpty() ? 0 : *std::min_element(heap.begin(), heap.end());
}

QString row(const QString &name, const Outcome &outcome)
{
    QStringList cells{name};
    for (const int count : {outcome.sent, outcome.answered, outcome.unansweredByDesign,
             outcome.diedWithWorker, outcome.unanswered, outcome.answeredTwice})
        cells.append(QString::number(count));
    return QStringLiteral("| %1 |\n").arg(cells.join(QStringLiteral(" | ")));
}

} // namespace

void Outcome::add(const Outcome &other)
{
    sent += other.sent;
    answered += other.answered;
    unansweredByDesign += other.unansweredByDesign;
    diedWithWorker += other.diedWithWorker;
    unanswered += other.unanswered;
    answeredTwice += other.answeredTwice;
}

Outcome Tally::total() const
{
    Outcome sum;
    for (const Outcome &outcome : outcomes)
        sum.add(outcome);
    return sum;
}

qint64 Tally::growth() const
{
    const int quarter = heap.size() / 4;
    return quarter == 0 ? 0 : base(heap.mid(3 * quarter)) - base(heap.mid(quarter, quarter));
}

QString Tally::table() const
{
    QString text = QStringLiteral("| request | sent | answered | unanswered by design | "
                                  "died with the worker | unanswered otherwise | "
                                  "answered twice |\n|---|---|---|---|---|---|---|\n");
    for (auto it = outcomes.begin(); it != outcomes.end(); ++it)
        text += row(it.key(), it.value());
    text += row(QStringLiteral("**all**"), total());
    text += QStringLiteral("\n| fault | times |\n|---|---|\n");
    for (int i = 0; i < int(Fault::Count); ++i)
        text += QStringLiteral("| %1 | %2 |\n").arg(QLatin1String(faultNames[i])).arg(m_faults[i]);
    const auto line = [&text](const char *what, const QString &figure) {
        text += QStringLiteral("| %1 | %2 |\n").arg(QLatin1String(what), figure);
    };
    text += QStringLiteral("\n| %1 rounds | |\n|---|---|\n").arg(rounds);
    line("calls that reached the media service", QString::number(calls));
    line("requests and barriers left over", QString::number(leftovers));
    line("kept for preparations without an answer, until the worker went",
        QString::number(keptByDesign));
    line("longest silence of the event loop", QString::number(longestSilence, 'f', 1) + " ms");
    line("rounds run again because an idle thread had to wait too",
        QString::number(silencesUnknown));
    line("growth of the heap, second to last quarter", QString::number(growth() / 1024) + " KiB");
    return text;
}
