#include "CMRoot.h"

#include <api/core/orka.h>

#include <private/CMWorkerGate.h>

CMRootWorker *CMRoot()
{
    // Never destroyed: workers may still leave while the program ends.
    static auto *const root = new CMRootWorker;
    return root;
}

bool CMRootWorker::mount(CMAbstractWorker *worker)
{
    ORKA_ASSERT(worker);
    ORKA_ASSERT(worker != this);
    const QString prefix = worker->prefix();
    const std::shared_ptr<CMWorkerGate> gate = worker->gate();
    {
        const std::lock_guard lock(m_mutex);
        if (m_gates.contains(prefix))
            return false;
        m_gates.insert(prefix, gate);
    }
    // Direct, since nothing promises that the root's own thread runs an event loop.
    connect(worker, &CMAbstractWorker::rowsChanged, this, &CMAbstractWorker::rowsChanged,
        Qt::DirectConnection);
    connect(
        worker, &QObject::destroyed, this, [this, prefix, gate] { forget(prefix, gate); },
        Qt::DirectConnection);
    return true;
}

void CMRootWorker::unmount(CMAbstractWorker *worker)
{
    ORKA_ASSERT(worker);
    if (forget(worker->prefix(), worker->gate()))
        disconnect(worker, nullptr, this, nullptr);
}

bool CMRootWorker::forget(const QString &prefix, const std::shared_ptr<CMWorkerGate> &gate)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_gates.find(prefix);
    if (found == m_gates.end() || *found != gate)
        return false;
    m_gates.erase(found);
    return true;
}

template<typename Request>
void CMRootWorker::route(const Request &request)
{
    std::shared_ptr<CMWorkerGate> gate;
    {
        const std::lock_guard lock(m_mutex);
        gate = m_gates.value(request.path().prefix());
    }
    if (gate) {
        gate->post(request);
        return;
    }
    request.setError(createErrorInternal(
        QStringLiteral("Nothing is mounted under \"%1\", the first part of the path.")
            .arg(request.path().prefix())));
}

void CMRootWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    route(request);
}

void CMRootWorker::getDataRequest(const CMGetDataRequest &request)
{
    route(request);
}

void CMRootWorker::setDataRequest(const CMSetDataRequest &request)
{
    route(request);
}
