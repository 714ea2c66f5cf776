#include "WorkerThread.h"

#include "DBusBarrier.h"
#include "Pulse.h"
#include "UPnPServerList.h"
#include "cb_upnp.h"

#include <api/core/CMRoot.h>

extern "C" void *worker_create(const char *name, void *config);

WorkerThread::WorkerThread()
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
    run([this] { m_pulse = std::make_unique<Pulse>(); });
}

WorkerThread::~WorkerThread()
{
    run([this] {
        m_sync.reset();
        m_pulse.reset();
    });
    m_thread.quit();
    m_thread.wait();
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

void WorkerThread::run(const std::function<void()> &work)
{
    QMetaObject::invokeMethod(&m_context, work, Qt::BlockingQueuedConnection);
}
