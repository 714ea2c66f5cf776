#include "CMSyncWorker.h"

#include <api/core/orka.h>

#include <private/CMWorkerGate.h>

CMSyncWorker::CMSyncWorker(CMWorker *worker, QObject *parent)
    : CMAbstractWorker(parent)
    , m_worker(worker)
{
    ORKA_ASSERT(worker);
    ORKA_ASSERT(!worker->parent());
    m_prefix = worker->prefix();
    m_workerGate = worker->gate();
    connect(worker, &CMAbstractWorker::rowsChanged, this, &CMAbstractWorker::rowsChanged);
}

CMSyncWorker::~CMSyncWorker()
{
    delete m_worker;
}

void CMSyncWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    m_workerGate->post(request);
}

void CMSyncWorker::getDataRequest(const CMGetDataRequest &request)
{
    m_workerGate->post(request);
}

void CMSyncWorker::setDataRequest(const CMSetDataRequest &request)
{
    m_workerGate->post(request);
}
