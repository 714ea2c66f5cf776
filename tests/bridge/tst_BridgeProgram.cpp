#include "BridgeFixture.h"
#include "TestNamespace.h"

#include <QDBusConnectionInterface>
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace {

struct Ended
{
    int status = -1;
    QByteArray output, errors;
};

Ended runBridge(const QStringList &arguments)
{
    ChildProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    process.setProcessEnvironment(environment);
    process.start(BRIDGE_PROGRAM, arguments);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

bool catchesTheEnd(const QProcess &program)
{
    static const QRegularExpression withSigterm("SigCgt:\\t[0-9a-f]{12}[4-7c-f]");
    QFile status("/proc/%1/status"_s.arg(program.processId()));
    return status.open(QIODevice::ReadOnly) && withSigterm.match(status.readAll()).hasMatch();
}

} // namespace

class tst_BridgeProgram : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wrongUseEndsWithASentence();
    void theNameIsNeverTakenUnasked();
    void replacesWhenAskedTo();
    void endsWithTheBus();
    void staysWhileItHasClients();
    void onlyTheBusSpeaksForTheBus();
    void managerAnswers();
};

void tst_BridgeProgram::wrongUseEndsWithASentence()
{
    const auto ends = [](const QString &arguments, int status, const QByteArray &says) {
        const Ended ended = runBridge(arguments.split(' '));
        const QByteArray said = ended.status == 0 ? ended.output : ended.errors;
        return ended.status == status && said.contains(says) ? "as it should" : arguments + said;
    };
    QCOMPARE(ends("--version", 0, "orka-media-bridge"), "as it should");
    QCOMPARE(ends("--help", 0, "--idle-exit"), "as it should");
    QCOMPARE(ends("--bogus", 2, "--bogus"), "as it should");
    QCOMPARE(ends("--idle-exit -1", 2, "--idle-exit"), "as it should");
    QCOMPARE(ends("stray", 2, "stray"), "as it should");
    QCOMPARE(ends("--bus unix:path=/nowhere/at-all", 3, "/nowhere/at-all"), "as it should");
    QCOMPARE(ends("--bus session", 3, "session"), "as it should");
}

void tst_BridgeProgram::theNameIsNeverTakenUnasked()
{
    BridgeFixture bridge;
    const qint64 owner = bridge.pid();
    const Ended second = runBridge({"--bus", bridge.address()});
    QCOMPARE(second.status, 3);
    QVERIFY2(second.errors.contains(names::service.toLatin1()), second.errors.constData());
    QCOMPARE(bridge.pid(), owner);
}

void tst_BridgeProgram::replacesWhenAskedTo()
{
    BridgeFixture bridge;
    const qint64 owner = bridge.pid();
    ChildProcess second;
    second.start(BRIDGE_PROGRAM, {"--bus", bridge.address(), "--replace"});
    QVERIFY(second.waitForStarted());
    QTRY_VERIFY(bridge.pid() == second.processId() || second.state() == QProcess::NotRunning);
    QVERIFY2(bridge.pid() != owner, second.readAllStandardError().constData());
    QCOMPARE(bridge.stop(), 3); // the first has said that it was replaced
    QVERIFY(bridge.call(names::managerPath, names::manager, "GetVersion").ok());
    second.terminate();
    QVERIFY(second.waitForFinished(2000));
    QCOMPARE(second.exitCode(), 0);
}

void tst_BridgeProgram::endsWithTheBus()
{
    ChildProcess program, early;
    {
        BridgeFixture bus(BridgeFixture::Activated);
        program.start(BRIDGE_PROGRAM, {"--bus", bus.address()});
        QTRY_VERIFY(bus.bus().interface()->isServiceRegistered(names::service));
        kill(pid_t(bus.busPid()), SIGSTOP);
        early.start(BRIDGE_PROGRAM, {"--bus", bus.address()});
        QTRY_VERIFY(early.waitForStarted() && catchesTheEnd(early));
        early.terminate();
        const bool hasEnded = early.waitForFinished(5000);
        kill(pid_t(bus.busPid()), SIGCONT);
        QVERIFY(hasEnded && early.exitStatus() == QProcess::NormalExit);
    }
    QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished(5000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
}

void tst_BridgeProgram::staysWhileItHasClients()
{
    BridgeFixture bridge(BridgeFixture::Activated, {"--idle-exit", "1"});
    const auto running = [&bridge] {
        return bool(bridge.bus().interface()->isServiceRegistered(names::service));
    };
    {
        QDBusConnection client = QDBusConnection::connectToBus(bridge.address(), "client");
        QDBusMessage hello = QDBusMessage::createMethodCall(
            names::service, names::managerPath, names::manager, "GetServers");
        QVERIFY(Call(client.asyncCall(hello)).wait().ok());
        QVERIFY(!QTest::qWaitFor([&] { return !running(); }, 2500));
    }
    QDBusConnection::disconnectFromBus("client");
    QTRY_VERIFY(!running());

    QVERIFY(bridge.call(names::managerPath, names::manager, "GetVersion").ok());
    QVERIFY(running());
    bridge.call(names::managerPath, names::manager, "Release");
    QTRY_VERIFY(!running());
}

/// Signals that some client forges, complete or without what the bus's own hold, change nothing.
void tst_BridgeProgram::onlyTheBusSpeaksForTheBus()
{
    BridgeFixture bridge;
    const qint64 owner = bridge.pid();
    for (const char *name : {"NameLost", "NameOwnerChanged"}) {
        for (const QVariantList &arguments :
            {QVariantList(), QVariantList{names::service, "", ""}}) {
            QDBusMessage forged = QDBusMessage::createTargetedSignal(
                names::service, "/org/freedesktop/DBus", "org.freedesktop.DBus", name);
            forged.setArguments(arguments);
            QVERIFY(bridge.bus().send(forged));
        }
    }
    QVERIFY(bridge.call(names::managerPath, names::manager, "GetVersion").ok());
    QCOMPARE(bridge.pid(), owner);
}

void tst_BridgeProgram::managerAnswers()
{
    BridgeFixture bridge;
    const auto error = [&bridge](const char *method, const QVariantList &arguments = {}) {
        return bridge.call(names::managerPath, names::manager, method, arguments).error;
    };
    QCOMPARE(error("GetVersion") + error("Rescan") + error("PreferLocalAddresses", {true}), "");
    QCOMPARE(error("Rescan", {1}), names::invalidArgs);
    QCOMPARE(error("Bogus"), names::unknownMethod);

    const auto own = [&bridge](const char *property) {
        return bridge.get(names::managerPath, names::bridge, property).value();
    };
    QCOMPARE(own("ProcessId").toLongLong(), bridge.pid());
    QVERIFY(qAbs(own("StartedAt").toLongLong() - QDateTime::currentSecsSinceEpoch()) < 60);
    QVERIFY(!own("Version").toString().isEmpty());
    QVERIFY(bridge.call(names::managerPath, names::bridge, "Stop").ok());
    QTRY_VERIFY(!bridge.bus().interface()->isServiceRegistered(names::service));
}

BRIDGE_TEST_MAIN(tst_BridgeProgram)
#include "tst_BridgeProgram.moc"
