#pragma once

#include <api/core/CMWorker.h>

#include <QEvent>

#include <mutex>
#include <optional>
#include <variant>

/// Hands requests over to a worker from any thread and outlives it: a request that comes when the
/// worker is gone, or hasn't reached it until then, is answered with an error.
class CMWorkerGate
{
public:
    using Request = std::variant<CMGetRowsRequest, CMGetDataRequest, CMSetDataRequest>;

    explicit CMWorkerGate(CMAbstractWorker *worker)
        : m_worker(worker)
    {
    }

    void post(const Request &request);
    /// On the worker's thread; nothing is handed over afterwards.
    void close();

private:
    std::mutex m_mutex;
    CMAbstractWorker *m_worker;
};

/// A request on its way through the event loop of its worker. One that is never taken, since the
/// worker went, is answered with an error when this is destroyed.
class CMRequestEvent : public QEvent
{
public:
    explicit CMRequestEvent(CMWorkerGate::Request request);
    ~CMRequestEvent() override;
    static Type eventType();

    /// For the worker, once.
    CMWorkerGate::Request take();

private:
    std::optional<CMWorkerGate::Request> m_request;
};
