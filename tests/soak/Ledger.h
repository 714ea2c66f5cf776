#pragma once

#include "Tally.h"

#include <api/core/CMReply.h>

#include <memory>
#include <vector>

/// The requests of one round as the host sees them: who was asked what, and how often each answer
/// was announced. On the main thread, whose event loop brings the announcements.
class Ledger
{
public:
    enum Promise {
        Answered, ///< exactly once, and then nobody keeps the request
        AnsweredAndKept, ///< once; the request is kept until the worker goes
        Unanswered ///< and kept until the worker goes
    };

    /// Enters a request; `kind` is its row in the report, `text` names it when it fails.
    template<typename T>
    CMReply<T> enter(const QString &kind, const QString &text, Promise promise = Answered)
    {
        const CMReply<T> reply;
        m_entries.push_back(std::make_unique<Entry>(reply));
        m_entries.back()->kind = kind;
        m_entries.back()->text = text;
        m_entries.back()->promise = promise;
        return reply;
    }

    /// How many requests are still to be answered, or let go of after their answer: one with a part
    /// that is refused at once is told so before the rest of it has come back.
    int open() const;
    /// The worker is gone: what is open now may stay so, and nothing may be kept any more.
    void workerDestroyed();
    /// Counts requests that are kept although nothing is left to do.
    void countKept(Tally *tally) const;
    /// Settles the accounts, with no event left to handle and the worker gone.
    void close(Tally *tally) const;

private:
    struct Entry
    {
        explicit Entry(const CMVoidReply &watched);
        bool isKept() const;
        bool isOpen() const;
        Fate fate() const;

        QString kind;
        QString text;
        Promise promise = Answered;
        CMVoidReply reply;
        CMReplyWatcherObject watcher;
        int announcements = 0;
        bool mayDie = false;
    };

    std::vector<std::unique_ptr<Entry>> m_entries;
};
