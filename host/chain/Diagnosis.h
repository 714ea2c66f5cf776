#pragma once

#include "Failure.h"

#include <chrono>

class CMPath;
struct ServiceAnswer;

/// What is the matter with a node of which a worker said nothing, or only that it failed.
struct Diagnosis
{
    enum Verdict {
        /// The media service answers about the node now.
        Answers,
        /// There is nothing at that position: some servers say so with a list that the real media
        /// service takes for an error.
        Empty,
        /// `text` says why.
        Refused,
        /// The media server didn't answer in time.
        ServerSilent,
        /// The media service doesn't know the media server, any more.
        ServerGone,
        ServiceSilent,
        /// What has the service's name on the bus can't be asked.
        Unknown
    };
    Verdict verdict = Unknown;
    /// What the service said, as part of a sentence, where it did; `reason()` is for people.
    QString text = {};
    /// How many children the node has, where it is Empty.
    int childCount = 0;

    QString reason() const;
    bool isTrouble() const { return verdict != Answers && verdict != Empty && verdict != Unknown; }
};

/// Asks the media service itself about the node, once, and waits in the event loop, `limit` at
/// most: for the properties of a track (as its path says), else for the row at `position`.
Diagnosis diagnose(const CMPath &path, int position, std::chrono::milliseconds limit);

/// For how long the media service may be asked about a node, behind a worker that has waited.
std::chrono::milliseconds diagnosisLimit(std::chrono::milliseconds waited);

/// What an answer about a node means; `diagnosisOfChild()`: to a call for one of its rows.
Diagnosis diagnosisOf(const ServiceAnswer &answer);
Diagnosis diagnosisOfChild(const ServiceAnswer &answer);

/// What an error of the media service means, by its text alone.
Diagnosis diagnosisOf(const QString &error);

/// What people call a node in trouble, and for how long it was waited for.
struct Patient
{
    /// "“My NAS/Music”", as a person named it.
    QString node;
    /// "The media server “My NAS”".
    QString server;
    bool isSearched;
    std::chrono::milliseconds waited;
};

/// Trouble, or that it has passed, as a sentence, with the status that the program ends with.
Failure failureOf(const Diagnosis &diagnosis, const Patient &patient);
