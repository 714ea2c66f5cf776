#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <unistd.h>

/// Many servers and many calls in flight. ORKA_STRESS=1 makes it the full size.
class tst_BridgeStress : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everyCallIsAnsweredAndMemoryStaysFlat()
    {
        const bool full = qEnvironmentVariableIsSet("ORKA_STRESS");
        const int serverCount = full ? 100 : 10, callCount = full ? 1000 : 200,
                  rounds = full ? 10 : 6;
        // Else GLib's own pools count as memory in use.
        qputenv("G_SLICE", "always-malloc");
        BridgeFixture bridge(BridgeFixture::Running, {"-vv"});
        std::vector<std::unique_ptr<ScriptedUpnpServer>> servers;
        for (int i = 0; i < serverCount; ++i) {
            servers.push_back(std::make_unique<ScriptedUpnpServer>(newUdn()));
            servers.back()->tree.addFolder("f", "0", "F", rowCount);
            QCOMPARE(servers.back()->start(), QString());
        }
        for (const auto &server : servers)
            QVERIFY(!bridge.waitForServer(server->udn()).isEmpty());
        QCOMPARE(bridge.servers().size(), serverCount);

        QVector<qint64> inUse, resident;
        for (int round = 0; round < rounds; ++round) {
            QVector<Call> calls;
            bridge.log();
            for (int i = 0; i < callCount; ++i)
                calls.append(bridge.startListing(
                    objectPath(servers[size_t(i % serverCount)]->udn(), "f"), 0, 0));
            for (Call &call : calls) {
                const Answer answer = call.wait();
                QCOMPARE(answer.message, QString());
                QCOMPARE(answer.rows().size(), rowCount);
            }
            for (const auto &server : servers)
                server->forgetCalls();
            inUse.append(kibibytesInUse(bridge));
            resident.append(residentKibibytes(bridge));
            qInfo("round %d: %lld KiB in use, %lld resident", round + 1, inUse.last(),
                resident.last());
        }
#ifdef __SANITIZE_ADDRESS__
        QSKIP("The sanitizer's allocator doesn't count.");
#endif
        QVERIFY2(!inUse.contains(0), "the program didn't say what it uses");
        // The first round opens connections, which are kept; how many there are varies.
        QVERIFY2(growth(inUse) <= 1024, "something is kept of every call");
        QVERIFY2(growth(resident) <= 6144, "memory isn't given back");
    }

private:
    static constexpr int rowCount = 10;

    static qint64 median(QVector<qint64> three)
    {
        std::sort(three.begin(), three.end());
        return three[1];
    }

    /// From the second, third and fourth round to the last three.
    static qint64 growth(const QVector<qint64> &figures)
    {
        return median(figures.mid(figures.size() - 3)) - median(figures.mid(1, 3));
    }

    /// What the program's heap holds when it has nothing to do, which it says at such times.
    static qint64 kibibytesInUse(BridgeFixture &bridge)
    {
        QByteArray log;
        qint64 kibibytes = 0;
        const auto said = [&] {
            static const QRegularExpression sentence("quiet, (\\d+) KiB");
            log += bridge.log();
            kibibytes = sentence.match(QString::fromUtf8(log)).captured(1).toLongLong();
            return sentence.match(QString::fromUtf8(log)).hasMatch();
        };
        return QTest::qWaitFor(said, 10000) ? kibibytes : 0;
    }

    static qint64 residentKibibytes(BridgeFixture &bridge)
    {
        QFile file("/proc/%1/statm"_s.arg(bridge.pid()));
        file.open(QIODevice::ReadOnly);
        return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
    }
};

BRIDGE_TEST_MAIN(tst_BridgeStress)
#include "tst_BridgeStress.moc"
