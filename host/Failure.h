#pragma once

#include <api/core/CMError.h>

#include <QString>

#include <exception>

/// What the program ends with; scripts rely on the numbers.
enum ExitStatus {
    Answered = 0,
    AnsweredWithError = 1,
    WrongUsage = 2,
    /// No media service, no such place, no plug-in, no player.
    Missing = 3,
    NoAnswer = 4
};

/// Ends a command: carries the status that the program ends with, a sentence for people (what
/// happened, what it means, what to do) and, for programs, the error answer that caused it.
class Failure : public std::exception
{
public:
    /// `name` is the error's name in JSON output.
    Failure(int status, const QString &name, const QString &sentence);
    /// An error answer of a worker.
    Failure(const CMError &answer, const QString &sentence);

    int status() const { return m_status; }
    const QString &sentence() const { return m_sentence; }
    const CMError &error() const { return m_error; }
    /// The media service left while it was asked: another, or one that is started, may answer.
    bool isServiceLeft() const;
    /// There is no media service, or no bus that one could be on.
    bool isServiceMissing() const;

    const char *what() const noexcept override { return m_what.constData(); }

private:
    int m_status;
    QString m_sentence;
    CMError m_error;
    QByteArray m_what;
};

Failure wrongUsage(const QString &sentence);
Failure missing(const QString &name, const QString &sentence);
Failure serviceLeft(const QString &sentence);
