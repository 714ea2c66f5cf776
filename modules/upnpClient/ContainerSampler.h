#pragma once

#include "sdk.h"

#include <QObject>

/// Answers a rows request with children spread evenly over a container: those at `start`,
/// `start` + `step`, … up to `end` inclusive, as far as the container reaches, and at most one more
/// than the last row that was asked for. Fetches one child at a time through the SDK's own tree, as
/// any client would. The first failure is the answer. Deletes itself when it has answered; a child
/// of the worker, on its thread.
class ContainerSampler : public QObject
{
    Q_OBJECT

public:
    /// Starts at once. `path` is the container, positions count from 0.
    ContainerSampler(QObject *parent, CMGetRowsRequest request, const CMPath &path, unsigned start,
        unsigned end, unsigned step, int requestFirstRow, int requestLastRow);

    /// The child that the next sample takes, or the failed one should have taken.
    int pathPosition() const;

private Q_SLOTS:
    void on_getRows_finished(const CMVoidReply &reply);

private:
    void performSample();
    void finalizeSampling();
    bool isComplete() const;

    CMGetRowsRequest m_request;
    CMPath m_path;
    int m_sampleIndex = 0;
    int m_step;
    int m_start;
    int m_end;
    int m_requestFirstRow;
    int m_requestLastRow;
    /// -1 until the first reply has told.
    int m_totalCount = -1;
    QVariantList m_samples;
};
