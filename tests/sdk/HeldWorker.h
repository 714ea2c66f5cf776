#pragma once

#include <api/core/CMWorker.h>

#include <QList>
#include <QThread>

/// A worker that keeps what it is asked and leaves the answering to the test.
class HeldWorker : public CMWorker
{
public:
    explicit HeldWorker(const QString &prefix)
        : CMWorker({{Prefix_(), prefix}}, QStringLiteral("HeldWorker"))
    {
    }

    void getRowsRequest(const CMGetRowsRequest &request) override { take(rows, request); }
    void getDataRequest(const CMGetDataRequest &request) override { take(data, request); }
    void setDataRequest(const CMSetDataRequest &request) override { take(sets, request); }

    QList<CMGetRowsRequest> rows;
    QList<CMGetDataRequest> data;
    QList<CMSetDataRequest> sets;
    /// Whether a request was delivered outside of the worker's thread.
    bool wrongThread = false;

private:
    template<typename Request>
    void take(QList<Request> &list, const Request &request)
    {
        wrongThread = wrongThread || QThread::currentThread() != thread();
        list.append(request);
    }
};
