#include "PluginFixture.h"

#include <QTest>

/// From the nodes that somebody chose to the items that are played.
class tst_Prepare : public QObject
{
    Q_OBJECT

private slots:
    void asksForTracksAndSearchesTheRest();
    void givesTracksFirstThenWhatSearchesFound();
    void keepsTheOrderAskedWhateverAnswersFirst();
    void takesTheFirstHundredOfASearch();
    void prefersAnObjectsOwnProperties();
    void keepsATrackThatCannotBeRead_data();
    void keepsATrackThatCannotBeRead();
    void leavesOutWhatHasNoUrl();
    void refusesUnknownKindsAndPreparesTheOthers_data();
    void refusesUnknownKindsAndPreparesTheOthers();
    void neverAnswersWhereThereIsNothingToPrepare();
    void walksOnlyWhenASearchFailedAndNothingWasFound_data();
    void walksOnlyWhenASearchFailedAndNothingWasFound();
    void losesUrlsOnlyWhereTheBusRefusesCalls_data();
    void losesUrlsOnlyWhereTheBusRefusesCalls();
    void answersManyPreparationsAtOnce();
    void goesWithItsWorker();
};

namespace {

/// Tracks "/uuid:1/a…" and a searching server with two folders, "/uuid:1/31" (U1, U2 and a picture)
/// and "/uuid:1/32" (V1).
struct World : PluginFixture
{
    QString server = service.tree.addServer("uuid:1", "One", QStringList{"Artist"});
    QString first = service.tree.addContainer(server, "1", "First");
    QString second = service.tree.addContainer(server, "2", "Second");
    QString a = service.tree.addTrack(server, "a", "A");
    QString b = service.tree.addTrack(server, "b", "B");

    World()
    {
        service.tree.addTrack(first, "u1", "U1");
        service.tree.addItem(first, "p", {{"Type", "image"}, {"URLs", QStringList{"p"}}});
        service.tree.addTrack(service.tree.addContainer(first, "deep", "Deep"), "u2", "U2");
        service.tree.addTrack(second, "v1", "V1");
        start();
        service.forgetCalls();
    }
};

const QString track = "/uuid:1/%1?itemType=track";
const QString trackA = track.arg("61");
const QString trackB = track.arg("62");
const QString folder1 = "/uuid:1/31?itemType=container";
const QString folder2 = "/uuid:1/32?itemType=container";
const QString unknownKind = "error default: Unknown UPnP item type";

QString outcome(const ReplyProbe<QVariant> &probe)
{
    return probe.outcome().replace(CMError::DefaultName() + ":", "default:");
}

} // namespace

void tst_Prepare::asksForTracksAndSearchesTheRest()
{
    World w;
    w.askPrepare({trackA, folder1, "/uuid:1?itemType=server"});
    w.settle();
    QString calls = w.service.callsText();
    calls.replace(w.server, "S");
    QCOMPARE(calls,
        QString("GetAll S/61 (org.gnome.UPnP.MediaItem2)\n"
                "GetAll S/61 (org.gnome.UPnP.MediaObject2)\n"
                "SearchObjectsEx S/31 ((Type derivedfrom \"audio\"), 0, 100, [17], )\n"
                "SearchObjectsEx S ((Type derivedfrom \"audio\"), 0, 100, [17], )"));
    QCOMPARE(w.log.count("DEBUG CB_UPnP: prepare items: (upnp:" + trackA + ", upnp:" + folder1
                 + ", upnp:/uuid:1?itemType=server)"),
        1);
}

void tst_Prepare::givesTracksFirstThenWhatSearchesFound()
{
    World w;
    const auto items = w.askPrepare({trackB, folder2, trackA, folder1, trackB});
    w.settle();
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(itemsText(items.value()), QString("B A B V1 U1 U2"));
    QCOMPARE(itemsText(items.value(), "serviceId"),
        QStringList(QVector<QString>(6, "media").toList()).join(' '));
    QCOMPARE(itemsText(items.value(), "url").left(48),
        QString("http://192.0.2.1:8200/MediaItems/b.mp3 http://19"));
    QCOMPARE(w.openWork(), 0);
}

// Twelve of each: "direct10.1" and "search10" would come before "direct2.1" and "search2" by name.
void tst_Prepare::keepsTheOrderAskedWhateverAnswersFirst()
{
    World w;
    QStringList paths;
    QStringList expected;
    QStringList found;
    for (int i = 0; i < 12; ++i) {
        const QByteArray id = "x" + QByteArray::number(i);
        const QString container = w.service.tree.addContainer(w.server, "c" + id, id);
        w.service.tree.addTrack(container, id, "in-" + id);
        paths.append(track.arg(QString(id.toHex())));
        paths.append("/uuid:1/" + QString(("c" + id).toHex()) + "?itemType=container");
        expected.append("in-" + id);
        found.append("in-" + id);
    }
    w.service.hold({});
    const auto items = w.askPrepare(paths);
    w.settle();
    QCOMPARE(w.service.held(), 36);
    const auto calls = w.service.calls();
    for (auto call = calls.rbegin(); w.service.held() > 0; ++call) {
        QCOMPARE(items.outcome(), QString("nothing"));
        w.service.release({call->member(), call->path()});
        w.settle();
    }
    QCOMPARE(itemsText(items.value()), (expected + found).join(' '));
}

void tst_Prepare::takesTheFirstHundredOfASearch()
{
    World w;
    const QString big = w.service.tree.addContainer(w.server, "big", "Big");
    for (int i = 0; i < 250; ++i)
        w.service.tree.addTrack(big, "n" + QByteArray::number(i), QString::number(i));
    const auto items = w.askPrepare({"/uuid:1/626967?itemType=container"});
    w.settle();
    const QStringList titles = itemsText(items.value()).split(' ');
    QCOMPARE(titles.size(), 100);
    QCOMPARE(titles.first() + titles.last(), QString("099"));
    QCOMPARE(w.service.count({"SearchObjectsEx"}), 1);
}

void tst_Prepare::prefersAnObjectsOwnProperties()
{
    World w;
    w.service.answer({"GetAll", w.a, names::item},
        QVariantList{QVariantMap{
            {"DisplayName", "item's"}, {"Artist", "item's"}, {"URLs", QStringList{"u"}}}});
    w.service.answer({"GetAll", w.a, names::object},
        QVariantList{QVariantMap{{"DisplayName", "object's"}, {"Genre", "object's"}}});
    const auto items = w.askPrepare({trackA});
    w.settle();
    QCOMPARE(itemsText(items.value(), "title"), QString("object's"));
    QCOMPARE(itemsText(items.value(), "artist"), QString("item's"));
    QCOMPARE(itemsText(items.value(), "genre"), QString("object's"));
}

void tst_Prepare::keepsATrackThatCannotBeRead_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<bool>("wrongSignature");
    QTest::addColumn<QString>("item");
    QTest::newRow("no item properties") << names::item << false << "A -";
    QTest::newRow("no object properties") << names::object << false << "- a.mp3";
    QTest::newRow("neither") << "" << false << "- -";
    QTest::newRow("neither, another signature") << "" << true << "- -";
}

void tst_Prepare::keepsATrackThatCannotBeRead()
{
    QFETCH(QString, interface);
    QFETCH(bool, wrongSignature);
    World w;
    if (wrongSignature)
        w.service.answer({"GetAll", w.a}, QVariantList{QStringList{"a"}});
    else
        w.service.fail({"GetAll", w.a, interface});
    const auto items = w.askPrepare({trackA, trackB});
    w.settle();
    QCOMPARE(items.value().toList().size(), 2);
    const OrkaPlayListItem item = OrkaHash::fromVariant(items.value().toList().first());
    const QString shown = (item.contains("title") ? item.title() : QString("-")) + ' '
        + (item.contains("url") ? item.url().section('/', -1) : QString("-"));
    QTEST(shown, "item");
    QCOMPARE(item.serviceId(), QString("media"));
    QVERIFY(!item.orkaRoles().isEmpty());
}

void tst_Prepare::leavesOutWhatHasNoUrl()
{
    World w;
    w.service.tree.setProperty(w.a, "URLs", QStringList());
    const QString found = w.service.tree.addTrack(w.second, "v2", "V2", {{"URLs", QStringList()}});
    w.service.tree.addTrack(w.second, "v3", "V3");
    const auto items = w.askPrepare({trackA, folder2, trackB});
    w.settle();
    QCOMPARE(itemsText(items.value()), QString("B V1 V3"));
    QCOMPARE(w.log.count("ERROR CB_UPnP: Trying to add item without URL to playlist"), 2);
}

void tst_Prepare::refusesUnknownKindsAndPreparesTheOthers_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<int>("unknown");
    const QString image = "/uuid:1/70?itemType=image";
    QTest::newRow("first") << QStringList{image, trackA} << 1;
    QTest::newRow("last") << QStringList{trackA, image} << 1;
    QTest::newRow("several") << QStringList{"/uuid:1/61", trackA, image, "/uuid:1?itemType=Track"}
                             << 3;
    QTest::newRow("no path at all") << QStringList{trackA, ""} << 1;
}

void tst_Prepare::refusesUnknownKindsAndPreparesTheOthers()
{
    QFETCH(QStringList, paths);
    World w;
    const auto items = w.askPrepare(paths);
    w.settle();
    QCOMPARE(outcome(items), unknownKind);
    QCOMPARE(itemsText(items.value()), QString("A"));
    const QStringList lines =
        w.log.lines("ERROR CB_UPnP: Unknown item type for adding to Playlist ");
    QTEST(lines.size(), "unknown");
    w.log.clear(); // each of them set its error; the SDK kept the first and said so
    QCOMPARE(items.reply().error().message().context(), QByteArray("CMUPnPWorker"));
}

void tst_Prepare::neverAnswersWhereThereIsNothingToPrepare()
{
    World w;
    const auto nothing = w.askPrepare({});
    const auto noList = w.askSet("playlist/prepareItems", 7);
    const auto unknown = w.askPrepare({"/uuid:1/70?itemType=image"});
    w.settle();
    QCOMPARE(nothing.outcome(), QString("nothing"));
    QCOMPARE(noList.outcome(), QString("nothing"));
    QCOMPARE(unknown.outcome(), QString("answered, but its request is still kept"));
    QCOMPARE(w.service.callsText(), QString());
    w.stop();
    QCOMPARE(outcome(unknown), unknownKind);
    QCOMPARE(nothing.reply().handles(), 2L);
}

void tst_Prepare::walksOnlyWhenASearchFailedAndNothingWasFound_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("fault"); // of the search in the first folder
    QTest::addColumn<QString>("items");
    QTest::addColumn<bool>("walks");
    QTest::newRow("a search that finds nothing") << QStringList{folder1} << "finds nothing"
                                                 << "" << false;
    QTest::newRow("a search that fails") << QStringList{folder1} << "fails"
                                         << "U1  U2" << true;
    QTest::newRow("another signature") << QStringList{folder1} << "signature"
                                       << "U1  U2" << true;
    QTest::newRow("beside a track") << QStringList{folder1, trackA} << "fails"
                                    << "A" << false;
    QTest::newRow("beside a search that finds") << QStringList{folder1, folder2} << "fails"
                                                << "V1" << false;
    QTest::newRow("beside an unknown kind")
        << QStringList{"/uuid:1/70?itemType=image", folder1} << "fails"
        << "U1  U2" << true;
}

void tst_Prepare::walksOnlyWhenASearchFailedAndNothingWasFound()
{
    QFETCH(QStringList, paths);
    QFETCH(QString, fault);
    QFETCH(bool, walks);
    World w;
    if (fault == "fails")
        w.service.fail({"SearchObjectsEx", w.first}, "can't");
    else if (fault == "signature")
        w.service.answer({"SearchObjectsEx", w.first}, QVariantList{1});
    else
        w.service.answer({"SearchObjectsEx", w.first}, QVariantList{propertyMaps({}), 5U});
    const auto items = w.askPrepare(paths);
    w.settle();
    QTEST(itemsText(items.value()), "items");
    QCOMPARE(w.service.count({"ListChildren"}) > 0, walks);
    QCOMPARE(
        w.log.count("INFO CB_UPnP: Search is not supported by the server - try browsing items"),
        walks ? 1 : 0);
    if (fault == "fails")
        QCOMPARE(w.log.count("WARN CB_UPnP: Fetching search results failed; error: can't"), 1);
    QCOMPARE(w.openWork(), 0);
}

void tst_Prepare::losesUrlsOnlyWhereTheBusRefusesCalls_data()
{
    QTest::addColumn<bool>("builtIn");
    QTest::addColumn<int>("withUrl");
    QTest::newRow("a session bus") << false << 200;
    // 128 calls wait at a time: the two of each of 64 tracks.
    QTest::newRow("the daemon's built-in limit") << true << 64;
}

void tst_Prepare::losesUrlsOnlyWhereTheBusRefusesCalls()
{
    QFETCH(bool, builtIn);
    PluginFixture w(builtIn ? PrivateBus::Limits::BuiltIn : PrivateBus::Limits::Session);
    const QString server = w.service.tree.addServer("uuid:1", "One");
    QStringList paths;
    for (int i = 0; i < 200; ++i) {
        const QByteArray id = "n" + QByteArray::number(i);
        w.service.tree.addTrack(server, id, id);
        paths.append(track.arg(QString(id.toHex())));
    }
    w.start();
    w.service.hold({"GetAll"});
    const auto items = w.askPrepare(paths);
    w.settle();
    w.service.release();
    w.settle();
    QCOMPARE(items.value().toList().size(), 200);
    QTEST(itemsText(items.value(), "url").split(' ', Qt::SkipEmptyParts).size(), "withUrl");
}

void tst_Prepare::answersManyPreparationsAtOnce()
{
    World w;
    w.log.setLevel(log4cplus::WARN_LOG_LEVEL);
    QVector<ReplyProbe<QVariant>> probes;
    for (int i = 0; i < 300; ++i)
        probes.append(w.askPrepare({i % 2 ? trackA : trackB, folder2}));
    w.settle();
    for (int i = 0; i < 300; ++i) {
        QCOMPARE(probes[i].outcome(), QString("value"));
        QCOMPARE(itemsText(probes[i].value()), QString(i % 2 ? "A V1" : "B V1"));
    }
    QCOMPARE(w.openWork(), 0);
}

void tst_Prepare::goesWithItsWorker()
{
    World w;
    w.service.fail({"SearchObjectsEx"});
    w.service.hold({"GetAll"});
    w.service.hold({"ListChildren"});
    const auto prepared = w.askPrepare({trackA});
    const auto walked = w.askPrepare({folder1});
    w.settle();
    QCOMPARE(w.service.held(), 3);
    w.stop();
    w.service.release();
    w.settle();
    QCOMPARE(prepared.outcome() + walked.outcome(), QString("nothingnothing"));
    QCOMPARE(prepared.reply().handles() + walked.reply().handles(), 4L);
}

QTEST_GUILESS_MAIN(tst_Prepare)
#include "tst_Prepare.moc"
