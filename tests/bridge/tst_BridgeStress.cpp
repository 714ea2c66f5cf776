#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QFile>
#include <QTest>

#include <unistd.h>

namespace {

qint64 residentKiB(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(pid));
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace

/// Many servers and many calls in flight. ORKA_STRESS=1 makes it the full size.
class tst_BridgeStress : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everyCallIsAnsweredAndMemoryStaysFlat()
    {
        const bool full = qEnvironmentVariableIsSet("ORKA_STRESS");
        constexpr int rowCount = 10;
        const int serverCount = full ? 100 : 10, callCount = full ? 1000 : 200,
                  rounds = full ? 10 : 6;
        BridgeFixture bridge;
        std::vector<std::unique_ptr<ScriptedUpnpServer>> servers;
        for (int i = 0; i < serverCount; ++i) {
            servers.push_back(std::make_unique<ScriptedUpnpServer>(newUdn()));
            servers.back()->tree.addFolder(
                QStringLiteral("f"), QStringLiteral("0"), QStringLiteral("F"), rowCount);
            QCOMPARE(servers.back()->start(), QString());
        }
        for (const auto &server : servers)
            QVERIFY(!bridge.waitForServer(server->udn()).isEmpty());
        QCOMPARE(bridge.servers().size(), serverCount);

        qint64 settled = 0, resident = 0;
        for (int round = 0; round < rounds; ++round) {
            QVector<Call> calls;
            for (int i = 0; i < callCount; ++i)
                calls.append(bridge.startListing(
                    objectPath(servers[size_t(i % serverCount)]->udn(), QStringLiteral("f")), 0,
                    0));
            for (Call &call : calls) {
                const Answer answer = call.wait();
                QCOMPARE(answer.message, QString());
                QCOMPARE(answer.rows().size(), rowCount);
            }
            for (const auto &server : servers)
                server->forgetCalls();
            resident = residentKiB(bridge.pid());
            if (round == rounds / 2 - 1)
                settled = resident;
            qInfo("round %d: %lld KiB resident", round + 1, static_cast<long long>(resident));
        }
        QVERIFY(settled > 0);
#ifdef __SANITIZE_ADDRESS__
        QSKIP("Memory that is kept back for checks grows with every round.");
#endif
        QVERIFY2(resident <= settled + settled / 10 + 4096,
            "the bridge's memory grows with every round");
    }
};

BRIDGE_TEST_MAIN(tst_BridgeStress)
#include "tst_BridgeStress.moc"
