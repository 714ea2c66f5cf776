#include "FakeMediaService.h"
#include "LogProbe.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"

#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QLibrary>
#include <QTest>

#include <malloc.h>

/// The library as it is installed, loaded the way a host does.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void makesIndependentWorkers();
    void growsWithNoRequest();
};

namespace {

/// Loads the library and makes a worker.
std::unique_ptr<CMSyncWorker> create(const QString &prefix)
{
    using Create = void *(*)(const char *, void *);
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    const auto entry = reinterpret_cast<Create>(library.resolve("worker_create"));
    if (!entry)
        qFatal("%s", qPrintable(library.errorString()));
    QVariantHash config{{CMWorker::Prefix_(), prefix}};
    auto *worker = static_cast<CMSyncWorker *>(entry("upnpClient", &config));
    CMRoot()->mount(worker);
    return std::unique_ptr<CMSyncWorker>(worker);
}

QString servers(FakeMediaService *service, const QString &prefix)
{
    service->settle();
    const ReplyProbe<OrkaRowsRoles> probe;
    CMRoot()->getRows(CMPath(prefix, ""), 0, 9, -1, {"path"}, probe.reply());
    service->settle();
    return orkaToJson(probe.value().rows());
}

} // namespace

void tst_Plugin::makesIndependentWorkers()
{
    PrivateBus bus;
    FakeMediaService service(bus);
    const LogProbe log;
    service.tree.addServer("uuid:1", "One");
    auto first = create("first");
    const auto second = create("second");
    QCOMPARE(servers(&service, "first"), R"([["first:/uuid:1?itemType=server"]])");
    QCOMPARE(servers(&service, "second"), R"([["second:/uuid:1?itemType=server"]])");
    QCOMPARE(log.count("TRACE CB_UPnP: Enter worker_create: upnpClient"), 2);
    first.reset();
    QCOMPARE(servers(&service, "first"), "[]"); // nobody has that prefix
    service.lose(FakeTree::serverPath("uuid:1"));
    QCOMPARE(servers(&service, "second"), "[]");
}

// What is left of a request until its worker goes is no leak to any other tool.
void tst_Plugin::growsWithNoRequest()
{
    PrivateBus bus;
    FakeMediaService service(bus);
    const LogProbe log(log4cplus::OFF_LOG_LEVEL);
    const QString server = service.tree.addServer("uuid:1", "One");
    for (int i = 0; i < 20; ++i)
        service.tree.addTrack(server, QByteArray::number(i), "Track");
    const auto worker = create("upnp");
    service.settle();
    qint64 before = 0;
    for (int round = 0; round < 100; ++round) {
        const ReplyProbe<QVariant> prepared;
        const ReplyProbe<OrkaRowsRoles> rows;
        // It can't search, so both a preparation and a walk.
        worker->setData(CMPath("upnp", OrkaPlayListPrepareItems()),
            QVariantList{"upnp:/uuid:1?itemType=server"}, prepared.reply());
        worker->getRows(CMPath("upnp", "/uuid:1"), 0, 19, -1, {"path"}, rows.reply());
        service.settle();
        service.forgetCalls();
        QCOMPARE(prepared.value().toList().size() + rows.value().rows().size(), 40);
        if (round == 40)
            before = qint64(mallinfo2().uordblks);
    }
#ifndef __SANITIZE_ADDRESS__ // has an allocator of its own
    QVERIFY(qint64(mallinfo2().uordblks) - before < 64 * 1024);
#endif
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_Plugin.moc"
