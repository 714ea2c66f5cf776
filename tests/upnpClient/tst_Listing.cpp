#include "PluginFixture.h"
#include "UPnPServerList.h"

#include <QTest>

/// Rows of containers.
class tst_Listing : public QObject
{
    Q_OBJECT

private slots:
    void handsTheRangeOnUnchanged_data();
    void handsTheRangeOnUnchanged();
    void asksForTheSameSeventeenProperties();
    void givesTheRowsThatComeAndTheContainersTotal_data();
    void givesTheRowsThatComeAndTheContainersTotal();
    void answersOneErrorWhicheverCallFails_data();
    void answersOneErrorWhicheverCallFails();
    void countsWhatTheServiceCalls_data();
    void countsWhatTheServiceCalls();
    void keepsListingsApartThatAnswerOutOfOrder();
    void answersLongListingsInOrder_data();
    void answersLongListingsInOrder();
    void keepsTheServerThatALongAnswerBeganWith();
    void dropsALongAnswerWithItsWorker();
    void leavesRequestsUnansweredWhenTheWorkerGoes();
    void answersTenThousandRows();
    void keepsNoReplyItHasRead();
};

namespace {

/// A server "uuid:1" with a folder "/uuid:1/31".
struct World : PluginFixture
{
    QString server = service.tree.addServer("uuid:1", "One");
    QString folder = service.tree.addContainer(server, "1", "Folder");

    void addTracks(int count)
    {
        for (int i = 0; i < count; ++i)
            service.tree.addTrack(folder, "t" + QByteArray::number(i), QString::number(i));
    }
};

QString numbers(int first, int last)
{
    QStringList texts;
    for (int i = first; i <= last; ++i)
        texts.append(QString::number(i));
    return texts.join(' ');
}

const QString failed = "error internal: Failed to retrieve content";

} // namespace

void tst_Listing::handsTheRangeOnUnchanged_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<uint>("offset");
    QTest::addColumn<uint>("max");
    QTest::newRow("ten") << 0 << 9 << 0U << 10U;
    QTest::newRow("beyond the end") << 900 << 909 << 900U << 10U;
    QTest::newRow("none") << 5 << 4 << 5U << 0U;
    QTest::newRow("backwards") << 9 << 5 << 9U << 4294967293U;
    QTest::newRow("below 0") << -1 << -1 << 4294967295U << 1U;
    QTest::newRow("all there can be") << 0 << 2147483647 << 0U << 2147483648U;
    QTest::newRow("more than there can be") << -2147483647 - 1 << 2147483647 << 2147483648U << 0U;
}

void tst_Listing::handsTheRangeOnUnchanged()
{
    QFETCH(int, first);
    QFETCH(int, last);
    World w;
    w.start();
    w.askRows("/uuid:1/31", first, last);
    w.settle();
    const auto calls = w.service.calls({"ListChildren"});
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].path(), w.folder);
    QCOMPARE(calls[0].message.signature(), QString("uuas"));
    QTEST(calls[0].arguments().at(0).toUInt(), "offset");
    QTEST(calls[0].arguments().at(1).toUInt(), "max");
}

void tst_Listing::asksForTheSameSeventeenProperties()
{
    World w;
    w.start();
    w.askRows("/uuid:1/31", 0, 9);
    w.settle();
    QCOMPARE(w.service.calls({"ListChildren"})[0].arguments().at(2).toStringList().join(' '),
        QString("Type TypeEx MIMEType DisplayName Artist Album AlbumArtURL URLs Creator Genre Path "
                "Date TrackNumber Duration Bitrate SampleRate BitsPerSample"));
}

void tst_Listing::givesTheRowsThatComeAndTheContainersTotal_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("titles");
    QTest::newRow("a page") << 0 << 9 << numbers(0, 9);
    QTest::newRow("the last page") << 20 << 29 << numbers(20, 24);
    QTest::newRow("behind the end") << 25 << 29 << "";
}

void tst_Listing::givesTheRowsThatComeAndTheContainersTotal()
{
    QFETCH(int, first);
    QFETCH(int, last);
    World w;
    w.addTracks(25);
    w.start();
    const auto rows = w.askRows("/uuid:1/31?itemType=container", first, last);
    w.settle();
    QCOMPARE(rows.outcome(), QString("value"));
    QTEST(firstColumn(rows.value()), "titles");
    QCOMPARE(rows.value().rowsCount(), 25);
    QVERIFY(rows.value().contains(OrkaRowsRoles::RowsVersion()));
    QCOMPARE(rows.value().rowsVersion(), 0);
    QCOMPARE(w.openWork(), 0);
}

void tst_Listing::answersOneErrorWhicheverCallFails_data()
{
    QTest::addColumn<bool>("childrenFail");
    QTest::addColumn<bool>("countFails");
    QTest::newRow("children") << true << false;
    QTest::newRow("count") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_Listing::answersOneErrorWhicheverCallFails()
{
    QFETCH(bool, childrenFail);
    QFETCH(bool, countFails);
    World w;
    w.addTracks(3);
    w.start();
    if (childrenFail)
        w.service.fail({"ListChildren"}, "children!");
    if (countFails)
        w.service.fail({"Get", {}, "ChildCount"}, "count!");
    const auto rows = w.askRows("/uuid:1/31", 0, 9);
    w.settle();
    QCOMPARE(rows.outcome(), failed);
    QCOMPARE(w.log.lines("INFO"),
        (QStringList{"INFO CB_UPnP: Fetching children failed",
            QString("INFO CB_UPnP: listChildren: ") + (childrenFail ? "children!" : ""),
            QString("INFO CB_UPnP: childCount: ") + (countFails ? "count!" : "")}));
    QCOMPARE(w.openWork(), 0);
}

void tst_Listing::countsWhatTheServiceCalls_data()
{
    QTest::addColumn<QVariantList>("children");
    QTest::addColumn<QVariantList>("count");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<int>("rowsCount");
    const QVariantList none{propertyMaps({})};
    const auto variant = [](const QVariant &value) {
        return QVariantList{QVariant::fromValue(QDBusVariant(value))};
    };
    QTest::newRow("unsigned") << none << variant(7U) << "value" << 7;
    QTest::newRow("text that is a number") << none << variant("12") << "value" << 12;
    QTest::newRow("text") << none << variant("many") << "value" << 0;
    QTest::newRow("more than an int holds") << none << variant(4294967295U) << "value" << -1;
    QTest::newRow("no variant") << none << QVariantList{7U} << failed << 0;
    QTest::newRow("nothing") << none << QVariantList() << failed << 0;
    QTest::newRow("children that are texts")
        << QVariantList{QStringList{"a"}} << variant(1U) << failed << 0;
    QTest::newRow("children that are one map")
        << QVariantList{QVariantMap{{"Type", "music"}}} << variant(1U) << failed << 0;
    QTest::newRow("no children at all") << QVariantList() << variant(1U) << failed << 0;
}

void tst_Listing::countsWhatTheServiceCalls()
{
    QFETCH(QVariantList, children);
    QFETCH(QVariantList, count);
    World w;
    w.start();
    w.service.answer({"ListChildren"}, children);
    w.service.answer({"Get", {}, "ChildCount"}, count);
    const auto rows = w.askRows("/uuid:1/31", 0, 9);
    w.settle();
    QTEST(rows.outcome(), "outcome");
    QTEST(rows.value().rowsCount(), "rowsCount");
}

void tst_Listing::keepsListingsApartThatAnswerOutOfOrder()
{
    World w;
    w.addTracks(30);
    w.start();
    w.service.hold({});
    const auto first = w.askRows("/uuid:1/31", 0, 1);
    const auto second = w.askRows("/uuid:1", 0, 1);
    w.settle();
    QCOMPARE(w.service.held(), 4);
    w.service.release({"Get", w.server});
    w.service.release({"ListChildren", w.folder});
    w.settle();
    QCOMPARE(first.outcome() + second.outcome(), QString("nothingnothing"));
    w.service.release({{}, w.server});
    w.settle();
    QCOMPARE(firstColumn(second.value()), QString("Folder"));
    QCOMPARE(first.outcome(), QString("nothing"));
    w.service.release();
    w.settle();
    QCOMPARE(firstColumn(first.value()), QString("0 1"));
    QCOMPARE(first.value().rowsCount(), 30);
}

void tst_Listing::answersLongListingsInOrder_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {99, 100, 101, 200, 350})
        QTest::addRow("%d rows", count) << count;
}

void tst_Listing::answersLongListingsInOrder()
{
    QFETCH(int, count);
    World w;
    w.addTracks(count);
    w.start();
    w.log.setLevel(log4cplus::INFO_LOG_LEVEL);
    const auto rows = w.askRows("/uuid:1/31", 0, count - 1);
    const auto few = w.askRows("/uuid:1/31", 0, 1);
    w.settle();
    QCOMPARE(rows.outcome(), QString("value"));
    QCOMPARE(firstColumn(rows.value()), numbers(0, count - 1));
    QCOMPARE(firstColumn(few.value()), QString("0 1"));
    QCOMPARE(w.openWork(), 0);
}

/// Runs the event loop one turn at a time until a long answer has begun, and no further.
static void beginAnswer(World *w)
{
    while (w->log.lines("TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles").isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// The server's path and the device's address are those of the first row, though the server was lost
// and its record went before the last.
void tst_Listing::keepsTheServerThatALongAnswerBeganWith()
{
    World w;
    w.addTracks(350);
    w.start();
    const auto rows = w.askRows("/uuid:1/31", 0, 349, {"path"});
    beginAnswer(&w);
    QCOMPARE(rows.outcome(), QString("nothing"));
    QVERIFY(QMetaObject::invokeMethod(w.worker().serverList(), "on_upnpManager_lostServer",
        Q_ARG(QDBusObjectPath, QDBusObjectPath(w.server))));
    QCOMPARE(w.rootRows().rowsCount(), 0);
    w.settle();
    QCOMPARE(rows.outcome(), QString("value"));
    QCOMPARE(rows.value().rows().last().toList().first().value<CMPath>().toEncoded(),
        QString("upnp:/uuid:1/74333439?itemType=track"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Listing::dropsALongAnswerWithItsWorker()
{
    World w;
    w.addTracks(350);
    w.start();
    const auto rows = w.askRows("/uuid:1/31", 0, 349);
    beginAnswer(&w);
    w.stop();
    w.settle();
    QCOMPARE(rows.outcome(), QString("nothing"));
    QCOMPARE(rows.reply().handles(), 2L);
    // The connection is none the worse for it.
    w.start();
    const auto again = w.askRows("/uuid:1/31", 340, 349);
    w.settle();
    QCOMPARE(firstColumn(again.value()), numbers(340, 349));
}

void tst_Listing::leavesRequestsUnansweredWhenTheWorkerGoes()
{
    World w;
    w.start();
    w.service.hold({"ListChildren"});
    const auto rows = w.askRows("/uuid:1/31", 0, 9);
    const auto data = w.askData("/uuid:1/31");
    w.settle();
    const auto unsent = w.askRows("/uuid:1", 0, 9);
    w.stop();
    w.service.release();
    w.settle();
    QCOMPARE(rows.outcome(), QString("nothing"));
    QCOMPARE(data.outcome(), QString("value"));
    QCOMPARE(unsent.outcome(), QString("nothing"));
    QCOMPARE(rows.reply().handles(), 2L);
    QCOMPARE(unsent.reply().handles(), 2L);
}

void tst_Listing::answersTenThousandRows()
{
    World w;
    w.addTracks(10000);
    w.start();
    w.log.setLevel(log4cplus::INFO_LOG_LEVEL);
    const auto rows = w.askRows("/uuid:1/31", 0, 9999);
    w.settle();
    QCOMPARE(rows.value().rows().size(), 10000);
    QCOMPARE(rows.value().rowsCount(), 10000);
    QCOMPARE(firstColumn(rows.value()), numbers(0, 9999));
}

// On a connection that holds four such replies: read ones, those of another signature, one that was
// being read when its worker went.
void tst_Listing::keepsNoReplyItHasRead()
{
    World w;
    PrivateBus::limitUnreleasedReplies(4 << 20);
    w.addTracks(350);
    w.start();
    w.log.setLevel(log4cplus::TRACE_LOG_LEVEL);
    const QString padding(3000, 'x');
    for (int i = 0; i < 350; ++i)
        w.service.tree.setProperty(
            FakeTree::objectPath(w.server, "t" + QByteArray::number(i)), "Genre", padding);
    const QVariantList wrong{QString(1 << 20, 'x')};
    for (int round = 0; round < 6; ++round) {
        w.log.clear();
        w.askRows("/uuid:1/31", 0, 349);
        beginAnswer(&w);
        w.stop();
        w.start();
        w.service.answer({"ListChildren", {}, {}, 1}, wrong);
        const auto refused = w.askRows("/uuid:1/31", 0, 349);
        w.settle();
        const auto rows = w.askRows("/uuid:1/31", 0, 349);
        w.settle();
        QCOMPARE(refused.outcome(), failed);
        QCOMPARE(rows.value().rows().size(), 350);
    }
}

QTEST_GUILESS_MAIN(tst_Listing)
#include "tst_Listing.moc"
