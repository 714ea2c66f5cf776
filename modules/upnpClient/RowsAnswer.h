#pragma once

#include "PropertyMapReader.h"
#include "ReplyContext.h"
#include "SlicedWork.h"
#include "sdk.h"

class CMUPnPWorker;

/// Answers a rows request with a reply's property maps, one row each, in their order. A child of
/// the worker.
class RowsAnswer : public SlicedWork
{
public:
    /// `count` is the number of all rows there are.
    static void start(CMUPnPWorker *worker, const CMGetRowsRequest &request,
        const QDBusMessage &reply, int count);

private:
    RowsAnswer(CMUPnPWorker *worker, const CMGetRowsRequest &request, const QDBusMessage &reply,
        int count);
    bool step() override;

    CMUPnPWorker *m_worker;
    CMGetRowsRequest m_request;
    PropertyMapReader m_reader;
    ReplyContext m_context;
    QVariantList m_rows;
    int m_count;
};
