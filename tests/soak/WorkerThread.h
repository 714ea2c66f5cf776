#pragma once

#include <api/core/CMSyncWorker.h>

#include <QThread>

#include <functional>
#include <memory>

class CMUPnPWorker;
class Pulse;

/// The plug-in's worker on a thread of its own, mounted in the SDK's root under "upnp", as a host
/// has it. Everything here is called from the main thread and waits for the worker's.
class WorkerThread
{
public:
    WorkerThread();
    ~WorkerThread();
    WorkerThread(const WorkerThread &) = delete;
    WorkerThread &operator=(const WorkerThread &) = delete;

    void start();
    /// Destroys the worker, whatever it is doing.
    void destroy();
    /// Barriers, answers and samplers that the worker has at this moment.
    int openWork();
    /// Handles what was posted to the worker's thread before.
    void catchUp();
    /// Milliseconds in which the event loop did nothing else, since the last call of this; the time
    /// in which the machine had no processor for the thread is taken off.
    double takeLongestSilence();
    /// The same of a thread that does nothing: what the machine alone is to blame for, waiting for
    /// a processor included.
    double takeMachinesSilence();

private:
    void run(const std::function<void()> &work);

    QThread m_thread;
    QObject m_context;
    std::unique_ptr<Pulse> m_pulse;
    QThread m_idleThread;
    QObject m_idleContext;
    std::unique_ptr<Pulse> m_idlePulse;
    std::unique_ptr<CMSyncWorker> m_sync;
};
