#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <thread>
#include <vector>

/// Requests on their way to a worker: through the root, through the sync worker, to one that went.
class tst_CMWorker : public QObject
{
    Q_OBJECT

private slots:
    void deliversOnTheWorkersThreadInOrder();
    void routesByPrefix();
    void aPrefixIsTakenOnce();
    void aDestroyedWorkerIsForgotten();
    void requestsInFlightEndUnanswered();
    void destroyedWhileThreadsAsk();
    void forwardsChanges();
};

namespace {
/// A worker that keeps what it is asked and leaves the answering to the test.
class HeldWorker : public CMWorker
{
public:
    explicit HeldWorker(const QString &prefix)
        : CMWorker({{Prefix_(), prefix}}, QStringLiteral("HeldWorker"))
    {
    }
    void getRowsRequest(const CMGetRowsRequest &request) override { rows.append(request); }
    void getDataRequest(const CMGetDataRequest &request) override { data.append(request); }
    void setDataRequest(const CMSetDataRequest &request) override
    {
        wrongThread = wrongThread || QThread::currentThread() != thread();
        sets.append(request);
    }

    QList<CMGetRowsRequest> rows;
    QList<CMGetDataRequest> data;
    QList<CMSetDataRequest> sets;
    bool wrongThread = false;
};

CMReply<QVariant> askSet(CMAbstractWorker &to, const QString &prefix, const QVariant &value)
{
    CMReply<QVariant> reply;
    to.setData(CMPath(prefix, "/x"), value, reply);
    return reply;
}
} // namespace

void tst_CMWorker::deliversOnTheWorkersThreadInOrder()
{
    constexpr int threadCount = 4, perThread = 250;
    auto *const held = new HeldWorker("held");
    CMSyncWorker sync(held);
    QVERIFY(CMRoot()->mount(&sync));
    QCOMPARE(sync.prefix(), "held");

    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&sync, t] {
            CMAbstractWorker &to = t % 2 ? static_cast<CMAbstractWorker &>(sync) : *CMRoot();
            for (int i = 0; i < perThread; ++i)
                askSet(to, "held", t * perThread + i);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(held->sets.size(), 0);
    QTRY_COMPARE(held->sets.size(), threadCount * perThread);
    QVERIFY(!held->wrongThread);
    int last[threadCount] = {-1, -1, -1, -1};
    for (const CMSetDataRequest &request : qAsConst(held->sets)) {
        const int value = request.value().toInt(), thread = value / perThread;
        QVERIFY(value % perThread > last[thread]);
        last[thread] = value % perThread;
    }
}

void tst_CMWorker::routesByPrefix()
{
    HeldWorker a("a"), b("b");
    QVERIFY(CMRoot()->mount(&a));
    QVERIFY(CMRoot()->mount(&b));
    CMReply<OrkaRowsRoles> rows;
    CMReply<QVariantList> data;
    CMRoot()->getRows(CMPath("a", "/1"), 3, 7, 5, {"title"}, rows);
    CMRoot()->getData(CMPath("b", "/2"), {"icon"}, data);
    QCOMPARE(a.rows.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(a.rows.size(), 1);
    QCOMPARE(b.data.size(), 1);
    const CMGetRowsRequest &request = a.rows.first();
    QVERIFY(request.path() == CMPath("a", "/1"));
    QCOMPARE(request.firstRow(), 3);
    QCOMPARE(request.lastRow(), 7);
    QCOMPARE(request.rowsVersion(), 5);
    QCOMPARE(request.roles(), QStringList{"title"});
    b.data.first().reply().setValue({"url"});
    QCOMPARE(data.value(), QVariantList{"url"});

    CMRoot()->unmount(&a);
    const CMError error = askSet(*CMRoot(), "a", 1).error();
    QCOMPARE(error.name(), "internal");
    QVERIFY2(error.message().toString().contains("\"a\""), qPrintable(error.toJsonString()));
    QVERIFY(CMRoot()->mount(&a));
}

void tst_CMWorker::aPrefixIsTakenOnce()
{
    HeldWorker first("same"), second("same");
    QVERIFY(CMRoot()->mount(&first));
    QVERIFY(!CMRoot()->mount(&second));
    CMRoot()->unmount(&second);
    askSet(*CMRoot(), "same", 1);
    QCoreApplication::processEvents();
    QCOMPARE(first.sets.size(), 1);
}

void tst_CMWorker::aDestroyedWorkerIsForgotten()
{
    {
        CMSyncWorker sync(new HeldWorker("brief"));
        QVERIFY(CMRoot()->mount(&sync));
    }
    QVERIFY(askSet(*CMRoot(), "brief", 1).error().isError());
    // Heard before the root hears of it: the worker is still mounted and already gone.
    CMReply<QVariant> meanwhile;
    auto next = std::make_unique<HeldWorker>("brief");
    connect(next.get(), &QObject::destroyed, this,
        [&meanwhile] { meanwhile = askSet(*CMRoot(), "brief", 1); });
    QVERIFY(CMRoot()->mount(next.get()));
    next.reset();
    QVERIFY(meanwhile.error().message().toString().contains("gone"));
}

void tst_CMWorker::requestsInFlightEndUnanswered()
{
    auto *const held = new HeldWorker("held");
    auto sync = std::make_unique<CMSyncWorker>(held);
    const CMReply<QVariant> delivered = askSet(*sync, "held", 1);
    QCoreApplication::processEvents();
    const CMReply<QVariant> posted = askSet(*sync, "held", 2);
    QCOMPARE(held->sets.size(), 1);
    QCOMPARE(posted.handles(), 2L);
    sync.reset();
    QCoreApplication::processEvents();
    for (const CMReply<QVariant> &reply : {delivered, posted}) {
        QVERIFY(!reply.isFinished());
        QCOMPARE(reply.handles(), 2L); // ours and this loop's copy: no other is left
    }
}

void tst_CMWorker::destroyedWhileThreadsAsk()
{
    for (int round = 0; round < 200; ++round) {
        auto sync = std::make_unique<CMSyncWorker>(new HeldWorker("held"));
        QVERIFY(CMRoot()->mount(sync.get()));
        std::thread asker([] {
            // Until the worker has gone, which an error tells.
            while (!askSet(*CMRoot(), "held", 1).error().isError())
                std::this_thread::yield();
        });
        QCoreApplication::processEvents();
        sync.reset();
        asker.join();
    }
}

void tst_CMWorker::forwardsChanges()
{
    auto *const held = new HeldWorker("held");
    CMSyncWorker sync(held);
    QVERIFY(CMRoot()->mount(&sync));
    QSignalSpy syncSpy(&sync, &CMAbstractWorker::rowsChanged);
    QSignalSpy rootSpy(CMRoot(), &CMAbstractWorker::rowsChanged);
    emit held->rowsChanged(CMPath("held", "/1"), 4);
    QCOMPARE(rootSpy.count(), 1);
    CMRoot()->unmount(&sync);
    emit held->rowsChanged(CMPath("held", "/1"), 5);
    QCOMPARE(rootSpy.count(), 1);
    QCOMPARE(syncSpy.count(), 2);
    QCOMPARE(syncSpy.last().at(1).toInt(), 5);
}

QTEST_GUILESS_MAIN(tst_CMWorker)
#include "tst_CMWorker.moc"
