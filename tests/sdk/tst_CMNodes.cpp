#include "Table.h"

#include <api/core/CMNodesWorker.h>

#include <QSignalSpy>

class tst_CMNodes : public QObject
{
    Q_OBJECT

private slots:
    void answersARange_data();
    void answersARange();
    void answersItsOwnDataAtItsOwnPathOnly();
    void everyChangeIsANewVersion();
    void removesByPath_data();
    void removesByPath();
    void removesRowsOfOneBaseOneByOne();
    void theWorkerAnswersWhatNoNodeTook();
};

namespace {
const CMPath root("upnp", "");

OrkaRoles rolesAt(const QString &encodedPath)
{
    OrkaRoles roles;
    roles.setPath(CMPath::fromEncoded(encodedPath));
    roles.setTitle(TrString(encodedPath));
    return roles;
}

/// The rows of a node at the root, named by their titles.
struct Node
{
    explicit Node(const QStringList &paths)
    {
        for (const QString &path : paths)
            node->rowsAppend(rolesAt(path));
    }
    CMReply<OrkaRowsRoles> ask(const CMPath &path, int first, int last)
    {
        CMReply<OrkaRowsRoles> reply;
        nodes.getRowsRequest(CMGetRowsRequest(path, first, last, -1, {"title", "icon"}, reply));
        return reply;
    }
    QStringList titles(int first = 0, int last = 99)
    {
        QStringList titles;
        for (const QVariant &row : ask(root, first, last).value().rows())
            titles.append(row.toList().first().toString());
        return titles;
    }
    int remove(const QString &path)
    {
        return node->rowsRemoveStartingWithPath(CMPath::fromEncoded(path));
    }

    CMNodes nodes;
    CMListRowsNode *node = CMListRowsNode::create(&nodes, root);
};
} // namespace

void tst_CMNodes::answersARange_data()
{
    columns<int, int, QString>("first", "last", "titles");
    row("all", 0, 2, "p:0 p:1 p:2");
    row("one", 1, 1, "p:1");
    row("past the end", 2, 1000, "p:2");
    row("beyond", 3, 9, "");
    row("end before start", 1, 0, "");
    row("before the start", -5, 0, "p:0");
    row("everything an int holds", std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
        "p:0 p:1 p:2");
}

void tst_CMNodes::answersARange()
{
    QFETCH(int, first);
    QFETCH(int, last);
    Node n({"p:0", "p:1", "p:2"});
    n.node->setTitle(TrString("servers"));
    QTEST(n.titles(first, last).join(' '), "titles");
    const OrkaRowsRoles answer = n.ask(root, first, last).value();
    QCOMPARE(answer.rowsCount(), 3);
    QCOMPARE(answer.rowsVersion(), 3);
    QCOMPARE(answer.roles().title().toString(), "servers");
    for (const QVariant &values : answer.rows()) {
        QCOMPARE(values.toList().size(), 2);
        QVERIFY(!values.toList().last().isValid());
    }
}

void tst_CMNodes::answersItsOwnDataAtItsOwnPathOnly()
{
    Node n({"upnp:/uuid:1"});
    n.node->setTitle(TrString("servers"));
    CMReply<QVariantList> data;
    const CMGetDataRequest request(root, {"type", "icon", "title", "path"}, data);
    QVERIFY(n.nodes.getDataRequest(request));
    QCOMPARE(orkaToJson(data.value()), R"([1,null,"servers","upnp:"])");
    QVERIFY(n.ask(CMPath(root).addParam("sample", "0,1,1"), 0, 9).isFinished());
    QVERIFY(!n.ask(CMPath("upnp", "/uuid:1"), 0, 9).isFinished());
    QVERIFY(!n.ask(CMPath("other", ""), 0, 9).isFinished());
    CMReply<QVariant> set;
    QVERIFY(!n.nodes.setDataRequest(CMSetDataRequest(root, 1, set)));
    QVERIFY(!set.isFinished());

    QCOMPARE(CMListRowsNode::create(&n.nodes, root), n.node);
    CMListRowsNode *const other = CMListRowsNode::create(&n.nodes, CMPath("upnp", "/favourites"));
    QVERIFY(other != n.node);
    QCOMPARE(n.ask(other->path(), 0, 9).value().rowsCount(), 0);
}

void tst_CMNodes::everyChangeIsANewVersion()
{
    Node n({});
    QSignalSpy spy(&n.nodes, &CMNodes::rowsChanged);
    QCOMPARE(n.node->rowsVersion(), 0);
    n.node->rowsAppend(rolesAt("upnp:/1"));
    n.node->rowsAppend(rolesAt("upnp:/2"));
    QCOMPARE(n.remove("upnp:/2?itemType=server"), 0);
    QCOMPARE(n.remove("upnp:/"), 2);
    QCOMPARE(n.node->rowsVersion(), 3);
    QCOMPARE(spy.count(), 3);
    QVERIFY(spy.last().at(0).value<CMPath>() == root);
    QCOMPARE(spy.last().at(1).toInt(), 3);
}

void tst_CMNodes::removesByPath_data()
{
    columns<QString, QStringList>("path", "left");
    const QString one = "u:/uuid:1?itemType=server", below = "u:/uuid:1/64",
                  ten = "u:/uuid:10?itemType=server", other = "v:/uuid:1";
    const QStringList all{one, below, ten, other};
    row("base and what is below it", "u:/uuid:1", QStringList{ten, other});
    row("with the parameter", "u:/uuid:1?itemType=server", QStringList{below, ten, other});
    row("with another value", "u:/uuid:1?itemType=track", all);
    row("with an empty value", "u:/uuid:1?itemType=", all);
    row("half a name", "u:/uuid:", all);
    row("trailing slash", "u:/uuid:1/", QStringList{one, ten, other});
    row("everything below", "u:/", QStringList{other});
    row("the root", "u:", QStringList{other});
    row("another prefix", "v:/uuid:1", QStringList{one, below, ten});
    row("child only", "u:/uuid:1/64", QStringList{one, ten, other});
}

void tst_CMNodes::removesByPath()
{
    QFETCH(QString, path);
    QFETCH(QStringList, left);
    Node n(
        {"u:/uuid:1?itemType=server", "u:/uuid:1/64", "u:/uuid:10?itemType=server", "v:/uuid:1"});
    QCOMPARE(n.remove(path), 4 - left.size());
    QCOMPARE(n.titles(), left);
}

void tst_CMNodes::removesRowsOfOneBaseOneByOne()
{
    Node n({"u:/1?a=1", "u:/1?a=2", "u:/1/64", "u:/1?a=1"});
    QCOMPARE(n.remove("u:/1?a=1"), 2);
    QCOMPARE(n.remove("u:/1?a=1"), 0);
    QCOMPARE(n.remove("u:/1/"), 1);
    QCOMPARE(n.remove("u:/1"), 1);
    QCOMPARE(n.remove("u:/1"), 0);
    n.node->rowsAppend(rolesAt("u:/1"));
    QCOMPARE(n.remove("u:/1"), 1);
}

void tst_CMNodes::theWorkerAnswersWhatNoNodeTook()
{
    CMNodesWorker worker({{CMWorker::Prefix_(), "media"}}, "Name");
    const CMPath a = worker.addPrefix("/a"), b = worker.addPrefix("/b");
    QSignalSpy spy(&worker, &CMAbstractWorker::rowsChanged);
    CMListRowsNode::create(worker.nodes(), a)->rowsAppend(rolesAt("media:/a/1"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(CMNodesWorker({}, "Name").prefix(), "Name");
    QVERIFY(worker.addPrefix("/x?y=%20") == CMPath("media", "/x?y=%20"));

    CMReply<QVariantList> data;
    worker.getData(b, {"title"}, data);
    QVERIFY(data.error().isError());
    CMReply<QVariant> set;
    worker.setData(a, 1, set);
    QVERIFY(set.error().isError());
    const auto rows = [&worker](const CMPath &path, int first, int last) {
        CMReply<OrkaRowsRoles> reply;
        worker.getRows(path, first, last, -1, {"title"}, reply);
        return reply.error().isError() && reply.value().isEmpty() ? -1
                                                                  : reply.value().rows().size();
    };
    QCOMPARE(rows(a, 0, 9), 1);
    QCOMPARE(rows(b, 0, 9), -1);
    QCOMPARE(rows(a, 0, 0), 1);
    QCOMPARE(rows(a, 1, 1), -1);
    QCOMPARE(rows(a, 1, 9), 0);
}

QTEST_GUILESS_MAIN(tst_CMNodes)
#include "tst_CMNodes.moc"
