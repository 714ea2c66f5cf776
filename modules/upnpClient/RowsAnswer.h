#pragma once

#include "ObjectMapping.h"
#include "PropertyMapReader.h"
#include "SlicedWork.h"

/// Answers a rows request with a reply's property maps, one row each, in their order. `count` is
/// the number of all rows there are. A child of the worker.
class RowsAnswer : public SlicedWork
{
public:
    RowsAnswer(QObject *worker, const ObjectMapping &mapping, const CMGetRowsRequest &request,
        const QDBusMessage &reply, int count);

private:
    Next step() override;

    ObjectMapping m_mapping;
    CMGetRowsRequest m_request;
    PropertyMapReader m_reader;
    QVariantList m_rows;
    int m_count;
};
