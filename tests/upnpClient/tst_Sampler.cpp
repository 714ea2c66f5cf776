#include "PluginFixture.h"
#include "Table.h"

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
    void answersTheErrorOfTheFirstRowThatFails_data();
    void answersTheErrorOfTheFirstRowThatFails();
    void believesTheFirstTotalAndTakesTheFirstOfTooManyRows();
    void runsBesideOthersAndGoesWithItsWorker();
};

namespace {

struct World : FolderFixture
{
    explicit World(int tracks)
    {
        addTracks(tracks);
        start();
        service.forgetCalls();
    }
    ReplyProbe<OrkaRowsRoles> sample(const QString &value, int last)
    {
        return settled(askRows("/uuid:1/31?itemType=container&sample=" + value, 0, last));
    }
};

} // namespace

void tst_Sampler::takesEvenlySpacedRows_data()
{
    columns<int, QString, int, QString, int>("size", "sample", "last", "positions", "rowsCount");
    row("rows end it", 1000, "0,99,10", 4, "0 10 20 30 40", 100);
    row("the container ends it", 35, "0,99,10", 99, "0 10 20 30", 35);
    row("the end ends it", 50, "5,20,5", 99, "5 10 15 20", 16);
    row("no step", 10, "0,5,0", 2, "0 0 0", 6);
    row("words", 10, "a,b,c", 0, "0", 1);
    row("start behind end", 10, "7,3,1", 9, "7", -3);
    row("the last one", 10, "9,9,1", 9, "9", 1);
    row("an end beyond all", 3, "0,2147483647,2", 99, "0 2", -2147483647 - 1);
    row("backwards", 10, "4,9,-2", 2, "4 2 0", 6);
    row("no row wanted takes one all the same", 10, "0,9,3", -1, "0", 10);
    row("spaces are part of no number", 10, "0, 9,3x", 1, "0 0", 10);
}

void tst_Sampler::takesEvenlySpacedRows()
{
    QFETCH(int, size);
    QFETCH(QString, sample);
    QFETCH(int, last);
    World w(size);
    const auto rows = w.sample(QUrl::toPercentEncoding(sample), last);
    QCOMPARE(rows.outcome(), "value");
    QTEST(firstColumn(rows.value()), "positions");
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(rows.value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
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
        R"([["upnp:/uuid:1/7432?itemType=track","2"],["upnp:/uuid:1/7436?itemType=track","6"]])");
    const QString enter = "TRACE CB_UPnP: Enter ContainerSampler::";
    QCOMPARE(w.log.lines(enter).join('|').remove(enter),
        "performSample: upnp:/uuid:1/31, 0, 2|on_getRows_finished: |"
        "performSample: upnp:/uuid:1/31, 1, 6|on_getRows_finished: |finalizeSampling: ");
}

void tst_Sampler::answersTheErrorOfTheFirstRowThatFails_data()
{
    columns<QString, int>("path", "position");
    row("an empty folder", "/uuid:1/32?sample=0,9,1", 0);
    row("a track", "/uuid:1/7430?sample=0,9,1", 0);
    row("a start beyond the end", "/uuid:1/31?sample=50,90,10", 50);
    row("a start below 0", "/uuid:1/31?sample=-5,9,1", -5);
    row("a list that shrinks", "/uuid:1/33?sample=0,9,3", 6);
    row("a call that fails", "/uuid:1/34?sample=0,9,3", 6);
}

void tst_Sampler::answersTheErrorOfTheFirstRowThatFails()
{
    QFETCH(QString, path);
    QFETCH(int, position);
    World w(10);
    for (const char *id : {"2", "3", "4"})
        w.tree.addContainer(w.server, id, id);
    w.service.answer({"ListChildren"}, [&w](const FakeCall &call) {
        const bool isSpecial = call.path().endsWith("/33") || call.path().endsWith("/34");
        if (!isSpecial)
            return w.service.treeAnswer(call);
        if (call.arguments().first().toUInt() < 5)
            return FakeReply{{propertyMaps({{{"DisplayName", "x"}}})}, {}, {}};
        return call.path().endsWith("/33") ? FakeReply{{propertyMaps({})}, {}, {}}
                                           : FakeReply::error("a.b", "gone");
    });
    for (const char *id : {"33", "34"})
        w.service.answer({"Get", w.server + "/" + id}, propertyValue(10U));
    const auto rows = w.settled(w.askRows(path, 0, 9));
    QVERIFY2(rows.outcome().startsWith("error internal: "), qPrintable(rows.outcome()));
    QVERIFY(rows.value().isEmpty());
    const QString start =
        "ERROR CB_UPnP: Failed to perform container sampling at item %1; error: {\"name";
    QCOMPARE(w.log.lines(start.arg(position)).size(), 1);
}

void tst_Sampler::believesTheFirstTotalAndTakesTheFirstOfTooManyRows()
{
    World w(50);
    uint total = 20;
    w.service.answer({"Get", w.folder}, [&total](const FakeCall &) {
        return FakeReply{propertyValue(std::exchange(total, 1000U)), {}, {}};
    });
    w.service.answer({"ListChildren"}, [&w](const FakeCall &call) {
        const uint offset = call.arguments().first().toUInt();
        return w.tree.answer(call.path(), call.member(), {offset, 3U, call.arguments().last()});
    });
    const auto rows = w.sample("0,99,10", 99);
    QCOMPARE(firstColumn(rows.value()), "0 10");
    QCOMPARE(rows.value().rowsCount(), 20);
    QCOMPARE(w.log.count("WARN CB_UPnP: Incorrect number of rows in the reply: 3"), 2);
}

void tst_Sampler::runsBesideOthersAndGoesWithItsWorker()
{
    World w(100);
    const auto one = w.askRows("/uuid:1/31?sample=0,99,50", 0, 9);
    const auto two = w.settled(w.askRows("/uuid:1/31?sample=1,99,40", 0, 9));
    QCOMPARE(firstColumn(one.value()) + " " + firstColumn(two.value()), "0 50 1 41 81");
    w.service.hold({"Get"});
    const auto last = w.settled(w.askRows("/uuid:1/31?sample=0,9,1", 0, 9));
    w.stop();
    w.release();
    QCOMPARE(last.outcome(), "dropped");
}

QTEST_GUILESS_MAIN(tst_Sampler)
#include "tst_Sampler.moc"
