#include "Ledger.h"

#include <algorithm>

Ledger::Entry::Entry(const CMVoidReply &watched)
    : reply(watched)
    , watcher(watched)
{
    QObject::connect(
        &watcher, &CMReplyWatcherObject::finishedSignal, &watcher, [this] { ++announcements; });
}

bool Ledger::Entry::isKept() const
{
    return reply.handles() > 2; // the entry's and its watcher's
}

bool Ledger::Entry::isOpen() const
{
    if (promise == Unanswered || mayDie)
        return false;
    return announcements == 0 || (promise == Answered && isKept());
}

Fate Ledger::Entry::fate() const
{
    if (announcements > 0)
        return announcements > 1 ? Fate::AnsweredTwice : Fate::Answered;
    if (promise == Unanswered)
        return Fate::UnansweredByDesign;
    return mayDie ? Fate::DiedWithWorker : Fate::Unanswered;
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
        tally->failures.append("Somebody keeps the request for " + entry->text);
    }
}

void Ledger::close(Tally *tally) const
{
    for (const auto &entry : m_entries) {
        const Fate fate = entry->fate();
        tally->count(entry->kind, fate);
        if (fate == Fate::Unanswered)
            tally->failures.append("No answer to " + entry->text);
        if (fate == Fate::AnsweredTwice)
            tally->failures.append("Two answers to " + entry->text);
        if (entry->promise == Unanswered && entry->announcements > 0)
            tally->failures.append("An answer that nobody could expect to " + entry->text);
        if (entry->isKept()) {
            ++tally->leftovers;
            tally->failures.append("The worker is gone, its request stayed: " + entry->text);
        }
    }
}
