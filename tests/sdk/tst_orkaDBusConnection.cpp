#include "PrivateBus.h"

#include <api/core/orka.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVirtualObject>
#include <QTest>

#include <vector>

/// Answers every call with a big byte array.
class BigReplies : public QDBusVirtualObject
{
public:
    static constexpr int bytes = 8 * 1024 * 1024;

    QString introspect(const QString &) const override { return QString(); }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        return connection.send(message.createReply(QByteArray(bytes, 'x')));
    }
};

class tst_orkaDBusConnection : public QObject
{
    Q_OBJECT

private slots:
    void staysTheSameUntilAnotherIsOpened();
    void tellsWhyItCouldNotBeOpened();
    void takesMoreUnreleasedRepliesThanTheBusLibrarysLimit();
};

void tst_orkaDBusConnection::staysTheSameUntilAnotherIsOpened()
{
    PrivateBus first, second;
    QDBusConnection observer = first.open("observer");
    QVERIFY(orkaOpenDBusConnection(first.address()));
    const QString name = orkaDBusConnection().name();
    const QString onTheBus = orkaDBusConnection().baseService();
    QCOMPARE(orkaDBusConnection().name(), name);
    QVERIFY(observer.interface()->isServiceRegistered(onTheBus));

    QVERIFY(orkaOpenDBusConnection(second.address()));
    QVERIFY(orkaDBusConnection().isConnected());
    QVERIFY(orkaDBusConnection().name() != name);
    QTRY_VERIFY(!observer.interface()->isServiceRegistered(onTheBus));
}

void tst_orkaDBusConnection::tellsWhyItCouldNotBeOpened()
{
    QVERIFY(!orkaOpenDBusConnection("unix:path=/nonexistent/bus"));
    QVERIFY(!orkaDBusConnection().isConnected());
    QVERIFY(!orkaDBusConnection().lastError().message().isEmpty());
    PrivateBus bus;
    QVERIFY(orkaOpenDBusConnection(bus.address()));
    QVERIFY(orkaDBusConnection().isConnected());
}

void tst_orkaDBusConnection::takesMoreUnreleasedRepliesThanTheBusLibrarysLimit()
{
    constexpr int calls = 10; // 80 MiB, with the limit at 63
    PrivateBus bus;
    QVERIFY(orkaOpenDBusConnection(bus.address()));
    BigReplies replies;
    QDBusConnection service = QDBusConnection::connectToBus(bus.address(), "bigReplies");
    QVERIFY(service.registerVirtualObject("/", &replies));
    std::vector<QDBusPendingReply<QByteArray>> pending;
    for (int i = 0; i < calls; ++i) {
        pending.emplace_back(orkaDBusConnection().asyncCall(
            QDBusMessage::createMethodCall(service.baseService(), "/", "test.Big", "Get")));
    }
    for (const QDBusPendingReply<QByteArray> &reply : pending) {
        QTRY_VERIFY_WITH_TIMEOUT(reply.isFinished(), 10000);
        QVERIFY2(!reply.isError(), qPrintable(reply.error().message()));
    }
    QDBusConnection::disconnectFromBus("bigReplies");
}

QTEST_GUILESS_MAIN(tst_orkaDBusConnection)
#include "tst_orkaDBusConnection.moc"
