#include "Ledger.h"

#include <algorithm>

namespace {

/// The entry's and its watcher's.
constexpr long ownHandles = 2;

} // namespace

bool Ledger::Entry::isKept() const
{
    return reply.handles() > ownHandles;
}

void Ledger::add(
    const QString &kind, const QString &text, Promise promise, const CMVoidReply &reply)
{
    auto entry = std::make_unique<Entry>();
    Entry *raw = entry.get();
    raw->kind = kind;
    raw->text = text;
    raw->promise = promise;
    raw->reply = reply;
    raw->watcher = std::make_unique<CMReplyWatcherObject>(reply);
    QObject::connect(raw->watcher.get(), &CMReplyWatcherObject::finishedSignal, raw->watcher.get(),
        [raw] { ++raw->announcements; });
    m_entries.push_back(std::move(entry));
}

bool Ledger::Entry::isOpen() const
{
    if (promise == Unanswered || mayDie)
        return false;
    return announcements == 0 || (promise == Answered && isKept());
}

int Ledger::open() const
{
    return int(std::count_if(
        m_entries.begin(), m_entries.end(), [](const auto &entry) { return entry->isOpen(); }));
}

void Ledger::workerDestroyed()
{
    for (const auto &entry : m_entries) {
        if (!entry->reply.isFinished())
            entry->mayDie = true;
        else
            entry->promise = Answered; // the root answers what has come too late
    }
}

void Ledger::countKept(Tally *tally) const
{
    for (const auto &entry : m_entries) {
        if (!entry->isKept())
            continue;
        if (entry->promise != Answered) {
            ++tally->keptByDesign;
            continue;
        }
        ++tally->leftovers;
        tally->failures.append(
            QStringLiteral("Somebody keeps the request for %1.").arg(entry->text));
    }
}

Outcome Ledger::outcomeOf(const Entry &entry)
{
    Outcome outcome;
    outcome.sent = 1;
    if (entry.announcements > 1)
        outcome.answeredTwice = 1;
    else if (entry.announcements == 1)
        outcome.answered = 1;
    else if (entry.promise == Unanswered)
        outcome.unansweredByDesign = 1;
    else if (entry.mayDie)
        outcome.diedWithWorker = 1;
    else
        outcome.unanswered = 1;
    return outcome;
}

void Ledger::close(Tally *tally) const
{
    for (const auto &entry : m_entries) {
        const Outcome outcome = outcomeOf(*entry);
        tally->outcomes[entry->kind].add(outcome);
        if (outcome.unanswered > 0)
            tally->failures.append(QStringLiteral("No answer to %1.").arg(entry->text));
        if (outcome.answeredTwice > 0)
            tally->failures.append(QStringLiteral("Two answers to %1.").arg(entry->text));
        if (entry->promise == Unanswered && entry->announcements > 0)
            tally->failures.append(
                QStringLiteral("An answer that nobody could expect to %1.").arg(entry->text));
        if (entry->isKept()) {
            ++tally->leftovers;
            tally->failures.append(
                QStringLiteral("The worker is gone, its request stayed: %1.").arg(entry->text));
        }
    }
}
