// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMWorker.h>

#include <QHash>

#include <mutex>

/// The root of the content tree: routes a request to the worker that is mounted under the path's
/// prefix. Every operation may be called from any thread; a request reaches its worker through the
/// event loop of the worker's thread, with no lock held. A prefix that nobody has is answered with
/// an error that names it.
class ORKA_API_EXPORT CMRootWorker : public CMAbstractWorker
{
    Q_OBJECT

public:
    /// Mounts `worker` under the prefix it has; false when that prefix is taken. On the worker's
    /// thread. A worker that is destroyed is forgotten.
    bool mount(CMAbstractWorker *worker);
    void unmount(CMAbstractWorker *worker);

    QString prefix() const override { return QString(); }
    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;

private:
    friend ORKA_API_EXPORT CMRootWorker *CMRoot();
    CMRootWorker() = default;

    template<typename Request>
    void route(const Request &request);
    bool forget(const QString &prefix, const std::shared_ptr<CMWorkerGate> &gate);

    std::mutex m_mutex;
    QHash<QString, std::shared_ptr<CMWorkerGate>> m_gates;
};

/// The one root of this process.
ORKA_API_EXPORT CMRootWorker *CMRoot();
