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

    QString source() const { return QStringLiteral("grl-dleyna-") + server->udn(); }
    QString media(const char *kind, const QString &id) const
    {
        return QStringLiteral("%1://%2/%3")
            .arg(QLatin1String(kind), QString::fromLatin1(QUrl::toPercentEncoding(source())),
                QString::fromLatin1(QUrl::toPercentEncoding(
                    QStringLiteral("dleyna:") + objectPath(server->udn(), id))));
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
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bridge->address());
    environment.insert(QStringLiteral("GRL_PLUGIN_LIST"), QStringLiteral("grl-dleyna"));
    grilo.setProcessEnvironment(environment);
    grilo.start(QStringLiteral("grl-launch-0.3"),
        QStringList{QStringLiteral("-d"), QStringLiteral("2"), QStringLiteral("-k"),
            QStringLiteral("title,artist,duration,url")}
            + operation);
    if (!QTest::qWaitFor([&grilo] { return grilo.state() == QProcess::NotRunning; }, 15000))
        return {QStringLiteral("grl-launch hangs")};
    const QString errors = QString::fromUtf8(grilo.readAllStandardError()).trimmed();
    const QString text = QString::fromUtf8(grilo.readAllStandardOutput()).trimmed();
    return (text + errors).split(QLatin1Char('\n'));
}

void tst_BridgeGrilo::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("grl-launch-0.3")).isEmpty())
        QSKIP("Grilo isn't installed (packages grilo-plugins-0.3 and libgrilo-0.3-bin).");
    bridge = std::make_unique<BridgeFixture>();
    server = std::make_unique<ScriptedUpnpServer>(newUdn(), QStringLiteral("Scripted NAS"));
    server->tree.addFolder(QStringLiteral("f"), QStringLiteral("0"), QStringLiteral("Folder"), 3);
    server->tree.addFolder(QStringLiteral("e"), QStringLiteral("0"), QStringLiteral("Empty"));
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
    QCOMPARE(launch({QStringLiteral("browse"), source()}),
        (QStringList{
            QStringLiteral("Folder,,,"), QStringLiteral("Empty,,,"), QStringLiteral("2 results")}));
}

void tst_BridgeGrilo::browsesServersAndContainers()
{
    const QString track =
        QStringLiteral("Track 0000%1,Artist %2,200,http://10.77.0.1:%3/media/0000%1.mp3");
    QStringList expected;
    for (int number = 1; number <= 3; ++number)
        expected.append(track.arg(number).arg(number - 1).arg(server->port()));
    expected.append(QStringLiteral("3 results"));
    QCOMPARE(
        launch({QStringLiteral("browse"), media("grlcontainer", QStringLiteral("f"))}), expected);
    QCOMPARE(launch({QStringLiteral("browse"), media("grlcontainer", QStringLiteral("e"))}),
        QStringList{QStringLiteral("No results")});
}

void tst_BridgeGrilo::searchesTheServer()
{
    const QStringList found = launch({QStringLiteral("search"), QStringLiteral("00002"), source()});
    QCOMPARE(found.size(), 2);
    QVERIFY2(found[0].startsWith(QLatin1String("Track 00002,Artist 1,200,")), qPrintable(found[0]));
    QVERIFY(server->count(QStringLiteral("Search")) > 0);
}

void tst_BridgeGrilo::resolvesATrack()
{
    const QStringList resolved =
        launch({QStringLiteral("resolve"), media("grlaudio", QStringLiteral("f$2"))});
    QVERIFY2(resolved[0].startsWith(QLatin1String("Track 00003,Artist 2,200,http://")),
        qPrintable(resolved.join(QLatin1Char('\n'))));
}

BRIDGE_TEST_MAIN(tst_BridgeGrilo)
#include "tst_BridgeGrilo.moc"
