#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QDBusConnectionInterface>
#include <QDateTime>
#include <QTest>

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
    void pathsNobodyHasAreErrors();
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
    QVERIFY2(second.errors.contains(serviceName.toLatin1()), second.errors.constData());
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
    QVERIFY(bridge.call(managerPath, managerInterface, "GetVersion").ok());
    second.terminate();
    QVERIFY(second.waitForFinished(2000));
    QCOMPARE(second.exitCode(), 0);
}

void tst_BridgeProgram::endsWithTheBus()
{
    ChildProcess program;
    {
        BridgeFixture bus(BridgeFixture::Activated);
        program.start(BRIDGE_PROGRAM, {"--bus", bus.address()});
        QTRY_VERIFY(bus.bus().interface()->isServiceRegistered(serviceName));
    }
    QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished(5000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
}

void tst_BridgeProgram::staysWhileItHasClients()
{
    BridgeFixture bridge(BridgeFixture::Activated, {"--idle-exit", "1"});
    const auto running = [&bridge] {
        return bool(bridge.bus().interface()->isServiceRegistered(serviceName));
    };
    {
        QDBusConnection client = QDBusConnection::connectToBus(bridge.address(), "client");
        QDBusMessage hello = QDBusMessage::createMethodCall(
            serviceName, managerPath, managerInterface, "GetServers");
        QVERIFY(Call(client.asyncCall(hello)).wait().ok());
        QVERIFY(!QTest::qWaitFor([&] { return !running(); }, 2500));
    }
    QDBusConnection::disconnectFromBus("client");
    QTRY_VERIFY(!running());

    QVERIFY(bridge.call(managerPath, managerInterface, "GetVersion").ok());
    QVERIFY(running());
    bridge.call(managerPath, managerInterface, "Release");
    QTRY_VERIFY(!running());
}

/// Signals that some client forges, complete or without what the bus's own hold, change nothing.
void tst_BridgeProgram::onlyTheBusSpeaksForTheBus()
{
    BridgeFixture bridge;
    const qint64 owner = bridge.pid();
    for (const char *name : {"NameLost", "NameOwnerChanged"}) {
        for (const QVariantList &arguments : {QVariantList(), QVariantList{serviceName, "", ""}}) {
            QDBusMessage forged = QDBusMessage::createTargetedSignal(
                serviceName, "/org/freedesktop/DBus", "org.freedesktop.DBus", name);
            forged.setArguments(arguments);
            QVERIFY(bridge.bus().send(forged));
        }
    }
    QVERIFY(bridge.call(managerPath, managerInterface, "GetVersion").ok());
    QCOMPARE(bridge.pid(), owner);
}

void tst_BridgeProgram::managerAnswers()
{
    BridgeFixture bridge;
    QVERIFY(!bridge.call(managerPath, managerInterface, "GetVersion").value().toString().isEmpty());
    const QVector<QPair<QString, QVariantList>> accepted{{"Rescan", {}},
        {"SetProtocolInfo", {"http-get:*:audio/mpeg:*"}}, {"PreferLocalAddresses", {true}}};
    for (const auto &[method, arguments] : accepted)
        QCOMPARE(bridge.call(managerPath, managerInterface, method, arguments).message, QString());
    QCOMPARE(bridge.call(managerPath, managerInterface, "Rescan", {1}).error,
        "org.freedesktop.DBus.Error.InvalidArgs");
    QCOMPARE(bridge.call(managerPath, managerInterface, "Bogus").error,
        "org.freedesktop.DBus.Error.UnknownMethod");
    QVERIFY(bridge.call(managerPath, "org.freedesktop.DBus.Peer", "Ping").ok());

    const QVariantMap own = bridge.getAll(managerPath, bridgeInterface).map();
    QCOMPARE(own["ProcessId"].toLongLong(), bridge.pid());
    QVERIFY(qAbs(own["StartedAt"].toLongLong() - QDateTime::currentSecsSinceEpoch()) < 60);
    QCOMPARE(bridge.get(managerPath, bridgeInterface, "Version").value(), own["Version"]);
    QVERIFY(bridge.call(managerPath, bridgeInterface, "Stop").ok());
    QTRY_VERIFY(!bridge.bus().interface()->isServiceRegistered(serviceName));
}

void tst_BridgeProgram::pathsNobodyHasAreErrors()
{
    BridgeFixture bridge;
    ScriptedUpnpServer server(newUdn());
    const QString known = bridge.add(server);
    const QString unknown = "org.freedesktop.DBus.Error.UnknownMethod",
                  bad = "com.intel.dleyna.BadPath";
    const QVector<QPair<QString, QString>> errors{{objectPath("uuid:none", "1"), unknown},
        {managerPath + "/server", unknown}, {"/org/example", unknown}, {known + "/123", bad},
        {known + "/31/32", bad}};
    for (const auto &[path, error] : errors) {
        const Answer answer = bridge.list(path);
        QVERIFY2(answer.error == error && !answer.message.isEmpty(), qPrintable(path));
    }
}

BRIDGE_TEST_MAIN(tst_BridgeProgram)
#include "tst_BridgeProgram.moc"
