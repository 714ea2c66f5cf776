#include "FakeMediaService.h"
#include "LogProbe.h"
#include "MediaServiceNames.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"

#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QProcess>
#include <QTest>

#include <dlfcn.h>
#include <malloc.h>
#include <memory>

/// The library as it is installed, loaded the way a host does.
class tst_Plugin : public QObject
{
    Q_OBJECT

private slots:
    void exportsOneName();
    void isLinkedForAHost();
    void makesIndependentWorkers();
    void growsWithNothingOverAHundredLives();

private:
    using Create = void *(const char *, void *);
    static Create *load()
    {
        void *library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
        if (!library)
            qFatal("%s", dlerror());
        return reinterpret_cast<Create *>(dlsym(library, "worker_create"));
    }
    static std::unique_ptr<CMSyncWorker> create(Create *entry, const QString &prefix)
    {
        QVariantHash config{{CMWorker::Prefix_(), prefix}};
        auto *worker = static_cast<CMSyncWorker *>(entry("upnpClient", &config));
        CMRoot()->mount(worker);
        return std::unique_ptr<CMSyncWorker>(worker);
    }
};

namespace {

QStringList output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}

QString servers(FakeMediaService *service, const QString &prefix)
{
    const ReplyProbe<OrkaRowsRoles> probe;
    CMRoot()->getRows(CMPath(prefix, ""), 0, 9, -1, {"path"}, probe.reply());
    PrivateBus::settle(service->connection(), [service] { return service->activity(); });
    return orkaToJson(probe.value().rows());
}

} // namespace

void tst_Plugin::exportsOneName()
{
    const QStringList names = output("nm", {"-D", "--defined-only", PLUGIN_FILE});
    QCOMPARE(names.size(), 1);
    QCOMPARE(names[0].section(' ', 1), QString("T worker_create"));
}

// Never unloaded, all names bound when it is loaded, its tables read-only from then on.
void tst_Plugin::isLinkedForAHost()
{
    const QString dynamic = output("readelf", {"-dlW", PLUGIN_FILE}).join('\n');
    for (const char *flag : {"NODELETE", "BIND_NOW", "GNU_RELRO"})
        QVERIFY2(dynamic.contains(flag), flag);
    QVERIFY(!dynamic.contains("RPATH"));
}

void tst_Plugin::makesIndependentWorkers()
{
    PrivateBus bus;
    FakeMediaService service(bus);
    LogProbe log;
    service.tree.addServer("uuid:1", "One");
    auto first = create(load(), "first");
    auto second = create(load(), "second");
    servers(&service, "first"); // lets both read what there is
    QCOMPARE(servers(&service, "first"), QString(R"([["first:/uuid:1?itemType=server"]])"));
    QCOMPARE(servers(&service, "second"), QString(R"([["second:/uuid:1?itemType=server"]])"));
    QCOMPARE(log.count("TRACE CB_UPnP: Enter worker_create: upnpClient"), 2);
    first.reset();
    QCOMPARE(servers(&service, "first"), QString("[]")); // nobody has that prefix
    service.lose(FakeTree::serverPath("uuid:1"));
    QCOMPARE(servers(&service, "second"), QString("[]"));
}

void tst_Plugin::growsWithNothingOverAHundredLives()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer has an allocator of its own; it looks for leaks itself.");
#endif
    PrivateBus bus;
    FakeMediaService service(bus);
    LogProbe log(log4cplus::OFF_LOG_LEVEL);
    const QString server = service.tree.addServer("uuid:1", "One", QStringList{"Artist"});
    for (int i = 0; i < 50; ++i)
        service.tree.addTrack(server, QByteArray::number(i), "Track");
    size_t before = 0;
    for (int life = 0; life < 100; ++life) {
        const auto worker = create(load(), "upnp");
        QVERIFY(!servers(&service, "upnp").isEmpty());
        const ReplyProbe<OrkaRowsRoles> rows;
        worker->getRows(CMPath("upnp", "/uuid:1"), 0, 49, -1, {"path", "mediaData"}, rows.reply());
        const ReplyProbe<QVariant> items;
        worker->setData(CMPath("upnp", OrkaPlayListPrepareItems()),
            QVariantList{"upnp:/uuid:1?itemType=server"}, items.reply());
        PrivateBus::settle(service.connection(), [&] { return service.activity(); });
        QCOMPARE(rows.value().rows().size() + items.value().toList().size(), 100);
        service.forgetCalls();
        if (life == 40)
            before = mallinfo2().uordblks;
    }
    const qint64 growth = qint64(mallinfo2().uordblks) - qint64(before);
    QVERIFY2(growth < 64 * 1024, qPrintable(QString("%1 bytes more").arg(growth)));
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_Plugin.moc"
