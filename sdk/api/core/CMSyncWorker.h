// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMWorker.h>

/// Makes a worker usable from every thread: requests may come from anywhere and reach the worker
/// through its own thread's event loop, in the order in which each thread sent them. Owns the
/// worker: destroying this, on the worker's thread, destroys it. Requests that it had taken and not
/// answered stay unanswered; those that hadn't reached it are answered with an error.
class ORKA_API_EXPORT CMSyncWorker : public CMAbstractWorker
{
    Q_OBJECT

public:
    /// `worker` is not null and has no parent.
    explicit CMSyncWorker(CMWorker *worker, QObject *parent = nullptr);
    ~CMSyncWorker() override;

    QString prefix() const override { return m_prefix; }
    CMWorker *worker() const { return m_worker; }

    /// Any thread.
    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;

    /// The worker's own.
    std::shared_ptr<CMWorkerGate> gate() const override { return m_workerGate; }

private:
    CMWorker *m_worker;
    std::shared_ptr<CMWorkerGate> m_workerGate;
    QString m_prefix;
};
