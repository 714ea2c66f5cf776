#include "WorkerThread.h"

#include "DBusBarrier.h"
#include "Pulse.h"
#include "UPnPServerList.h"
#include "cb_upnp.h"

#include <api/core/CMRoot.h>

extern "C" void *worker_create(const char *name, void *config);

namespace {

/// Runs `work` on the thread of `context` and waits for it.
void runOn(QObject *context, const std::function<void()> &work)
{
    QMetaObject::invokeMethod(context, work, Qt::BlockingQueuedConnection);
}

} // namespace

WorkerThread::WorkerThread()
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
    run([this] { m_pulse = std::make_unique<Pulse>(Pulse::NotCounted); });
    m_idleContext.moveToThread(&m_idleThread);
    m_idleThread.start();
    runOn(&m_idleContext, [this] { m_idlePulse = std::make_unique<Pulse>(Pulse::Counted); });
}

WorkerThread::~WorkerThread()
{
    run([this] {
        m_sync.reset();
        m_pulse.reset();
    });
    runOn(&m_idleContext, [this] { m_idlePulse.reset(); });
    for (QThread *thread : {&m_thread, &m_idleThread}) {
        thread->quit();
        thread->wait();
    }
}

void WorkerThread::start()
{
    run([this] {
        QVariantHash config{{OrkaService_Id(), QStringLiteral("media")},
            {CMWorker::Prefix_(), QStringLiteral("upnp")}};
        m_sync.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
        if (!CMRoot()->mount(m_sync.get()))
            qFatal("The worker of the round before is still mounted.");
    });
}

void WorkerThread::destroy()
{
    run([this] { m_sync.reset(); });
}

int WorkerThread::openWork()
{
    int work = 0;
    run([this, &work] {
        const auto *worker = static_cast<CMUPnPWorker *>(m_sync->worker());
        for (const QObject *child : worker->children())
            work += child->inherits("CMNodes") || child->inherits("CMValueItem")
                    || child->inherits("UPnPServerList")
                ? 0
                : 1;
        work += worker->serverList()->findChildren<DBusBarrier *>().size();
    });
    return work;
}

void WorkerThread::catchUp()
{
    // What the first turn posts, deferred deletions among it, is handled before the second.
    run([] {});
    run([] {});
}

double WorkerThread::takeLongestSilence()
{
    double silence = 0;
    run([this, &silence] { silence = m_pulse->takeLongestSilence(); });
    return silence;
}

double WorkerThread::takeMachinesSilence()
{
    double silence = 0;
    runOn(&m_idleContext, [this, &silence] { silence = m_idlePulse->takeLongestSilence(); });
    return silence;
}

void WorkerThread::run(const std::function<void()> &work)
{
    runOn(&m_context, work);
}
