#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>

/// What became of a request.
enum class Fate {
    Answered,
    UnansweredByDesign, ///< a preparation that names nothing preparable
    DiedWithWorker, ///< in flight when the worker was destroyed
    Unanswered,
    AnsweredTwice,
    Count
};

/// Everything that a campaign counts.
class Tally
{
public:
    /// Counts what goes wrong on purpose; `fault` is one of the names in `Tally.cpp`.
    void inject(const QString &fault, int times = 1);
    void count(const QString &request, Fate fate) { ++m_fates[request][size_t(fate)]; }

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

    /// Bytes by which the smallest heap of the last quarter of the rounds exceeds that of the
    /// second.
    qint64 growth() const;
    /// The tables of the report, in Markdown.
    QString table() const;

private:
    using Fates = std::array<int, size_t(Fate::Count)>;

    QMap<QString, Fates> m_fates;
    QMap<QString, int> m_faults;
};
