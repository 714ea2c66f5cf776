#include "FakeMediaService.h"
#include "LogProbe.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"

#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QLibrary>
#include <QTest>

/// The library as it is installed, loaded the way a host does.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void makesIndependentWorkers();
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

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_Plugin.moc"
