#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/// What went wrong on purpose.
enum class Fault {
    ErrorReply,
    WrongSignature,
    WrongTypes,
    MissingKeys,
    EmptyKeys,
    HugeReply,
    HeldReply,
    ReorderedReply,
    ServiceFrozen,
    ServiceKilled,
    ServiceReplaced,
    ServerFound,
    ServerFoundTwice,
    ServerLost,
    UnknownServerLost,
    OddServerFound,
    NetworkChanged,
    WorkerDestroyed,
    Count
};

/// How many requests of one kind were sent, and what became of them.
struct Outcome
{
    int sent = 0;
    int answered = 0;
    /// A preparation that names nothing preparable.
    int unansweredByDesign = 0;
    /// In flight when the worker was destroyed.
    int diedWithWorker = 0;
    int unanswered = 0;
    int answeredTwice = 0;

    void add(const Outcome &other);
};

/// Everything that a campaign counts.
class Tally
{
public:
    void inject(Fault fault, int times = 1) { m_faults[int(fault)] += times; }

    QMap<QString, Outcome> outcomes;
    int rounds = 0;
    /// That reached the media service.
    int calls = 0;
    /// Requests and barriers that somebody still kept when nothing was left to do.
    int leftovers = 0;
    /// Kept by the preparations that are never answered, until the worker went.
    int keptByDesign = 0;
    /// Milliseconds.
    double longestSilence = 0;
    /// Rounds that ran again because the machine had no time for an idle thread either.
    int silencesUnknown = 0;
    /// The heap in use after each round, in bytes.
    QVector<qint64> heap;
    /// What broke a promise, one sentence each.
    QStringList failures;

    Outcome total() const;
    /// Bytes by which the smallest heap of the last quarter of the rounds exceeds that of the
    /// second.
    qint64 growth() const;
    /// The tables of the report, in Markdown.
    QString table() const;

private:
    int m_faults[int(Fault::Count)] = {};
};
