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
    void readsObjectPaths();
    void readsWhatItsGrammarReads();
    void keepsParametersInTheOrderOfTheirKeys();
};

namespace {

const QString prefix = names::serverPrefix;

struct World : PluginFixture
{
    World()
    {
        tree.addServer("uuid:0a1b-2c3d", "Old", {}, prefix + "3");
        tree.addServer("uuid:new", "New");
        start();
        log.clear();
    }
    UPnPPath fromOrka(const CMPath &path)
    {
        return UPnPPath::fromOrka(&worker(), worker().serverList(), path);
    }
    UPnPPath fromDleyna(const QString &path, const UPnPPath::Query &query = {})
    {
        return UPnPPath::fromDleyna(&worker(), worker().serverList(), QDBusObjectPath(path), query);
    }
    /// Server and object, and what the log says of a server that isn't known.
    QString read(const QString &path)
    {
        log.clear();
        const UPnPPath read = fromDleyna(path);
        return read.udn() + ' ' + read.objectId + log.lines("ERROR").join(' ').section('"', 1, 1);
    }
};

} // namespace

void tst_UPnPPath::readsObjectPaths()
{
    World w;
    QCOMPARE(w.read(prefix + "3"), "uuid:0a1b-2c3d ");
    QCOMPARE(w.read(prefix + "uuid_3anew/1f"), "uuid:new 1f");
    QCOMPARE(w.read(prefix + "33/64"), " 64" + prefix + "33");
    // An underscore belongs to servers only: nothing matches, so not even the server is found.
    QCOMPARE(w.read(prefix + "3/a_b"), ' ' + prefix);
    QCOMPARE(w.read(prefix + "3/64/1"), ' ' + prefix);
    // The prefix is cut off by its length, not compared.
    QCOMPARE(w.read('/' + QString(29, 'x') + "/3/64"), "uuid:0a1b-2c3d 64");
    QCOMPARE(w.read("/"), ' ' + prefix);
}

// Known oddities and thousands of texts of the characters that matter, against the patterns that
// define the grammars.
void tst_UPnPPath::readsWhatItsGrammarReads()
{
    const QRegularExpression node("^/([-0-9a-zA-Z:]+)(/[0-9a-zA-Z]+)?$");
    const QRegularExpression object("^/([0-9a-zA-Z_]+)(/[0-9a-zA-Z]+)?$");
    const QString letters = QString::fromUtf8("//////aZ09:-_\n $é");
    QRandomGenerator random(20260101);
    QStringList texts{"", "a", "/a/", "//64", "/a/6/4", "/a/64\n", "/a/64\n\n", "x/a/64"};
    while (texts.size() < 5000) {
        QString text = texts.size() % 8 ? "/" : "";
        for (int length = random.bounded(9); length > 0; --length)
            text += letters[random.bounded(letters.size())];
        texts.append(text);
    }
    World w;
    w.log.setLevel(log4cplus::OFF_LOG_LEVEL);
    for (const QString &text : qAsConst(texts)) {
        const QRegularExpressionMatch asNode = node.match(text);
        const UPnPPath fromNode = w.fromOrka(w.worker().addPrefix(text));
        QCOMPARE(fromNode.udn(), asNode.captured(1));
        QCOMPARE(fromNode.objectId, asNode.captured(2).mid(1));
        const QString onBus =
            prefix.chopped(1) + QString(text).remove(QRegularExpression("[^/a-zA-Z0-9_]"));
        if (onBus.endsWith('/') || onBus.contains("//"))
            continue;
        QCOMPARE(w.fromDleyna(onBus).objectId, object.match(onBus.mid(30)).captured(2).mid(1));
    }
}

void tst_UPnPPath::keepsParametersInTheOrderOfTheirKeys()
{
    World w;
    const CMPath node = CMPath::fromEncoded("upnp:/uuid:new/30?b=2&a=1%26x&c=");
    QCOMPARE(w.fromOrka(node).query, (UPnPPath::Query{{"a", "1&x"}, {"b", "2"}, {"c", ""}}));
    QCOMPARE(w.fromOrka(node).orkaPath(), node);
    const UPnPPath path = w.fromDleyna(
        prefix + "3/64", {{"search", "a"}, {"query", ""}, {"search", "b"}, {"searching", "c"}});
    QCOMPARE(path.queryValue("search"), "a");
    QVERIFY(path.queryValue("Search").isNull() && !path.queryValue("query").isNull());
    const UPnPPath without = path.withoutQuery("search");
    QCOMPARE(without.query, (UPnPPath::Query{{"query", ""}, {"searching", "c"}}));
    QCOMPARE(without.orkaPathWithoutParams().toEncoded(), "upnp:/uuid:0a1b-2c3d/64");
    QCOMPARE(without.dbusPath().path(), prefix + "3/64");
}

QTEST_GUILESS_MAIN(tst_UPnPPath)
#include "tst_UPnPPath.moc"
