// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMNodes.h>
#include <api/core/CMWorker.h>

/// A worker with a set of nodes. As it stands it offers every request to its nodes and answers
/// what none took with an error.
class ORKA_API_EXPORT CMNodesWorker : public CMWorker
{
    Q_OBJECT

public:
    CMNodesWorker(
        const QHash<QString, QVariant> &config, const QString &name, QObject *parent = nullptr);

    CMNodes *nodes() const { return m_nodes; }

    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;

private:
    CMNodes *m_nodes;
};
