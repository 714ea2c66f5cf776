#include <api/core/CMNodesWorker.h>

#include <QSignalSpy>
#include <QTest>

class tst_CMNodes : public QObject
{
    Q_OBJECT

private slots:
    void answersARange_data();
    void answersARange();
    void answersItsOwnData();
    void takesItsOwnPathOnly();
    void everyChangeIsANewVersion();
    void removesByPath_data();
    void removesByPath();
    void removesRowsOfOneBaseOneByOne();
    void theWorkerAnswersWhatNoNodeTook();
};

namespace {
const CMPath root("upnp", "");

OrkaRoles row(const QString &encodedPath)
{
    OrkaRoles roles;
    roles.setPath(CMPath::fromEncoded(encodedPath));
    roles.setTitle(TrString(encodedPath));
    return roles;
}

CMReply<OrkaRowsRoles> askRows(CMNodes &nodes, const CMPath &path, int first, int last)
{
    CMReply<OrkaRowsRoles> reply;
    nodes.getRowsRequest(CMGetRowsRequest(path, first, last, -1, {"title", "icon"}, reply));
    return reply;
}

QString titlesOf(const OrkaRowsRoles &answer)
{
    QString titles;
    for (const QVariant &row : answer.rows())
        titles += row.toList().first().toString();
    return titles;
}
} // namespace

void tst_CMNodes::answersARange_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("titles");
    QTest::newRow("all") << 0 << 2 << "p:0p:1p:2";
    QTest::newRow("one") << 1 << 1 << "p:1";
    QTest::newRow("past the end") << 2 << 1000 << "p:2";
    QTest::newRow("beyond") << 3 << 9 << "";
    QTest::newRow("end before start") << 1 << 0 << "";
    QTest::newRow("before the start") << -5 << 0 << "p:0";
    QTest::newRow("everything an int holds")
        << std::numeric_limits<int>::min() << std::numeric_limits<int>::max() << "p:0p:1p:2";
}

void tst_CMNodes::answersARange()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QString, titles);
    CMNodes nodes;
    CMListRowsNode *const node = CMListRowsNode::create(&nodes, root);
    node->setTitle(TrString("servers"));
    for (const char *path : {"p:0", "p:1", "p:2"})
        node->rowsAppend(row(path));

    const OrkaRowsRoles answer = askRows(nodes, root, first, last).value();
    QCOMPARE(titlesOf(answer), titles);
    QCOMPARE(answer.rowsCount(), 3);
    QCOMPARE(answer.rowsVersion(), 3);
    QCOMPARE(answer.roles().title().toString(), QStringLiteral("servers"));
    for (const QVariant &values : answer.rows()) {
        QCOMPARE(values.toList().size(), 2);
        QVERIFY(!values.toList().last().isValid());
    }
}

void tst_CMNodes::answersItsOwnData()
{
    CMNodes nodes;
    CMListRowsNode::create(&nodes, root)->setTitle(TrString("servers"));
    CMReply<QVariantList> reply;
    QVERIFY(nodes.getDataRequest(CMGetDataRequest(root, {"type", "icon", "title", "path"}, reply)));
    QCOMPARE(reply.value(),
        (QVariantList{
            1, QVariant(), QVariant::fromValue(TrString("servers")), QVariant::fromValue(root)}));
}

void tst_CMNodes::takesItsOwnPathOnly()
{
    CMNodes nodes;
    CMListRowsNode *const node = CMListRowsNode::create(&nodes, root);
    node->rowsAppend(row("upnp:/uuid:1"));
    QVERIFY(askRows(nodes, CMPath(root).addParam("sample", "0,1,1"), 0, 9).isFinished());
    QVERIFY(!askRows(nodes, CMPath("upnp", "/uuid:1"), 0, 9).isFinished());
    QVERIFY(!askRows(nodes, CMPath("other", ""), 0, 9).isFinished());
    CMReply<QVariant> reply;
    QVERIFY(!nodes.setDataRequest(CMSetDataRequest(root, 1, reply)));
    QVERIFY(!reply.isFinished());

    QCOMPARE(CMListRowsNode::create(&nodes, root), node);
    CMListRowsNode *const other = CMListRowsNode::create(&nodes, CMPath("upnp", "/favourites"));
    QVERIFY(other != node);
    QCOMPARE(askRows(nodes, other->path(), 0, 9).value().rowsCount(), 0);
}

void tst_CMNodes::everyChangeIsANewVersion()
{
    CMNodes nodes;
    QSignalSpy spy(&nodes, &CMNodes::rowsChanged);
    CMListRowsNode *const node = CMListRowsNode::create(&nodes, root);
    QCOMPARE(node->rowsVersion(), 0);
    node->rowsAppend(row("upnp:/1"));
    node->rowsAppend(row("upnp:/2"));
    QCOMPARE(node->rowsRemoveStartingWithPath(CMPath("upnp", "/3")), 0);
    QCOMPARE(node->rowsRemoveStartingWithPath(CMPath("upnp", "/")), 2);
    QCOMPARE(node->rowsVersion(), 3);
    QCOMPARE(spy.count(), 3);
    QVERIFY(spy.last().at(0).value<CMPath>() == root);
    QCOMPARE(spy.last().at(1).toInt(), 3);
}

void tst_CMNodes::removesByPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("left");

    const QString one = "u:/uuid:1?itemType=server", below = "u:/uuid:1/64",
                  ten = "u:/uuid:10?itemType=server", other = "v:/uuid:1";
    QTest::newRow("base and what is below it") << "u:/uuid:1" << QStringList{ten, other};
    QTest::newRow("with the parameter")
        << "u:/uuid:1?itemType=server" << QStringList{below, ten, other};
    QTest::newRow("with another value")
        << "u:/uuid:1?itemType=track" << QStringList{one, below, ten, other};
    QTest::newRow("with an empty value")
        << "u:/uuid:1?itemType=" << QStringList{one, below, ten, other};
    QTest::newRow("half a name") << "u:/uuid:" << QStringList{one, below, ten, other};
    QTest::newRow("trailing slash") << "u:/uuid:1/" << QStringList{one, ten, other};
    QTest::newRow("everything below") << "u:/" << QStringList{other};
    QTest::newRow("the root") << "u:" << QStringList{other};
    QTest::newRow("another prefix") << "v:/uuid:1" << QStringList{one, below, ten};
    QTest::newRow("child only") << "u:/uuid:1/64" << QStringList{one, ten, other};
}

void tst_CMNodes::removesByPath()
{
    QFETCH(QString, path);
    QFETCH(QStringList, left);
    CMNodes nodes;
    CMListRowsNode *const node = CMListRowsNode::create(&nodes, root);
    for (const char *each :
        {"u:/uuid:1?itemType=server", "u:/uuid:1/64", "u:/uuid:10?itemType=server", "v:/uuid:1"})
        node->rowsAppend(row(each));
    QCOMPARE(node->rowsRemoveStartingWithPath(CMPath::fromEncoded(path)), 4 - left.size());
    QStringList titles;
    for (int i = 0; i < node->rowsCount(); ++i)
        titles.append(node->row(i).title().toString());
    QCOMPARE(titles, left);
}

void tst_CMNodes::removesRowsOfOneBaseOneByOne()
{
    CMNodes nodes;
    CMListRowsNode *const node = CMListRowsNode::create(&nodes, root);
    for (const char *each : {"u:/1?a=1", "u:/1?a=2", "u:/1/64", "u:/1?a=1"})
        node->rowsAppend(row(each));
    const auto removed = [node](const char *path) {
        return node->rowsRemoveStartingWithPath(CMPath::fromEncoded(path));
    };
    QCOMPARE(removed("u:/1?a=1"), 2);
    QCOMPARE(removed("u:/1?a=1"), 0);
    QCOMPARE(removed("u:/1/"), 1);
    QCOMPARE(removed("u:/1"), 1);
    QCOMPARE(removed("u:/1"), 0);
    node->rowsAppend(row("u:/1"));
    QCOMPARE(removed("u:/1"), 1);
}

void tst_CMNodes::theWorkerAnswersWhatNoNodeTook()
{
    CMNodesWorker worker({{CMWorker::Prefix_(), "media"}}, "Name");
    QSignalSpy spy(&worker, &CMAbstractWorker::rowsChanged);
    CMListRowsNode::create(worker.nodes(), worker.addPrefix("/a"))->rowsAppend(row("media:/a/1"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(CMNodesWorker({}, "Name").prefix(), QStringLiteral("Name"));
    QVERIFY(worker.addPrefix("/x?y=%20") == CMPath("media", "/x?y=%20"));

    CMReply<OrkaRowsRoles> rows, missing, oneRow, noRow;
    CMReply<QVariantList> data;
    CMReply<QVariant> set;
    worker.getRows(worker.addPrefix("/a"), 0, 9, -1, {"title"}, rows);
    QVERIFY(!rows.error().isError());
    worker.getRows(worker.addPrefix("/b"), 0, 9, -1, {"title"}, missing);
    QVERIFY(missing.error().isError());
    worker.getData(worker.addPrefix("/b"), {"title"}, data);
    QVERIFY(data.error().isError());
    worker.setData(worker.addPrefix("/a"), 1, set);
    QVERIFY(set.error().isError());

    worker.getRows(worker.addPrefix("/a"), 0, 0, -1, {"title"}, oneRow);
    QVERIFY(!oneRow.error().isError());
    QCOMPARE(oneRow.value().rows().size(), 1);
    worker.getRows(worker.addPrefix("/a"), 1, 1, -1, {"title"}, noRow);
    QVERIFY(noRow.error().isError());
    QVERIFY(noRow.value().isEmpty());
}

QTEST_GUILESS_MAIN(tst_CMNodes)
#include "tst_CMNodes.moc"
