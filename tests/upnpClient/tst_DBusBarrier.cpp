#include "DBusBarrier.h"
#include "PluginFixture.h"
#include "Table.h"

#include <QDBusPendingReply>
#include <QPointer>
#include <QSignalSpy>

/// Calls to a real bus; which of them come back, and in which order, is up to the test.
class tst_DBusBarrier : public QObject
{
    Q_OBJECT

private slots:
    void finishesOnceAfterItsLastCall_data();
    void finishesOnceAfterItsLastCall();
    void neverFinishesWithoutCallsOrInsideAddCall();
    void tellsNothingWhileItIsHeld();
    void aRepeatedNameWaitsForBothAndNamesTheNewer();
    void handsOutFinishedCallsInTheOrderOfTheirNames();
    void takesKeptUserDataWithItUnlessItWasTaken();
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
    void add(const QString &name, const QString &property)
    {
        barrier->addCall(name, getPropertyAsync(names::service, server, names::device, property));
    }
    void add(const QStringList &properties)
    {
        for (const QString &property : properties)
            add(property, property);
        service.settle();
    }
    void release(const QString &property)
    {
        service.release({{}, {}, property});
        service.settle();
    }
    QString text(const QString &name)
    {
        const QDBusPendingReply<QDBusVariant> reply = barrier->getCall(name);
        return reply.isError() ? reply.error().name() : reply.value().variant().toString();
    }
};

} // namespace

void tst_DBusBarrier::finishesOnceAfterItsLastCall_data()
{
    columns<QStringList>("order");
    row("as asked", QStringList{"FriendlyName", "UDN", "NoSuch"});
    row("reversed", QStringList{"NoSuch", "UDN", "FriendlyName"});
    row("a failure in between", QStringList{"UDN", "NoSuch", "FriendlyName"});
}

void tst_DBusBarrier::finishesOnceAfterItsLastCall()
{
    QFETCH(QStringList, order);
    World w;
    w.add({"FriendlyName", "UDN", "NoSuch"});
    int later = 0;
    w.barrier->setUserData(&later);
    for (const QString &property : order) {
        QCOMPARE(w.finished.count(), 0);
        QVERIFY(!w.barrier->isFinished());
        w.release(property);
    }
    QVERIFY(w.barrier->isFinished());
    QCOMPARE(w.finished.count(), 1);
    QCOMPARE(w.finished[0][0].value<DBusBarrier *>(), w.barrier.get());
    QCOMPARE(w.finished[0][1].value<void *>(), static_cast<void *>(&later));
    QCOMPARE(w.text("FriendlyName"), "Music");
    QCOMPARE(w.text("UDN"), "uuid:1");
    QCOMPARE(w.text("NoSuch"), names::unknownProperty);
}

void tst_DBusBarrier::neverFinishesWithoutCallsOrInsideAddCall()
{
    World w;
    w.service.settle();
    QVERIFY(w.barrier->isFinished());
    QVERIFY(!w.barrier->takeFinishedCall(nullptr));
    const auto failed = QDBusPendingCall::fromError(QDBusError(QDBusError::Failed, "no bus"));
    w.barrier->addCall("one", failed);
    w.barrier->addCall("two", failed);
    QCOMPARE(w.finished.count(), 0);
    QVERIFY(!w.barrier->isFinished());
    w.service.settle();
    QCOMPARE(w.finished.count(), 1);
}

void tst_DBusBarrier::tellsNothingWhileItIsHeld()
{
    World w;
    w.barrier->hold();
    w.barrier->proceed();
    QCOMPARE(w.finished.count(), 0); // nothing to tell of
    w.barrier->hold();
    w.add({"UDN"});
    w.release("UDN");
    w.add({"FriendlyName"});
    QCOMPARE(w.finished.count(), 0);
    w.barrier->proceed();
    QCOMPARE(w.finished.count(), 0); // one is still pending
    w.barrier->hold();
    w.release("FriendlyName");
    QCOMPARE(w.finished.count(), 0);
    w.barrier->proceed();
    QCOMPARE(w.finished.count(), 1);
}

void tst_DBusBarrier::aRepeatedNameWaitsForBothAndNamesTheNewer()
{
    World w;
    w.add("name", "UDN");
    w.add("name", "FriendlyName");
    w.service.settle();
    w.release("FriendlyName");
    QCOMPARE(w.finished.count(), 0);
    w.release("UDN");
    QCOMPARE(w.finished.count(), 1);
    QCOMPARE(w.text("name"), "Music");
    QVERIFY(w.barrier->takeFinishedCall(nullptr));
    QVERIFY(!w.barrier->takeFinishedCall(nullptr));
}

void tst_DBusBarrier::handsOutFinishedCallsInTheOrderOfTheirNames()
{
    World w;
    w.add({"b", "d", "a", "c"});
    for (const char *name : {"c", "b", "d"})
        w.release(name);
    QString taken;
    QString name = "untouched";
    while (QDBusPendingCallWatcher *watcher = w.barrier->takeFinishedCall(&name)) {
        QVERIFY(watcher->isFinished());
        QCOMPARE(watcher->parent(), w.barrier.get());
        QVERIFY(!w.barrier->containsCall(name));
        taken += name;
    }
    QCOMPARE(taken, "bcd");
    QCOMPARE(name, "d");
    QVERIFY(w.barrier->containsCall("a"));
    w.release("a");
    QVERIFY(w.barrier->takeFinishedCall(nullptr));
}

void tst_DBusBarrier::takesKeptUserDataWithItUnlessItWasTaken()
{
    const auto data = std::make_shared<int>(1);
    for (const bool isTaken : {false, true}) {
        DBusBarrier barrier(nullptr);
        barrier.keepUserData(std::make_unique<std::shared_ptr<int>>(data));
        const auto taken = isTaken ? barrier.takeUserData<std::shared_ptr<int>>() : nullptr;
        QCOMPARE(data.use_count(), 2);
    }
    QCOMPARE(data.use_count(), 1);
}

QTEST_GUILESS_MAIN(tst_DBusBarrier)
#include "tst_DBusBarrier.moc"
