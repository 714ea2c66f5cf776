#include "PluginFixture.h"
#include "Table.h"
#include "UPnPServerList.h"

/// Rows of containers.
class tst_Listing : public QObject
{
    Q_OBJECT

private slots:
    void handsTheRangeOnUnchanged_data();
    void handsTheRangeOnUnchanged();
    void givesTheRowsThatComeAndTheContainersTotal_data();
    void givesTheRowsThatComeAndTheContainersTotal();
    void answersOnceWhateverTheTwoCallsGive_data();
    void answersOnceWhateverTheTwoCallsGive();
    void keepsListingsApartThatAnswerOutOfOrder();
    void keepsTheServerThatALongAnswerBeganWith();
    void leavesRequestsUnansweredWhenTheWorkerGoes();
    void keepsNoReplyItHasRead();
};

namespace {

QString numbers(int first, int last)
{
    QStringList texts;
    for (int i = first; i <= last; ++i)
        texts.append(QString::number(i));
    return texts.join(' ');
}

const QString failed = "error internal: Failed to retrieve content";
const QString firstRowIsMade = "TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles";

} // namespace

void tst_Listing::handsTheRangeOnUnchanged_data()
{
    columns<int, int, uint, uint>("first", "last", "offset", "max");
    row("ten", 0, 9, 0U, 10U);
    row("beyond the end", 900, 909, 900U, 10U);
    row("none", 5, 4, 5U, 0U);
    row("backwards", 9, 5, 9U, 4294967293U);
    row("below 0", -1, -1, 4294967295U, 1U);
    row("all there can be", 0, 2147483647, 0U, 2147483648U);
    row("more than there can be", -2147483647 - 1, 2147483647, 2147483648U, 0U);
}

void tst_Listing::handsTheRangeOnUnchanged()
{
    QFETCH(int, first);
    QFETCH(int, last);
    FolderFixture w;
    w.start();
    w.settled(w.askRows("/uuid:1/31", first, last));
    const auto calls = w.service.calls({"ListChildren"});
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].path(), w.folder);
    QCOMPARE(calls[0].message.signature(), "uuas");
    QTEST(calls[0].arguments()[0].toUInt(), "offset");
    QTEST(calls[0].arguments()[1].toUInt(), "max");
    QCOMPARE(calls[0].arguments()[2].toStringList().join(' '),
        "Type TypeEx MIMEType DisplayName Artist Album AlbumArtURL URLs Creator Genre Path "
        "Date TrackNumber Duration Bitrate SampleRate BitsPerSample");
}

void tst_Listing::givesTheRowsThatComeAndTheContainersTotal_data()
{
    columns<int, int, int, QString>("size", "first", "last", "titles");
    row("a page", 25, 0, 9, numbers(0, 9));
    row("the last page", 25, 20, 29, numbers(20, 24));
    row("behind the end", 25, 25, 29, "");
    // Rows are made a hundred at a time.
    for (const int size : {99, 100, 101, 200, 350, 10000})
        QTest::addRow("all of %d", size) << size << 0 << size - 1 << numbers(0, size - 1);
}

void tst_Listing::givesTheRowsThatComeAndTheContainersTotal()
{
    QFETCH(int, size);
    QFETCH(int, first);
    QFETCH(int, last);
    FolderFixture w;
    w.addTracks(size);
    w.start();
    w.log.setLevel(log4cplus::INFO_LOG_LEVEL);
    const auto rows = w.askRows("/uuid:1/31?itemType=container", first, last);
    const auto beside = w.settled(w.askRows("/uuid:1/31", 0, 1));
    QCOMPARE(rows.outcome(), "value");
    QTEST(firstColumn(rows.value()), "titles");
    QCOMPARE(rows.value().rowsCount(), size);
    QCOMPARE(rows.value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
    QCOMPARE(firstColumn(beside.value()), "0 1");
}

void tst_Listing::answersOnceWhateverTheTwoCallsGive_data()
{
    columns<FakeReply, FakeReply, QString, int>("children", "count", "outcome", "rowsCount");
    const FakeReply none{{propertyMaps({})}}, one{propertyValue(1U)}, nothing;
    const FakeReply noChildren = FakeReply::error("a.b", "children!");
    const FakeReply noCount = FakeReply::error("a.b", "count!");
    row("both", none, FakeReply{propertyValue(7U)}, "value", 7);
    row("text that is a number", none, FakeReply{propertyValue("12")}, "value", 12);
    row("text", none, FakeReply{propertyValue("many")}, "value", 0);
    row("more than an int holds", none, FakeReply{propertyValue(4294967295U)}, "value", -1);
    row("children fail", noChildren, one, failed, 0);
    row("count fails", none, noCount, failed, 0);
    row("both fail", noChildren, noCount, failed, 0);
    row("no variant", none, FakeReply{{7U}}, failed, 0);
    row("nothing", none, nothing, failed, 0);
    row("children that are texts", FakeReply{{QStringList{"a"}}}, one, failed, 0);
    row("children that are a map", FakeReply{{QVariantMap{{"Type", "music"}}}}, one, failed, 0);
    row("no children at all", nothing, one, failed, 0);
}

void tst_Listing::answersOnceWhateverTheTwoCallsGive()
{
    QFETCH(FakeReply, children);
    QFETCH(FakeReply, count);
    QFETCH(QString, outcome);
    FolderFixture w;
    w.start();
    w.service.answer({"ListChildren"}, children);
    w.service.answer({"Get", {}, "ChildCount"}, count);
    const auto rows = w.settled(w.askRows("/uuid:1/31", 0, 9));
    QCOMPARE(rows.outcome(), outcome);
    QTEST(rows.value().rowsCount(), "rowsCount");
    const QStringList lines = w.log.lines("INFO CB_UPnP: ");
    QCOMPARE(lines.size(), outcome == failed ? 3 : 0);
    if (outcome != failed)
        return;
    QCOMPARE(lines[0], "INFO CB_UPnP: Fetching children failed");
    QVERIFY(lines[1].startsWith("INFO CB_UPnP: listChildren: " + children.errorMessage));
    QVERIFY(lines[2].startsWith("INFO CB_UPnP: childCount: " + count.errorMessage));
}

void tst_Listing::keepsListingsApartThatAnswerOutOfOrder()
{
    FolderFixture w;
    w.addTracks(30);
    w.start();
    w.service.hold({});
    const auto first = w.askRows("/uuid:1/31", 0, 1);
    const auto second = w.settled(w.askRows("/uuid:1", 0, 1));
    QCOMPARE(w.service.held(), 4);
    w.service.release({"Get", w.server});
    w.release({"ListChildren", w.folder});
    QCOMPARE(first.outcome() + second.outcome(), "pendingpending");
    w.release({{}, w.server});
    QCOMPARE(firstColumn(second.value()), "Folder");
    QCOMPARE(first.outcome(), "pending");
    w.release();
    QCOMPARE(firstColumn(first.value()), "0 1");
    QCOMPARE(first.value().rowsCount(), 30);
}

// The server's path and the device's address are those of the first row, though the server was lost
// and its record went before the last.
void tst_Listing::keepsTheServerThatALongAnswerBeganWith()
{
    FolderFixture w;
    w.addTracks(350);
    w.start();
    const auto rows = w.askRows("/uuid:1/31", 0, 349, {"path"});
    w.runUntilLogged(firstRowIsMade);
    QCOMPARE(rows.outcome(), "pending");
    QVERIFY(QMetaObject::invokeMethod(w.worker().serverList(), "on_upnpManager_lostServer",
        Q_ARG(QDBusObjectPath, QDBusObjectPath(w.server))));
    QCOMPARE(w.rootRows().rowsCount(), 0);
    w.settle();
    QCOMPARE(rows.value().rows().last().toList().first().value<CMPath>().toEncoded(),
        "upnp:/uuid:1/74333439?itemType=track");
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Listing::leavesRequestsUnansweredWhenTheWorkerGoes()
{
    FolderFixture w;
    w.addTracks(350);
    w.start();
    w.service.hold({"ListChildren", w.server});
    const auto held = w.settled(w.askRows("/uuid:1", 0, 9));
    const auto answering = w.askRows("/uuid:1/31", 0, 349);
    w.runUntilLogged(firstRowIsMade);
    const auto unsent = w.askRows("/uuid:1", 0, 9);
    w.stop();
    w.release();
    for (const auto &probe : {held, answering, unsent})
        QCOMPARE(probe.outcome(), "dropped");
    // The connection is none the worse for it.
    w.start();
    QCOMPARE(firstColumn(w.settled(w.askRows("/uuid:1/31", 340, 349)).value()), numbers(340, 349));
}

// On a connection that holds four such replies: read ones, those of another signature, one that was
// being read when its worker went.
void tst_Listing::keepsNoReplyItHasRead()
{
    FolderFixture w;
    w.addTracks(350, {{"Genre", QString(3000, 'x')}});
    w.start();
    for (int round = 0; round < 6; ++round) {
        w.log.clear();
        PrivateBus::limitUnreleasedReplies(4 << 20);
        w.askRows("/uuid:1/31", 0, 349);
        w.runUntilLogged(firstRowIsMade);
        w.stop();
        w.start();
        w.service.answer({"ListChildren", {}, {}, 1}, QVariantList{QString(1 << 20, 'x')});
        QCOMPARE(w.settled(w.askRows("/uuid:1/31", 0, 349)).outcome(), failed);
        QCOMPARE(w.settled(w.askRows("/uuid:1/31", 0, 349)).value().rows().size(), 350);
    }
}

QTEST_GUILESS_MAIN(tst_Listing)
#include "tst_Listing.moc"
