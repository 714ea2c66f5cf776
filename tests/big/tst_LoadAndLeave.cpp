#include "FakeMediaService.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"

#include <api/core/CMSyncWorker.h>
#include <api/core/OrkaRoles.h>
#include <api/core/orka.h>

#include <QLibrary>
#include <QTest>

#include <malloc.h>

/// The library as a device loads it, a hundred times in one process.
class tst_LoadAndLeave : public QObject
{
    Q_OBJECT

private slots:
    void aHundredLivesLeaveNothingBehind();
};

namespace {

using CreateWorker = void *(*)(const char *, void *);

/// Loads the library, lives a short life in it and lets it go.
QString live(FakeMediaService &service)
{
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    const auto create = reinterpret_cast<CreateWorker>(library.resolve("worker_create"));
    if (!create)
        return library.errorString();
    QVariantHash config{{CMWorker::Prefix_(), QStringLiteral("life")}};
    const std::unique_ptr<CMSyncWorker> worker(
        static_cast<CMSyncWorker *>(create("upnpClient", &config)));
    const auto settle = [&service] {
        PrivateBus::settle(service.connection(), [&service] { return service.activity(); });
    };
    settle();
    ReplyProbe<OrkaRowsRoles> rows;
    ReplyProbe<QVariant> items;
    worker->getRows(CMPath("life", "/uuid:1"), 0, 99, -1, {OrkaRoles::Title()}, rows.reply());
    const QVariantList all{QStringLiteral("life:/uuid:1?itemType=server")};
    worker->setData(CMPath("life", OrkaPlayListPrepareItems()), all, items.reply());
    settle();
    // These are in flight when it goes.
    ReplyProbe<OrkaRowsRoles> late;
    worker->getRows(CMPath("life", "/uuid:1"), 0, 99, -1, {OrkaRoles::Title()}, late.reply());
    service.forgetCalls();
    return rows.outcome() + QLatin1Char(' ') + items.outcome();
}

} // namespace

void tst_LoadAndLeave::aHundredLivesLeaveNothingBehind()
{
    const PrivateBus bus;
    FakeMediaService service(bus);
    const QString server = service.tree.addServer("uuid:1", "Music", QStringList{"Artist"});
    for (int i = 0; i < 50; ++i)
        service.tree.addTrack(server, QByteArray::number(i), "Track");

    qint64 warm = 0;
    for (int life = 0; life < 100; ++life) {
        QCOMPARE(live(service), "value value");
        if (life == 20)
            warm = qint64(mallinfo2().uordblks);
    }
    // About 200 bytes a life and what the heap varies by; a worker that stayed is 3 KiB and more.
    // The builds with AddressSanitizer find the smaller things.
    const qint64 grown = qint64(mallinfo2().uordblks) - warm;
    QVERIFY2(grown < 160 * 1024, qPrintable(QStringLiteral("%1 bytes more").arg(grown)));
}

QTEST_GUILESS_MAIN(tst_LoadAndLeave)
#include "tst_LoadAndLeave.moc"
