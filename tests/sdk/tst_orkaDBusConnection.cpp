#include "PrivateBus.h"

#include <api/core/orka.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVirtualObject>
#include <QTest>

/// Answers every call with 8 MiB.
class BigReplies : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return QString(); }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        return connection.send(message.createReply(QByteArray(8 << 20, 'x')));
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

// 80 MiB, with the limit at 63.
void tst_orkaDBusConnection::takesMoreUnreleasedRepliesThanTheBusLibrarysLimit()
{
    PrivateBus bus;
    BigReplies replies;
    QDBusConnection service = bus.open("bigReplies");
    QVERIFY(service.registerVirtualObject("/", &replies));
    const auto call = QDBusMessage::createMethodCall(service.baseService(), "/", "test.Big", "Get");
    QList<QDBusPendingReply<QByteArray>> pending;
    for (int i = 0; i < 10; ++i)
        pending.append(orkaDBusConnection().asyncCall(call));
    for (const QDBusPendingReply<QByteArray> &reply : qAsConst(pending)) {
        QTRY_VERIFY_WITH_TIMEOUT(reply.isFinished(), 10000);
        QVERIFY2(!reply.isError(), qPrintable(reply.error().message()));
    }
    PrivateBus::close("bigReplies");
}

QTEST_GUILESS_MAIN(tst_orkaDBusConnection)
#include "tst_orkaDBusConnection.moc"
