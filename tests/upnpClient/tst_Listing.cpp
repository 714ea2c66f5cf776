#include "PluginFixture.h"

#include <QTest>

/// Rows of containers.
class tst_Listing : public QObject
{
    Q_OBJECT

private slots:
    void handsTheRangeOnUnchanged();
    void givesTheRowsThatComeAndTheContainersTotal();
    void answersOnceWhateverTheTwoCallsGive();
    void keepsListingsApartThatAnswerOutOfOrder();
    void keepsNoReplyItHasRead();
};

namespace {

const QString failed = "error internal: Failed to retrieve content";
const QString firstRowIsMade = "TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles";

} // namespace

void tst_Listing::handsTheRangeOnUnchanged()
{
    FolderFixture w;
    w.start();
    const auto asked = [&w](int first, int last) {
        w.service.forgetCalls();
        w.settled(w.askRows("/uuid:1/31", first, last));
        const QVariantList arguments = w.service.calls({"ListChildren", w.folder})[0].arguments();
        return arguments[0].toString() + ' ' + arguments[1].toString();
    };
    constexpr int min = std::numeric_limits<int>::min(), max = std::numeric_limits<int>::max();
    QCOMPARE(asked(900, 909), "900 10");
    QCOMPARE(asked(9, 5), "9 4294967293");
    QCOMPARE(asked(0, max), "0 2147483648");
    QCOMPARE(asked(min, max), "2147483648 0");
    const FakeCall call = w.service.calls({"ListChildren"})[0];
    QCOMPARE(call.message.signature(), "uuas");
    QCOMPARE(call.arguments()[2].toStringList().join(' '),
        "Type TypeEx MIMEType DisplayName Artist Album AlbumArtURL URLs Creator Genre Path "
        "Date TrackNumber Duration Bitrate SampleRate BitsPerSample");
}

void tst_Listing::givesTheRowsThatComeAndTheContainersTotal()
{
    FolderFixture w;
    w.addTracks(350);
    w.start();
    // Rows are made a hundred at a time.
    for (const int last : {0, 98, 99, 100, 349, 1000}) {
        const auto rows = w.askRows("/uuid:1/31?itemType=container", 0, last);
        const auto beside = w.settled(w.askRows("/uuid:1/31", 348, 360));
        const QStringList titles = firstColumn(rows.value()).split(' ');
        QCOMPARE(titles.size(), qMin(last + 1, 350));
        QCOMPARE(titles.last(), QString::number(qMin(last, 349)));
        QCOMPARE(rows.value().rowsCount(), 350);
        QCOMPARE(rows.value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
        QCOMPARE(firstColumn(beside.value()), "348 349");
    }
}

void tst_Listing::answersOnceWhateverTheTwoCallsGive()
{
    FolderFixture w;
    w.start();
    const auto outcome = [&w](const FakeReply &children, const FakeReply &count) {
        w.log.clear();
        w.service.answer({"ListChildren"}, children);
        w.service.answer({"Get", {}, "ChildCount"}, count);
        const auto rows = w.settled(w.askRows("/uuid:1/31", 0, 9));
        return rows.outcome()
            + (rows.error().isError() ? QString() : QString(" %1").arg(rows.value().rowsCount()));
    };
    const FakeReply none{{propertyMaps({})}}, one{propertyValue(1U)};
    const FakeReply error = FakeReply::error("a.b", "children!");
    QCOMPARE(outcome(none, FakeReply{propertyValue(7U)}), "value 7");
    QCOMPARE(outcome(none, FakeReply{propertyValue("many")}), "value 0");
    QCOMPARE(outcome(none, FakeReply{propertyValue(4294967295U)}), "value -1");
    QCOMPARE(outcome(none, FakeReply{{7U}}), failed);
    QCOMPARE(outcome(FakeReply{{QStringList{"a"}}}, one), failed);
    QCOMPARE(outcome(FakeReply(), one), failed);
    QCOMPARE(outcome(none, error), failed);
    QCOMPARE(outcome(error, one), failed);
    QCOMPARE(w.log.lines("INFO CB_UPnP: ").join('\n').remove("INFO CB_UPnP: "),
        "Fetching children failed\nlistChildren: children!\nchildCount: ");
}

void tst_Listing::keepsListingsApartThatAnswerOutOfOrder()
{
    FolderFixture w;
    w.addTracks(30);
    w.start();
    w.service.hold({});
    const auto first = w.askRows("/uuid:1/31", 0, 1);
    const auto second = w.settled(w.askRows("/uuid:1", 0, 1));
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
        const auto answering = w.askRows("/uuid:1/31", 0, 349);
        w.runUntilLogged(firstRowIsMade);
        w.stop();
        QCOMPARE(answering.outcome(), "dropped");
        w.start();
        w.service.answer({"ListChildren", {}, {}, 1}, QVariantList{QString(1 << 20, 'x')});
        QCOMPARE(w.settled(w.askRows("/uuid:1/31", 0, 349)).outcome(), failed);
        QCOMPARE(w.settled(w.askRows("/uuid:1/31", 0, 349)).value().rows().size(), 350);
    }
}

QTEST_GUILESS_MAIN(tst_Listing)
#include "tst_Listing.moc"
