#include "OrkaRun.h"
#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
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
    void frozenBusIsASentence();
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
    children.open(QIODevice::ReadOnly);
    for (const QByteArray &number : children.readAll().simplified().split(' ')) {
        QFile comm("/proc/" + QString::fromLatin1(number) + "/comm");
        if (comm.open(QIODevice::ReadOnly) && comm.readAll().startsWith(name))
            return number.toLongLong();
    }
    return 0;
}

/// The socket of the bus that the bridge was told; empty when the bridge is gone.
QString busSocketOf(qint64 bridge)
{
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(bridge));
    commandLine.open(QIODevice::ReadOnly);
    const QString address = commandLine.readAll().split('\0').value(2);
    return address.section("path=", 1).section(',', 0, 0);
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
    if (signal != 0)
        arguments << "--watch";
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
    const QTemporaryDir temporary;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temporary.path());
    OrkaRun orka(bus.address(), arguments, environment);
    QTest::qWait(700); // until it is in the middle of it
    const qint64 player = childOf(orka.process().processId(), "sleep");
    QElapsedTimer clock;
    clock.start();
    QVERIFY(orka.process().processId() > 0);
    kill(pid_t(orka.process().processId()), SIGINT);
    QCOMPARE(orka.status(), 130);
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(player == 0 || !isRunning(player));
    QVERIFY(QDir(temporary.path()).isEmpty()); // the playlist is gone as well
    PrivateBus::close("service");
}

void tst_Lifetime::missingServiceIsASentence_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("said");
    const auto row = [](const char *name, const QStringList &arguments, const char *said) {
        QTest::newRow(name) << arguments << QByteArray(said);
    };
    row("no bus", {"--media-service", "session"}, "can't be reached");
    row("bad address", {"--bus", "unix:path=/nonexistent"}, "can't be reached");
    row("no address", {"--bus", "nonsense"}, "can't be reached");
    row("no bridge", {"--bridge", "/nonexistent"}, "/nonexistent");
    row("bridge ends", {"--bridge", FAKE_BRIDGE}, "no network card");
}

void tst_Lifetime::missingServiceIsASentence()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, said);
    QProcessEnvironment environment = busless();
    environment.insert("ORKA_TEST_FAIL", "1");
    OrkaRun orka(QString(), arguments << "servers", environment);
    QCOMPARE(orka.status(), 3);
    QVERIFY2(orka.errors().contains(said), orka.errors());
    QCOMPARE(orka.errors().count('\n'), 1);
}

void tst_Lifetime::frozenBusIsASentence()
{
    PrivateBus bus;
    const uint daemon = bus.open("asks").interface()->servicePid("org.freedesktop.DBus");
    QCOMPARE(kill(pid_t(daemon), SIGSTOP), 0);
    OrkaRun orka(bus.address(), {"--timeout", "0.5", "servers"});
    const int status = orka.status();
    kill(pid_t(daemon), SIGCONT);
    QCOMPARE(status, 4);
    QVERIFY(orka.errors().contains("doesn't answer"));
    PrivateBus::close("asks");
}

void tst_Lifetime::theServiceOnTheBusIsUsed()
{
    PrivateBus bus;
    QVERIFY(bus.open("service").registerService("com.intel.dleyna-server"));
    // The bridge would fail; it isn't started, since somebody has the name.
    OrkaRun used(QString(), {"--bus", bus.address(), "--bridge", "/nonexistent", "servers"});
    QCOMPARE(used.status(), 0);
    PrivateBus::close("service");
    OrkaRun alone(bus.address(), {"servers"});
    QCOMPARE(alone.status(), 3);
    QVERIFY(alone.errors().contains("no media service"));
}

QTEST_GUILESS_MAIN(tst_Lifetime)
#include "tst_Lifetime.moc"
