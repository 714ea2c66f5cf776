#include "FakeMediaService.h"
#include "LogProbe.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"
#include "Table.h"

#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QLibrary>

#include <malloc.h>
#include <memory>

/// The library as it is installed, loaded the way a host does.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void makesIndependentWorkers();
    void growsWithNothing_data();
    void growsWithNothing();
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

void tst_Plugin::growsWithNothing_data()
{
    columns<bool, int, int>("livesOneRound", "rounds", "kibibytes");
    // Qt and libdbus keep up to a kilobyte a life; a worker left behind would be many.
    row("over a hundred lives", true, 100, 256);
    row("over hundreds of requests", false, 80, 64);
}

// Memory after two fifths of the rounds against memory after all.
void tst_Plugin::growsWithNothing()
{
    QFETCH(bool, livesOneRound);
    QFETCH(int, rounds);
    QFETCH(int, kibibytes);
#ifdef __SANITIZE_ADDRESS__
    rounds = 5; // has an allocator of its own, and finds leaks itself
#endif
    World w;
    std::unique_ptr<CMSyncWorker> worker;
    size_t before = 0;
    for (int i = 0; i < rounds && !QTest::currentTestFailed(); ++i) {
        if (!worker)
            worker = create("upnp");
        QVERIFY(servers(&w.service, "upnp") != "[]");
        w.askEverything(worker.get());
        if (livesOneRound)
            worker.reset();
        if (i == rounds * 2 / 5)
            before = mallinfo2().uordblks;
    }
    const qint64 growth = qint64(mallinfo2().uordblks) - qint64(before);
    QVERIFY2(growth < kibibytes * 1024, qPrintable(QString("%1 bytes more").arg(growth)));
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_Plugin.moc"
