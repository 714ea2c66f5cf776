#include "PluginFixture.h"

#include <QTest>
#include <QUrl>

#include <utility>

/// Rows spread over a big container.
class tst_Sampler : public QObject
{
    Q_OBJECT

private slots:
    void takesEvenlySpacedRows();
    void fetchesOneRowAtATimeThroughTheTree();
    void answersTheErrorOfTheFirstRowThatFails();
    void believesTheFirstTotalAndTakesTheFirstOfTooManyRows();
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
    /// The titles and the count of a sample, or its error.
    QString sample(const QString &value, int last, const QString &node = "/uuid:1/31")
    {
        const auto rows =
            settled(askRows(node + "?sample=" + QUrl::toPercentEncoding(value), 0, last));
        if (rows.outcome() != "value" || rows.value().value("rowsVersion") != QVariant(0))
            return rows.outcome();
        return QString("%1 of %2").arg(firstColumn(rows.value())).arg(rows.value().rowsCount());
    }
};

} // namespace

void tst_Sampler::takesEvenlySpacedRows()
{
    World w(100);
    QCOMPARE(w.sample("0,99,10", 4), "0 10 20 30 40 of 100"); // as many as rows are wanted
    QCOMPARE(w.sample("5,20,5", 99), "5 10 15 20 of 16"); // to the end
    QCOMPARE(w.sample("70,199,15", 99), "70 85 of 100"); // to the container's end
    QCOMPARE(w.sample("0,5,0", 2), "0 0 0 of 6");
    QCOMPARE(w.sample("a,b,c", 0), "0 of 1"); // words are 0
    QCOMPARE(w.sample("7,3,1", 9), "7 of -3");
    QCOMPARE(w.sample("98,2147483647,1", 99), "98 99 of 100");
    QCOMPARE(w.sample("0,9,3", -1), "0 of 10"); // no row wanted takes one all the same
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
}

void tst_Sampler::answersTheErrorOfTheFirstRowThatFails()
{
    World w(10);
    for (const char *noSuchRow : {"50,90,10", "-5,9,1"})
        QVERIFY(w.sample(noSuchRow, 9).startsWith("error internal: There is no "));
    w.service.answer({"ListChildren"}, [&w](const FakeCall &call) {
        return call.arguments().first().toUInt() < 5 ? w.service.treeAnswer(call)
                                                     : FakeReply::error("a.b", "gone");
    });
    QCOMPARE(w.sample("0,9,3", 9), "error internal: Failed to retrieve content");
    QCOMPARE(w.log.lines("ERROR CB_UPnP: Failed to perform container sampling at item 6; error: {")
                 .size(),
        1);
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
    QCOMPARE(w.sample("0,99,10", 99), "0 10 of 20");
    QCOMPARE(w.log.count("WARN CB_UPnP: Incorrect number of rows in the reply: 3"), 2);
}

QTEST_GUILESS_MAIN(tst_Sampler)
#include "tst_Sampler.moc"
