#pragma once

#include "PulsedThread.h"

#include <api/core/CMSyncWorker.h>

/// The plug-in's worker on a thread of its own, mounted in the SDK's root under "upnp", as a host
/// has it.
class WorkerThread : public PulsedThread
{
public:
    WorkerThread()
        : PulsedThread(NotCounted)
    {
    }
    ~WorkerThread() { destroy(); }

    void start();
    /// Destroys the worker, whatever it is doing.
    void destroy()
    {
        run([this] { m_sync.reset(); });
    }
    /// Barriers, answers and samplers that the worker has at this moment.
    int workLeft();
    /// Handles what was posted to the worker's thread before; what the first turn posts, deferred
    /// deletions among it, is handled before the second.
    void catchUp()
    {
        run([] {});
        run([] {});
    }

private:
    std::unique_ptr<CMSyncWorker> m_sync;
};
