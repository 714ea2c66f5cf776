#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QTest>

class tst_BridgeSearch : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<BridgeFixture> bridge;
    std::unique_ptr<ScriptedUpnpServer> server;
    QString root;

    QString sentCriteria() const
    {
        return server->calls().isEmpty() ? QString()
                                         : server->calls().last().arguments.value("SearchCriteria");
    }

private Q_SLOTS:
    void initTestCase()
    {
        bridge = std::make_unique<BridgeFixture>();
        server = std::make_unique<ScriptedUpnpServer>(newUdn());
        server->tree.addFolder("m", "0", "Music");
        server->tree.addTrack("t1", "m", "Say \"Hello\"");
        server->tree.addTrack("t2", "m", "Back\\slash & <more>");
        server->tree.addTrack("t3", "m", "100 % Ärger");
        root = bridge->add(*server);
        QVERIFY(!root.isEmpty());
    }
    void cleanupTestCase()
    {
        server.reset();
        bridge.reset();
    }
    void init()
    {
        server->behaviour = {};
        server->forgetCalls();
    }

    void textsTravelAsTheyAre_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("id");
        const auto row = [](const char *name, const char *query, const char *sent, const char *id) {
            const auto text = [](const char *single) { // ' stands for "
                return QString::fromUtf8(single).replace('\'', '"');
            };
            QTest::newRow(name) << text(query) << text(sent) << QString::fromLatin1(id);
        };
        row("quotes", "DisplayName contains 'Say \\'Hello\\''",
            "dc:title contains 'Say \\'Hello\\''", "t1");
        row("a backslash", "DisplayName contains 'Back\\\\slash'",
            "dc:title contains 'Back\\\\slash'", "t2");
        row("markup", "DisplayName contains '& <more>'", "dc:title contains '& <more>'", "t2");
        row("per cent and an umlaut", "DisplayName contains '% Ä'", "dc:title contains '% Ä'",
            "t3");
        row("a class", "Type derivedfrom 'audio' and DisplayName contains 'Ärger'",
            "upnp:class derivedfrom 'object.item.audioItem' and dc:title contains 'Ärger'", "t3");
    }
    void textsTravelAsTheyAre()
    {
        QFETCH(QString, query);
        const Answer answer = bridge->search(root, query);
        QCOMPARE(answer.message, QString());
        QTEST(sentCriteria(), "sent");
        QFETCH(QString, id);
        QCOMPARE(answer.rows().size(), 1);
        QCOMPARE(answer.rows()[0].value("Path").toString(), objectPath(server->udn(), id));
        QCOMPARE(answer.values.value(1).toUInt(), 1U);
    }

    void anEmptyQueryFindsEverything()
    {
        const Answer answer = bridge->search(root, QString());
        QCOMPARE(answer.message, QString());
        QCOMPARE(sentCriteria(), "*");
        QCOMPARE(answer.rows().size(), 4);
    }

    void badQueriesNeverReachTheServer_data()
    {
        QTest::addColumn<QString>("query");
        for (const char *query : {"Bogus contains \"x\"", "Artist contains \"open", "Artist",
                 "(Artist = \"a\"", "dc:title contains \"x\""})
            QTest::newRow(query) << QString::fromLatin1(query);
    }
    void badQueriesNeverReachTheServer()
    {
        QFETCH(QString, query);
        const Answer answer = bridge->search(root, query);
        QCOMPARE(answer.error, "com.intel.dleyna.BadQuery");
        QVERIFY(!answer.message.isEmpty());
        QCOMPARE(server->count("Search"), 0);
    }

    void aSearchThatTheServerRefusesIsAnError_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("unsupported criteria") << 708;
        QTest::newRow("action failed") << 501;
        QTest::newRow("no such action") << 401;
    }
    void aSearchThatTheServerRefusesIsAnError()
    {
        QFETCH(int, code);
        server->behaviour.fail.insert("Search", code);
        const Answer answer = bridge->search(root, "Artist contains \"x\"");
        QCOMPARE(answer.error, "com.intel.dleyna.OperationFailed");
        QVERIFY(answer.message.startsWith("Search operation failed"));
    }

    void capabilitiesOfServersThatCannotSearch()
    {
        ScriptedUpnpServer poor(newUdn()), silent(newUdn()), able(newUdn());
        poor.behaviour.searchCaps.clear();
        poor.behaviour.fail.insert("Search", 501);
        silent.behaviour.fail.insert("GetSearchCapabilities", 501);
        able.behaviour.searchCaps = "*";
        const QString caps = "SearchCaps";
        QCOMPARE(bridge->get(bridge->add(poor), deviceInterface, caps).value().toStringList(),
            QStringList());
        QCOMPARE(bridge->get(bridge->add(able), deviceInterface, caps).value().toStringList(),
            QStringList{"*"});
        const QString path = bridge->add(silent);
        QCOMPARE(
            bridge->get(path, deviceInterface, caps).error, "com.intel.dleyna.UnknownProperty");
        QVERIFY(!bridge->search(serverPath(poor.udn()), "Artist contains \"x\"").ok());
        QVERIFY(bridge->list(path).ok());
    }

    void resultsAreSortedByWhatTheServerCan()
    {
        const auto search = [this](const char *sort) {
            return bridge->search(
                root, "Type = \"music\"", 0, 1, {"DisplayName"}, QString::fromLatin1(sort));
        };
        QCOMPARE(search("-DisplayName").rows().value(0).value("DisplayName").toString(),
            "Say \"Hello\"");
        QCOMPARE(search("+DisplayName").values.value(1).toUInt(), 3U);
        QVERIFY(search("+Artist").ok());
        QVERIFY(!search("+Bogus").ok());
    }
};

BRIDGE_TEST_MAIN(tst_BridgeSearch)
#include "tst_BridgeSearch.moc"
