#include "DBusBarrier.h"
#include "PluginFixture.h"

#include <QDBusPendingReply>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

/// Calls to a real bus; which of them come back, and in which order, is up to the test.
class tst_DBusBarrier : public QObject
{
    Q_OBJECT

private slots:
    void finishesOnceAfterItsLastCall_data();
    void finishesOnceAfterItsLastCall();
    void handsOverTheUserDataOfThatMoment();
    void neverFinishesWithoutCalls();
    void neverFinishesInsideAddCall();
    void finishesAgainWhenCallsAreAddedLater();
    void aRepeatedNameWaitsForBothAndNamesTheNewer();
    void handsOutFinishedCallsInTheOrderOfTheirNames();
    void takesKeptUserDataWithItUnlessItWasTaken();
    void isSilentWhenItGoesWithCallsPending();
    void releasesARepliesMemory();
};

namespace {

/// A bus with a service whose calls are all held, and a barrier.
struct World
{
    PrivateBus bus;
    FakeMediaService service{bus};
    QString server = service.tree.addServer("uuid:1", "Music");
    std::unique_ptr<DBusBarrier> barrier = std::make_unique<DBusBarrier>(this);
    QSignalSpy finished{barrier.get(), &DBusBarrier::finished};

    World() { service.hold({}); }
    void settle()
    {
        PrivateBus::settle(service.connection(), [this] { return service.activity(); });
    }
    QDBusPendingCall ask(const QString &property)
    {
        return getPropertyAsync(names::service, server, names::device, property);
    }
    void add(const QStringList &properties)
    {
        for (const QString &property : properties)
            barrier->addCall(property, ask(property));
        settle();
    }
    void release(const QString &property)
    {
        service.release({{}, {}, property});
        settle();
    }
};

QString text(const QDBusPendingReply<QDBusVariant> &reply)
{
    return reply.isError() ? reply.error().name() : reply.value().variant().toString();
}

} // namespace

void tst_DBusBarrier::finishesOnceAfterItsLastCall_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::newRow("as asked") << QStringList{"FriendlyName", "UDN", "NoSuch"};
    QTest::newRow("reversed") << QStringList{"NoSuch", "UDN", "FriendlyName"};
    QTest::newRow("a failure in between") << QStringList{"UDN", "NoSuch", "FriendlyName"};
}

void tst_DBusBarrier::finishesOnceAfterItsLastCall()
{
    QFETCH(QStringList, order);
    World w;
    w.add({"FriendlyName", "UDN", "NoSuch"});
    for (const QString &property : order) {
        QCOMPARE(w.finished.count(), 0);
        QVERIFY(!w.barrier->isFinished());
        w.release(property);
    }
    QVERIFY(w.barrier->isFinished());
    QCOMPARE(w.finished.count(), 1);
    QCOMPARE(w.finished[0][0].value<DBusBarrier *>(), w.barrier.get());
    QCOMPARE(text(w.barrier->getCall("FriendlyName")), QString("Music"));
    QCOMPARE(text(w.barrier->getCall("UDN")), QString("uuid:1"));
    QCOMPARE(text(w.barrier->getCall("NoSuch")), names::unknownProperty);
}

void tst_DBusBarrier::handsOverTheUserDataOfThatMoment()
{
    World w;
    w.add({"UDN"});
    int later = 0;
    w.barrier->setUserData(&later);
    w.release("UDN");
    QCOMPARE(w.finished[0][1].value<void *>(), static_cast<void *>(&later));
}

void tst_DBusBarrier::neverFinishesWithoutCalls()
{
    World w;
    w.settle();
    QVERIFY(w.barrier->isFinished());
    QVERIFY(!w.barrier->takeFinishedCall(nullptr));
    QCOMPARE(w.finished.count(), 0);
}

void tst_DBusBarrier::neverFinishesInsideAddCall()
{
    World w;
    const auto failed = QDBusPendingCall::fromError(QDBusError(QDBusError::Failed, "no bus"));
    w.barrier->addCall("one", failed);
    w.barrier->addCall("two", failed);
    QCOMPARE(w.finished.count(), 0);
    QVERIFY(!w.barrier->isFinished());
    w.settle();
    QCOMPARE(w.finished.count(), 1);
}

void tst_DBusBarrier::finishesAgainWhenCallsAreAddedLater()
{
    World w;
    w.add({"UDN"});
    w.release("UDN");
    w.add({"FriendlyName"});
    QVERIFY(!w.barrier->isFinished());
    w.release("FriendlyName");
    QCOMPARE(w.finished.count(), 2);
}

void tst_DBusBarrier::aRepeatedNameWaitsForBothAndNamesTheNewer()
{
    World w;
    w.barrier->addCall("name", w.ask("UDN"));
    w.barrier->addCall("name", w.ask("FriendlyName"));
    w.settle();
    w.release("FriendlyName");
    QCOMPARE(w.finished.count(), 0);
    w.release("UDN");
    QCOMPARE(w.finished.count(), 1);
    QCOMPARE(text(w.barrier->getCall("name")), QString("Music"));
    QVERIFY(w.barrier->takeFinishedCall(nullptr));
    QVERIFY(!w.barrier->takeFinishedCall(nullptr));
}

void tst_DBusBarrier::handsOutFinishedCallsInTheOrderOfTheirNames()
{
    World w;
    w.add({"b", "d", "a", "c"});
    w.release("c");
    w.release("b");
    w.release("d");

    QString taken;
    QString name = "untouched";
    while (QDBusPendingCallWatcher *watcher = w.barrier->takeFinishedCall(&name)) {
        QVERIFY(watcher->isFinished());
        QCOMPARE(watcher->parent(), w.barrier.get());
        QVERIFY(!w.barrier->containsCall(name));
        taken += name;
    }
    QCOMPARE(taken, QString("bcd"));
    QCOMPARE(name, QString("d"));
    QVERIFY(w.barrier->containsCall("a"));
    w.release("a");
    QVERIFY(w.barrier->takeFinishedCall(nullptr));
}

void tst_DBusBarrier::takesKeptUserDataWithItUnlessItWasTaken()
{
    const auto data = std::make_shared<int>(1);
    auto kept = std::make_unique<DBusBarrier>(nullptr);
    kept->keepUserData(std::make_unique<std::shared_ptr<int>>(data));
    auto emptied = std::make_unique<DBusBarrier>(nullptr);
    emptied->keepUserData(std::make_unique<std::shared_ptr<int>>(data));
    const auto taken = emptied->takeUserData<std::shared_ptr<int>>();
    QCOMPARE(data.use_count(), 3);
    kept.reset();
    emptied.reset();
    QCOMPARE(data.use_count(), 2);
}

void tst_DBusBarrier::isSilentWhenItGoesWithCallsPending()
{
    World w;
    w.add({"UDN", "FriendlyName"});
    w.release("UDN");
    const QPointer<QObject> watcher = w.barrier->findChild<QDBusPendingCallWatcher *>();
    w.barrier.reset();
    QVERIFY(!watcher);
    w.release("FriendlyName");
    QCOMPARE(w.finished.count(), 0);
}

void tst_DBusBarrier::releasesARepliesMemory()
{
    World w;
    w.add({"UDN"});
    w.release("UDN");
    QDBusPendingCall &call = w.barrier->getCall("UDN");
    DBusBarrier::release(call);
    QVERIFY(call.isFinished());
    QVERIFY(w.barrier->getCall("UDN").reply().arguments().isEmpty());
}

QTEST_GUILESS_MAIN(tst_DBusBarrier)
#include "tst_DBusBarrier.moc"
