#include "PluginFixture.h"
#include "UPnPServerList.h"
#include "util.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

/// Two servers, one in each grammar of object paths: "uuid:0a1b-2c3d" at …/server/3 and "uuid:new"
/// at …/server/uuid_3anew.
class tst_UPnPPath : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void readsNodePaths_data();
    void readsNodePaths();
    void readsObjectPaths_data();
    void readsObjectPaths();
    void readsWhatItsGrammarReads();
    void translatesThereAndBack_data();
    void translatesThereAndBack();
    void keepsParametersInTheOrderOfTheirKeys();
    void findsTheFirstOfSeveralValues();
    void removesEveryPairOfOneKey();
    void recordsAnUnknownServerWhenAskedForItsObjectPath();

private:
    UPnPPath fromOrka(const QString &base)
    {
        return UPnPPath::fromOrka(
            &m_w->worker(), m_w->worker().serverList(), m_w->worker().addPrefix(base));
    }
    UPnPPath fromDleyna(const QString &path, const UPnPPath::Query &query = {})
    {
        return UPnPPath::fromDleyna(
            &m_w->worker(), m_w->worker().serverList(), QDBusObjectPath(path), query);
    }

    std::unique_ptr<PluginFixture> m_w;
};

void tst_UPnPPath::init()
{
    m_w = std::make_unique<PluginFixture>();
    m_w->service.tree.addServer("uuid:0a1b-2c3d", "Old", {}, names::serverPrefix + "3");
    m_w->service.tree.addServer("uuid:new", "New");
    m_w->start();
    m_w->log.clear();
}

void tst_UPnPPath::cleanup()
{
    m_w.reset();
}

void tst_UPnPPath::readsNodePaths_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("udn");
    QTest::addColumn<QString>("objectId");
    QTest::newRow("server") << "/uuid:0a1b-2c3d"
                            << "uuid:0a1b-2c3d"
                            << "";
    QTest::newRow("object") << "/uuid:0a1b-2c3d/64"
                            << "uuid:0a1b-2c3d"
                            << "64";
    QTest::newRow("one line end is part of the pattern's end") << "/a/64\n"
                                                               << "a"
                                                               << "64";
    for (const char *wrong : {"", "/", "a", "/a/", "//64", "/a/64$1", "/a/6/4", "/a b", "/a/64?x=1",
             "/a/ä", "/a_b", "/a/64\n\n", "x/a/64", "/a/64 "})
        QTest::newRow(*wrong ? wrong : "nothing") << wrong << ""
                                                  << "";
}

void tst_UPnPPath::readsNodePaths()
{
    QFETCH(QString, base);
    const UPnPPath path = fromOrka(base);
    QTEST(path.udn(), "udn");
    QTEST(path.objectId, "objectId");
    QCOMPARE(m_w->log.lines("ERROR"), QStringList());
}

void tst_UPnPPath::readsObjectPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("udn");
    QTest::addColumn<QString>("objectId");
    QTest::addColumn<QString>("unknownServer"); // "none" where nothing is logged
    const QString prefix = names::serverPrefix;
    QTest::newRow("server by number") << prefix + "3"
                                      << "uuid:0a1b-2c3d"
                                      << ""
                                      << "none";
    QTest::newRow("object by number") << prefix + "3/3634"
                                      << "uuid:0a1b-2c3d"
                                      << "3634"
                                      << "none";
    QTest::newRow("server by UDN") << prefix + "uuid_3anew"
                                   << "uuid:new"
                                   << ""
                                   << "none";
    QTest::newRow("object by UDN") << prefix + "uuid_3anew/1f"
                                   << "uuid:new"
                                   << "1f"
                                   << "none";
    QTest::newRow("unknown server") << prefix + "4/64"
                                    << ""
                                    << "64" << prefix + "4";
    QTest::newRow("a number that continues") << prefix + "33"
                                             << ""
                                             << "" << prefix + "33";
    // An underscore belongs to servers only: nothing matches, so not even the server is found.
    QTest::newRow("underscore in the id") << prefix + "3/a_b"
                                          << ""
                                          << "" << prefix;
    QTest::newRow("deeper") << prefix + "3/64/1"
                            << ""
                            << "" << prefix;
    // The prefix is cut off by its length, not compared.
    QTest::newRow("another prefix as long") << QString(30, 'x').replace(0, 1, '/') + "/3/64"
                                            << "uuid:0a1b-2c3d"
                                            << "64"
                                            << "none";
    QTest::newRow("short") << "/"
                           << ""
                           << "" << prefix;
}

void tst_UPnPPath::readsObjectPaths()
{
    QFETCH(QString, path);
    QFETCH(QString, unknownServer);
    const UPnPPath read = fromDleyna(path);
    QTEST(read.udn(), "udn");
    QTEST(read.objectId, "objectId");
    const QString line = "ERROR CB_UPnP_util: Could not translate dleyna path \"" + unknownServer
        + "\" to server UDN";
    QCOMPARE(m_w->log.lines("ERROR"), unknownServer == "none" ? QStringList() : QStringList{line});
}

// Twenty thousand texts of the characters that matter, against the patterns that define the
// grammars.
void tst_UPnPPath::readsWhatItsGrammarReads()
{
    const QRegularExpression node("^/([-0-9a-zA-Z:]+)(/[0-9a-zA-Z]+)?$");
    const QRegularExpression object("^/([0-9a-zA-Z_]+)(/[0-9a-zA-Z]+)?$");
    const QString letters = QString::fromUtf8("//////aZ09:-_\n $é");
    const QRegularExpression notOnBus("[^/a-zA-Z0-9_]");
    QRandomGenerator random(20260101);
    m_w->log.setLevel(log4cplus::OFF_LOG_LEVEL);
    for (int i = 0; i < 20000; ++i) {
        QString text = i % 8 ? "/" : "";
        for (int length = random.bounded(9); length > 0; --length)
            text += letters[random.bounded(letters.size())];
        const QRegularExpressionMatch asNode = node.match(text);
        const UPnPPath fromNode = fromOrka(text);
        QVERIFY2(
            fromNode.udn() == asNode.captured(1) && fromNode.objectId == asNode.captured(2).mid(1),
            qPrintable(text));
        const QString onBus = names::serverPrefix.chopped(1) + QString(text).remove(notOnBus);
        if (onBus.endsWith('/') || onBus.contains("//"))
            continue;
        const QString id = object.match(onBus.mid(30)).captured(2).mid(1);
        QVERIFY2(fromDleyna(onBus).objectId == id, qPrintable(onBus));
    }
}

void tst_UPnPPath::translatesThereAndBack_data()
{
    QTest::addColumn<QString>("objectPath");
    QTest::addColumn<QString>("nodePath");
    const QString prefix = names::serverPrefix;
    QTest::newRow("server by number") << prefix + "3"
                                      << "upnp:/uuid:0a1b-2c3d";
    QTest::newRow("server by UDN") << prefix + "uuid_3anew"
                                   << "upnp:/uuid:new";
    QTest::newRow("object by number") << prefix + "3/36342431"
                                      << "upnp:/uuid:0a1b-2c3d/36342431";
    QTest::newRow("object by UDN") << prefix + "uuid_3anew/30"
                                   << "upnp:/uuid:new/30";
}

void tst_UPnPPath::translatesThereAndBack()
{
    QFETCH(QString, objectPath);
    QFETCH(QString, nodePath);
    const UPnPPath there = fromDleyna(objectPath);
    QCOMPARE(there.orkaPath().toEncoded(), nodePath);
    const UPnPPath back = UPnPPath::fromOrka(
        &m_w->worker(), m_w->worker().serverList(), CMPath::fromEncoded(nodePath));
    QCOMPARE(back.dbusPath().path(), objectPath);
}

void tst_UPnPPath::keepsParametersInTheOrderOfTheirKeys()
{
    const CMPath path = CMPath::fromEncoded("upnp:/uuid:new/30?b=2&a=1%26x&c=");
    const UPnPPath upath = UPnPPath::fromOrka(&m_w->worker(), m_w->worker().serverList(), path);
    QCOMPARE(upath.query, (UPnPPath::Query{{"a", "1&x"}, {"b", "2"}, {"c", ""}}));
    QCOMPARE(upath.orkaPath(), path);
    QCOMPARE(upath.orkaPathWithoutParams().toEncoded(), QString("upnp:/uuid:new/30"));
}

void tst_UPnPPath::findsTheFirstOfSeveralValues()
{
    const UPnPPath path =
        fromDleyna(names::serverPrefix + "3", {{"k", "first"}, {"empty", ""}, {"k", "second"}});
    QCOMPARE(path.queryValue("k"), QString("first"));
    QVERIFY(path.queryValue("K").isNull());
    QVERIFY(!path.queryValue("empty").isNull());
}

void tst_UPnPPath::removesEveryPairOfOneKey()
{
    const UPnPPath path = fromDleyna(names::serverPrefix + "3/64",
        {{"search", "a"}, {"query", "x"}, {"search", "b"}, {"searching", "c"}});
    const UPnPPath without = path.withoutQuery("search");
    QCOMPARE(without.query, (UPnPPath::Query{{"query", "x"}, {"searching", "c"}}));
    QCOMPARE(without.orkaPathWithoutParams(), path.orkaPathWithoutParams());
    QCOMPARE(without.dbusPath(), path.dbusPath());
    QCOMPARE(path.query.size(), 4);
}

void tst_UPnPPath::recordsAnUnknownServerWhenAskedForItsObjectPath()
{
    QVERIFY(!m_w->worker().serverList()->containsUdn("uuid:nobody"));
    QCOMPARE(fromOrka("/uuid:nobody").dbusPath().path(), QString());
    QVERIFY(m_w->worker().serverList()->containsUdn("uuid:nobody"));
    QCOMPARE(fromOrka("/uuid:nobody/64").dbusPath().path(), QString("/64"));
}

QTEST_GUILESS_MAIN(tst_UPnPPath)
#include "tst_UPnPPath.moc"
