#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QStandardPaths>
#include <QTest>
#include <QUrl>

/// A media framework that knows nothing of this bridge works with it unchanged.
class tst_BridgeGrilo : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<BridgeFixture> bridge;
    std::unique_ptr<ScriptedUpnpServer> server;

    QString source() const { return "grl-dleyna-" + server->udn(); }
    QString media(const char *kind, const QString &id) const
    {
        return "%1://%2/%3"_s.arg(QLatin1String(kind),
            QString::fromLatin1(QUrl::toPercentEncoding(source())),
            QString::fromLatin1(
                QUrl::toPercentEncoding("dleyna:" + objectPath(server->udn(), id))));
    }
    QStringList launch(const QStringList &operation);

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void listsTheServerAsASource();
    void browsesServersAndContainers();
    void searchesTheServer();
    void resolvesATrack();
};

/// Runs grl-launch with the event loop going, since the server lives in it; the lines of its table.
QStringList tst_BridgeGrilo::launch(const QStringList &operation)
{
    ChildProcess grilo;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", bridge->address());
    environment.insert("GRL_PLUGIN_LIST", "grl-dleyna");
    grilo.setProcessEnvironment(environment);
    grilo.start(
        "grl-launch-0.3", QStringList{"-d", "2", "-k", "title,artist,duration,url"} + operation);
    if (!QTest::qWaitFor([&grilo] { return grilo.state() == QProcess::NotRunning; }, 15000))
        return {"grl-launch hangs"};
    const QString errors = QString::fromUtf8(grilo.readAllStandardError()).trimmed();
    const QString text = QString::fromUtf8(grilo.readAllStandardOutput()).trimmed();
    return (text + errors).split('\n');
}

void tst_BridgeGrilo::initTestCase()
{
    if (QStandardPaths::findExecutable("grl-launch-0.3").isEmpty())
        QSKIP("Grilo isn't installed (packages grilo-plugins-0.3 and libgrilo-0.3-bin).");
    bridge = std::make_unique<BridgeFixture>();
    server = std::make_unique<ScriptedUpnpServer>(newUdn(), "Scripted NAS");
    server->tree.addFolder("f", "0", "Folder", 3);
    server->tree.addFolder("e", "0", "Empty");
    server->behaviour.pageCap = 2;
    QVERIFY(!bridge->add(*server).isEmpty());
}

void tst_BridgeGrilo::cleanupTestCase()
{
    server.reset();
    bridge.reset();
}

void tst_BridgeGrilo::listsTheServerAsASource()
{
    QCOMPARE(launch({"browse", source()}), (QStringList{"Folder,,,", "Empty,,,", "2 results"}));
}

void tst_BridgeGrilo::browsesServersAndContainers()
{
    const QString track = "Track 0000%1,Artist %2,200,http://10.77.0.1:%3/media/0000%1.mp3";
    QStringList expected;
    for (int number = 1; number <= 3; ++number)
        expected.append(track.arg(number).arg(number - 1).arg(server->port()));
    expected.append("3 results");
    QCOMPARE(launch({"browse", media("grlcontainer", "f")}), expected);
    QCOMPARE(launch({"browse", media("grlcontainer", "e")}), QStringList{"No results"});
}

void tst_BridgeGrilo::searchesTheServer()
{
    const QStringList found = launch({"search", "00002", source()});
    QCOMPARE(found.size(), 2);
    QVERIFY2(found[0].startsWith("Track 00002,Artist 1,200,"), qPrintable(found[0]));
    QVERIFY(server->count("Search") > 0);
}

void tst_BridgeGrilo::resolvesATrack()
{
    const QStringList resolved = launch({"resolve", media("grlaudio", "f$2")});
    QVERIFY2(resolved[0].startsWith("Track 00003,Artist 2,200,http://"),
        qPrintable(resolved.join('\n')));
}

BRIDGE_TEST_MAIN(tst_BridgeGrilo)
#include "tst_BridgeGrilo.moc"
