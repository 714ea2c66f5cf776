#include "PluginFixture.h"

#include <QTest>
#include <QUrl>

#include <utility>

/// Rows spread over a big container.
class tst_Sampler : public QObject
{
    Q_OBJECT

private slots:
    void takesEvenlySpacedRows_data();
    void takesEvenlySpacedRows();
    void fetchesOneRowAtATimeThroughTheTree();
    void passesOnTheFirstFailure();
    void answersAnErrorWhereThereIsNoRow_data();
    void answersAnErrorWhereThereIsNoRow();
    void believesTheFirstTotal();
    void takesTheFirstOfTooManyRows();
    void runsBesideOthersAndGoesWithItsWorker();
};

namespace {

/// A server "uuid:1" with a folder "/uuid:1/31" of tracks titled by their positions.
struct World : PluginFixture
{
    QString server = service.tree.addServer("uuid:1", "One");
    QString folder = service.tree.addContainer(server, "1", "Folder");

    explicit World(int tracks)
    {
        for (int i = 0; i < tracks; ++i)
            service.tree.addTrack(folder, "t" + QByteArray::number(i), QString::number(i));
        start();
        service.forgetCalls();
    }
    ReplyProbe<OrkaRowsRoles> sample(const QString &value, int last)
    {
        const auto rows = askRows("/uuid:1/31?itemType=container&sample=" + value, 0, last);
        settle();
        return rows;
    }
};

} // namespace

void tst_Sampler::takesEvenlySpacedRows_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("sample");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("positions");
    QTest::addColumn<int>("rowsCount");
    QTest::newRow("rows end it") << 1000 << "0,99,10" << 4 << "0 10 20 30 40" << 100;
    QTest::newRow("the container ends it") << 35 << "0,99,10" << 99 << "0 10 20 30" << 35;
    QTest::newRow("the end ends it") << 50 << "5,20,5" << 99 << "5 10 15 20" << 16;
    QTest::newRow("one short of the end") << 50 << "5,19,5" << 99 << "5 10 15" << 15;
    QTest::newRow("no step") << 10 << "0,5,0" << 2 << "0 0 0" << 6;
    QTest::newRow("words") << 10 << "a,b,c" << 0 << "0" << 1;
    QTest::newRow("start behind end") << 10 << "7,3,1" << 9 << "7" << -3;
    QTest::newRow("the last one") << 10 << "9,9,1" << 9 << "9" << 1;
    QTest::newRow("a step over everything") << 10 << "0,9,2147483647" << 9 << "0" << 10;
    QTest::newRow("an end beyond all") << 3 << "0,2147483647,2" << 99 << "0 2" << -2147483647 - 1;
    QTest::newRow("backwards") << 10 << "4,9,-2" << 2 << "4 2 0" << 6;
    QTest::newRow("no row wanted takes one all the same") << 10 << "0,9,3" << -1 << "0" << 10;
    QTest::newRow("spaces are part of no number") << 10 << "0, 9,3x" << 1 << "0 0" << 10;
}

void tst_Sampler::takesEvenlySpacedRows()
{
    QFETCH(int, size);
    QFETCH(QString, sample);
    QFETCH(int, last);
    World w(size);
    const auto rows = w.sample(QUrl::toPercentEncoding(sample), last);
    QCOMPARE(rows.outcome(), QString("value"));
    QTEST(firstColumn(rows.value()), "positions");
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(rows.value().rowsVersion(), 0);
    QCOMPARE(w.openWork(), 0);
}

void tst_Sampler::fetchesOneRowAtATimeThroughTheTree()
{
    World w(10);
    w.service.hold({"ListChildren"});
    const auto rows = w.askRows("/uuid:1/31?sample=2,9,4", 0, 9, {"path", "title"});
    for (const uint position : {2U, 6U}) {
        w.settle();
        QCOMPARE(w.service.held(), 1);
        QCOMPARE(w.service.calls({"ListChildren"}).last().arguments().mid(0, 2),
            (QVariantList{position, 1U}));
        w.service.release();
    }
    w.settle();
    QCOMPARE(rowsText(rows.value()),
        QString(R"([["upnp:/uuid:1/7432?itemType=track","2"],)"
                R"(["upnp:/uuid:1/7436?itemType=track","6"]])"));
    QCOMPARE(
        w.log.count("TRACE CB_UPnP: Enter ContainerSampler::performSample: upnp:/uuid:1/31, 1, 6"),
        1);
}

void tst_Sampler::passesOnTheFirstFailure()
{
    World w(100);
    w.service.answer({"ListChildren"}, [&w](const FakeCall &call) {
        return call.arguments().first().toUInt() == 20
            ? FakeReply::error(names::operationFailed, "gone")
            : w.service.tree.answer(call.path(), call.member(), call.arguments());
    });
    const auto rows = w.sample("0,99,10", 9);
    QCOMPARE(rows.outcome(), QString("error internal: Failed to retrieve content"));
    QVERIFY(rows.value().isEmpty());
    QCOMPARE(w.service.count({"ListChildren"}), 3);
    const QStringList lines = w.log.lines("ERROR");
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines[0].startsWith(
                 "ERROR CB_UPnP: Failed to perform container sampling at item 20; error: "),
        qPrintable(lines[0]));
    QCOMPARE(w.openWork(), 0);
}

void tst_Sampler::answersAnErrorWhereThereIsNoRow_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("position");
    QTest::newRow("an empty folder") << "/uuid:1/32?sample=0,9,1" << 0;
    QTest::newRow("a track") << "/uuid:1/7430?sample=0,9,1" << 0;
    QTest::newRow("a start beyond the end") << "/uuid:1/31?sample=50,90,10" << 50;
    QTest::newRow("a start below 0") << "/uuid:1/31?sample=-5,9,1" << -5;
    QTest::newRow("a list that shrinks") << "/uuid:1/33?sample=0,9,3" << 6;
}

void tst_Sampler::answersAnErrorWhereThereIsNoRow()
{
    QFETCH(QString, path);
    QFETCH(int, position);
    World w(10);
    w.service.tree.addContainer(w.server, "2", "Empty");
    const QString shrinking = w.service.tree.addContainer(w.server, "3", "Shrinking");
    w.service.answer({"ListChildren", shrinking}, [](const FakeCall &call) {
        const bool there = call.arguments().first().toUInt() < 5;
        QList<QVariantMap> rows;
        if (there)
            rows.append({{"DisplayName", "x"}});
        return FakeReply{{propertyMaps(rows)}, {}, {}};
    });
    w.service.answer({"Get", shrinking}, QVariantList{QVariant::fromValue(QDBusVariant(10U))});
    const auto rows = w.askRows(path, 0, 9);
    w.settle();
    QVERIFY2(rows.outcome().startsWith("error "), qPrintable(rows.outcome()));
    const QString start = "ERROR CB_UPnP: Failed to perform container sampling at item %1; error: ";
    QCOMPARE(w.log.lines(start.arg(position)).size(), 1);
    QCOMPARE(w.openWork(), 0);
}

void tst_Sampler::believesTheFirstTotal()
{
    World w(50);
    uint total = 20;
    w.service.answer({"Get", w.folder}, [&total](const FakeCall &) {
        const QVariant now = std::exchange(total, 1000U);
        return FakeReply{{QVariant::fromValue(QDBusVariant(now))}, {}, {}};
    });
    const auto rows = w.sample("0,99,10", 99);
    QCOMPARE(firstColumn(rows.value()), QString("0 10"));
    QCOMPARE(rows.value().rowsCount(), 20);
}

void tst_Sampler::takesTheFirstOfTooManyRows()
{
    World w(9);
    w.service.answer({"ListChildren"}, [&w](const FakeCall &call) {
        const uint offset = call.arguments().first().toUInt();
        return w.service.tree.answer(
            call.path(), call.member(), {offset, 3U, call.arguments().last()});
    });
    const auto rows = w.sample("0,8,4", 9);
    QCOMPARE(firstColumn(rows.value()), QString("0 4 8"));
    QCOMPARE(w.log.count("WARN CB_UPnP: Incorrect number of rows in the reply: 3"), 2);
}

void tst_Sampler::runsBesideOthersAndGoesWithItsWorker()
{
    World w(100);
    const auto one = w.askRows("/uuid:1/31?sample=0,99,50", 0, 9);
    const auto two = w.askRows("/uuid:1/31?sample=1,99,40", 0, 9);
    w.settle();
    QCOMPARE(firstColumn(one.value()) + " " + firstColumn(two.value()), QString("0 50 1 41 81"));
    w.service.hold({"Get"});
    const auto last = w.askRows("/uuid:1/31?sample=0,9,1", 0, 9);
    w.settle();
    w.stop();
    w.service.release();
    w.settle();
    QCOMPARE(last.outcome(), QString("nothing"));
    QCOMPARE(last.reply().handles(), 2L);
}

QTEST_GUILESS_MAIN(tst_Sampler)
#include "tst_Sampler.moc"
