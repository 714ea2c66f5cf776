#include "WorkerThread.h"

#include "PluginFixture.h"

extern "C" void *worker_create(const char *name, void *config);

void WorkerThread::start()
{
    run([this] {
        QVariantHash config{{OrkaService_Id(), "media"}, {CMWorker::Prefix_(), "upnp"}};
        m_sync.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
        if (!CMRoot()->mount(m_sync.get()))
            qFatal("The worker of the round before is still mounted.");
    });
}

int WorkerThread::workLeft()
{
    int work = 0;
    run([&] { work = openWork(*static_cast<CMUPnPWorker *>(m_sync->worker())); });
    return work;
}
