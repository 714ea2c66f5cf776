#include "FakeMediaService.h"
#include "LogProbe.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"

#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QLibrary>
#include <QTest>

#include <functional>
#include <malloc.h>
#include <memory>

/// The library as it is installed, loaded the way a host does.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void makesIndependentWorkers();
    void growsWithNothingOverAHundredLives();
    void growsWithNothingOverHundredsOfRequests();
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

/// A service with a server "uuid:1" that can search and one, "uuid:2", that can't; 50 tracks each.
struct World
{
    PrivateBus bus;
    FakeMediaService service{bus};
    LogProbe log{log4cplus::OFF_LOG_LEVEL};

    World()
    {
        for (const QString &udn : {QStringLiteral("uuid:1"), QStringLiteral("uuid:2")}) {
            const QStringList caps = udn == "uuid:1" ? QStringList{"Artist"} : QStringList();
            const QString server = service.tree.addServer(udn, "Server", caps);
            for (int i = 0; i < 50; ++i)
                service.tree.addTrack(server, QByteArray::number(i), "Track");
        }
    }

    /// A listing, data, a search that works and one that doesn't, a preparation and a walk, and a
    /// listing that is under way when this returns.
    void askEverything(CMSyncWorker *worker)
    {
        const ReplyProbe<OrkaRowsRoles> rows, found, refused, late;
        const ReplyProbe<QVariantList> data;
        const ReplyProbe<QVariant> prepared, walked;
        const auto search = [](const QString &base) {
            return CMPath("upnp", base).addParam("search", "artist").addParam("query", "x");
        };
        const CMPath prepare("upnp", OrkaPlayListPrepareItems()), one("upnp", "/uuid:1");
        worker->getRows(one, 0, 49, -1, {"path", "mediaData"}, rows.reply());
        worker->getData(one, {"title", "search"}, data.reply());
        worker->getRows(search("/uuid:1"), 0, 9, -1, {"path"}, found.reply());
        worker->getRows(search("/uuid:2"), 0, 9, -1, {"path"}, refused.reply());
        worker->setData(prepare, QVariantList{"upnp:/uuid:1?itemType=server"}, prepared.reply());
        worker->setData(prepare, QVariantList{"upnp:/uuid:2?itemType=server"}, walked.reply());
        service.settle();
        QCOMPARE(rows.value().rows().size() + prepared.value().toList().size()
                + walked.value().toList().size(),
            150);
        QCOMPARE(data.outcome() + found.outcome(), "valuevalue");
        QVERIFY(refused.outcome().startsWith("error internal: "));
        service.forgetCalls();
        worker->getRows(one, 0, 49, -1, {"path"}, late.reply());
        QCoreApplication::processEvents();
    }

    /// Memory after two fifths of the rounds against memory after all.
    void expectNoGrowth(int rounds, qint64 limit, const std::function<void()> &round)
    {
#ifdef __SANITIZE_ADDRESS__
        rounds = 5; // has an allocator of its own, and finds leaks itself
#endif
        size_t before = 0;
        for (int i = 0; i < rounds && !QTest::currentTestFailed(); ++i) {
            round();
            if (i == rounds * 2 / 5)
                before = mallinfo2().uordblks;
        }
        const qint64 growth = qint64(mallinfo2().uordblks) - qint64(before);
        QVERIFY2(growth < limit, qPrintable(QString("%1 bytes more").arg(growth)));
    }
};

} // namespace

void tst_Plugin::makesIndependentWorkers()
{
    PrivateBus bus;
    FakeMediaService service(bus);
    LogProbe log;
    service.tree.addServer("uuid:1", "One");
    auto first = create("first");
    auto second = create("second");
    QCOMPARE(servers(&service, "first"), R"([["first:/uuid:1?itemType=server"]])");
    QCOMPARE(servers(&service, "second"), R"([["second:/uuid:1?itemType=server"]])");
    QCOMPARE(log.count("TRACE CB_UPnP: Enter worker_create: upnpClient"), 2);
    first.reset();
    QCOMPARE(servers(&service, "first"), "[]"); // nobody has that prefix
    service.lose(FakeTree::serverPath("uuid:1"));
    QCOMPARE(servers(&service, "second"), "[]");
}

void tst_Plugin::growsWithNothingOverAHundredLives()
{
    World w;
    // Qt and libdbus keep up to a kilobyte a life; a worker left behind would be many.
    w.expectNoGrowth(100, 256 * 1024, [&w] {
        const auto worker = create("upnp");
        QVERIFY(servers(&w.service, "upnp") != "[]");
        w.askEverything(worker.get());
    });
}

void tst_Plugin::growsWithNothingOverHundredsOfRequests()
{
    World w;
    const auto worker = create("upnp");
    servers(&w.service, "upnp");
    w.expectNoGrowth(80, 64 * 1024, [&] { w.askEverything(worker.get()); });
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_Plugin.moc"
