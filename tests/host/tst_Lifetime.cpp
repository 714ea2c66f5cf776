#include "OrkaRun.h"
#include "PrivateBus.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QtTest>

#include <csignal>
#include <memory>

/// What the program starts, and what is left of it afterwards.
class tst_Lifetime : public QObject
{
    Q_OBJECT

private slots:
    void bridgeAndBusEndWithTheProgram_data();
    void bridgeAndBusEndWithTheProgram();
    void interruptEndsAnyCommand_data();
    void interruptEndsAnyCommand();
    void missingServiceIsASentence_data();
    void missingServiceIsASentence();
    void theServiceOnTheBusIsUsed();
};

namespace {

/// An environment without any session bus.
QProcessEnvironment busless()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    return environment;
}

bool isRunning(qint64 process)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(process));
    return stat.open(QIODevice::ReadOnly) && !stat.readAll().contains(") Z ");
}

/// The process that a parent started, by name; 0 for none.
qint64 childOf(qint64 parent, const QByteArray &name)
{
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(parent));
    if (!children.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> numbers = children.readAll().simplified().split(' ');
    for (const QByteArray &number : numbers) {
        QFile comm("/proc/" + QString::fromLatin1(number) + "/comm");
        if (comm.open(QIODevice::ReadOnly) && comm.readAll().startsWith(name)) {
            return number.toLongLong();
        }
    }
    return 0;
}

/// The socket of the bus that the bridge was told; empty when the bridge is gone.
QString busSocketOf(qint64 bridge)
{
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(bridge));
    if (!commandLine.open(QIODevice::ReadOnly)) {
        return QString();
    }
    const QString address = QString::fromUtf8(commandLine.readAll().split('\0').value(2));
    return address.section(QStringLiteral("path="), 1).section(QLatin1Char(','), 0, 0);
}

} // namespace

void tst_Lifetime::bridgeAndBusEndWithTheProgram_data()
{
    QTest::addColumn<int>("signal"); // 0: it ends by itself
    QTest::addColumn<int>("status");
    QTest::newRow("end") << 0 << 0;
    QTest::newRow("Ctrl-C") << SIGINT << 130;
    QTest::newRow("terminate") << SIGTERM << 143;
    QTest::newRow("crash") << SIGKILL << 128 + SIGKILL;
}

void tst_Lifetime::bridgeAndBusEndWithTheProgram()
{
    QFETCH(int, signal);
    QFETCH(int, status);
    QStringList arguments{"--bridge", FAKE_BRIDGE, "servers"};
    if (signal != 0) {
        arguments << "--watch";
    }
    OrkaRun orka(QString(), arguments, busless());
    QVERIFY(!orka.waitForLines(1).isEmpty());
    const qint64 self = orka.process().processId();
    const qint64 bridge = childOf(self, "orka_test_bridg");
    const qint64 bus = childOf(self, "dbus-daemon");
    const QString socket = busSocketOf(bridge);
    if (signal != 0) {
        QVERIFY(self > 0 && bridge > 0 && bus > 0 && QFileInfo::exists(socket));
        kill(pid_t(self), signal);
    }
    QCOMPARE(orka.status(), status);
    QTRY_VERIFY(!isRunning(bridge) && !isRunning(bus));
    QTRY_VERIFY(!QFileInfo::exists(socket));
}

void tst_Lifetime::interruptEndsAnyCommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("waiting for an answer") << QStringList{"ls", "Shelf/Silent"};
    QTest::newRow("waiting for a server") << QStringList{"--wait", "60", "ls", "Nowhere"};
    QTest::newRow("watching") << QStringList{"servers", "--watch"};
    QTest::newRow("playing") << QStringList{"play", "--player", "sh -c \"exec sleep 60\"", "Shelf"};
}

void tst_Lifetime::interruptEndsAnyCommand()
{
    QFETCH(QStringList, arguments);
    PrivateBus bus;
    QVERIFY(bus.open("service").registerService("com.intel.dleyna-server"));
    OrkaRun orka(bus.address(), arguments);
    QTest::qWait(700); // until it is in the middle of it
    const qint64 player = childOf(orka.process().processId(), "sleep");
    QElapsedTimer clock;
    clock.start();
    QVERIFY(orka.process().processId() > 0);
    kill(pid_t(orka.process().processId()), SIGINT);
    QCOMPARE(orka.status(), 130);
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(player == 0 || !isRunning(player));
    PrivateBus::close("service");
}

void tst_Lifetime::missingServiceIsASentence_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("failing");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("no bus") << QStringList{"--media-service", "session"} << false
                            << QByteArray("can't be reached");
    QTest::newRow("bad address") << QStringList{"--bus", "unix:path=/nonexistent"} << false
                                 << QByteArray("can't be reached");
    QTest::newRow("no address") << QStringList{"--bus", "nonsense"} << false
                                << QByteArray("can't be reached");
    QTest::newRow("no bridge") << QStringList{"--bridge", "/nonexistent"} << false
                               << QByteArray("/nonexistent");
    QTest::newRow("bridge ends") << QStringList{"--bridge", FAKE_BRIDGE} << true
                                 << QByteArray("no network card");
}

void tst_Lifetime::missingServiceIsASentence()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, failing);
    QFETCH(QByteArray, said);
    QProcessEnvironment environment = busless();
    if (failing) {
        environment.insert("ORKA_TEST_FAIL", "1");
    }
    OrkaRun orka(QString(), arguments << "servers", environment);
    QCOMPARE(orka.status(), 3);
    QVERIFY2(orka.errors().contains(said), orka.errors());
    QCOMPARE(orka.errors().count('\n'), 1);
}

void tst_Lifetime::theServiceOnTheBusIsUsed()
{
    PrivateBus bus;
    QVERIFY(bus.open("service").registerService("com.intel.dleyna-server"));
    // The bridge would fail; it isn't started, since somebody has the name.
    OrkaRun orka(
        QString(), {"--bus", bus.address(), "--bridge", "/nonexistent", "--json", "servers"});
    QCOMPARE(orka.status(), 0);
    PrivateBus::close("service");
    OrkaRun alone(QString(), {"--bus", bus.address(), "--media-service", "session", "servers"});
    QCOMPARE(alone.status(), 3);
    QVERIFY(alone.errors().contains("no media service"));
}

QTEST_GUILESS_MAIN(tst_Lifetime)
#include "tst_Lifetime.moc"
