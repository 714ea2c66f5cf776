#include "CMNodesWorker.h"

CMNodesWorker::CMNodesWorker(
    const QHash<QString, QVariant> &config, const QString &name, QObject *parent)
    : CMWorker(config, name, parent)
    , m_nodes(new CMNodes(this))
{
    connect(m_nodes, &CMNodes::rowsChanged, this, &CMNodesWorker::rowsChanged);
}

void CMNodesWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    if (!m_nodes->getRowsRequest(request))
        request.setError(ORKA_TR("There is nothing to list at this place."));
}

void CMNodesWorker::getDataRequest(const CMGetDataRequest &request)
{
    if (!m_nodes->getDataRequest(request))
        request.setError(ORKA_TR("There is nothing at this place."));
}

void CMNodesWorker::setDataRequest(const CMSetDataRequest &request)
{
    if (!m_nodes->setDataRequest(request))
        request.setError(ORKA_TR("Nothing can be set at this place."));
}
