#include "PluginFixture.h"
#include "Table.h"

/// From the nodes that somebody chose to the items that are played.
class tst_Prepare : public QObject
{
    Q_OBJECT

private slots:
    void givesTracksFirstThenWhatSearchesFound();
    void keepsTheOrderAskedWhateverAnswersFirst();
    void translatesEverythingAtOnce_data();
    void translatesEverythingAtOnce();
    void prefersAnObjectsOwnProperties();
    void keepsATrackThatCannotBeRead_data();
    void keepsATrackThatCannotBeRead();
    void leavesOutWhatHasNoUrl();
    void refusesUnknownKindsAndPreparesTheOthers_data();
    void refusesUnknownKindsAndPreparesTheOthers();
    void neverAnswersWhereThereIsNothingToPrepare();
    void walksOnlyWhenASearchFailedAndNothingWasFound_data();
    void walksOnlyWhenASearchFailedAndNothingWasFound();
    void losesUrlsAndServersOnlyWhereTheBusRefusesCalls_data();
    void losesUrlsAndServersOnlyWhereTheBusRefusesCalls();
    void goesWithItsWorker();
};

namespace {

/// Tracks "/uuid:1/61" and "/uuid:1/62", A and B, and a searching server with two folders,
/// "/uuid:1/31" (U1, U2 and a picture) and "/uuid:1/32" (V1).
struct World : FolderFixture
{
    QString second = tree.addContainer(server, "2", "Second");
    QString a = tree.addTrack(server, "a", "A");
    QString b = tree.addTrack(server, "b", "B");

    World()
        : FolderFixture(QStringList{"Artist"})
    {
        tree.addTrack(folder, "u1", "U1");
        tree.addItem(folder, "p", {{"Type", "image"}, {"URLs", QStringList{"p"}}});
        tree.addTrack(tree.addContainer(folder, "deep", "Deep"), "u2", "U2");
        tree.addTrack(second, "v1", "V1");
        start();
        service.forgetCalls();
    }
    QVariant prepared(const QStringList &paths) { return settled(askPrepare(paths)).value(); }
};

QString path(const QByteArray &id, const QString &kind)
{
    return "/uuid:1/" + QString(id.toHex()) + "?itemType=" + kind;
}

const QString trackA = path("a", "track");
const QString trackB = path("b", "track");
const QString folder1 = path("1", "container");
const QString folder2 = path("2", "container");
const QString image = path("p", "image");
const QString unknownKind = "error error: Unknown UPnP item type";

} // namespace

void tst_Prepare::givesTracksFirstThenWhatSearchesFound()
{
    World w;
    const auto items = w.settled(w.askPrepare({trackB, folder2, trackA, folder1, trackB}));
    QCOMPARE(items.outcome(), "value");
    QCOMPARE(itemsText(items.value()), "B A B V1 U1 U2");
    QCOMPARE(itemsText(items.value(), "serviceId"), "media media media media media media");
    QCOMPARE(itemsText(items.value(), "url").left(48),
        "http://192.0.2.1:8200/MediaItems/b.mp3 http://19");
    const QString start = "DEBUG CB_UPnP: prepare items: (upnp:" + trackB + ", upnp:" + folder2;
    QCOMPARE(w.log.lines(start).size(), 1);
    QCOMPARE(w.log.lines("TRACE CB_UPnP: Preparing direct item: upnp:").size(), 3);
    QCOMPARE(w.log.lines("TRACE CB_UPnP: Result: ({\"serviceId\":\"media\",").size(), 1);

    w.service.forgetCalls();
    w.prepared({trackA, folder1, "/uuid:1?itemType=server"});
    QCOMPARE(w.service.callsText().replace(w.server, "S"),
        "GetAll S/61 (org.gnome.UPnP.MediaItem2)\n"
        "GetAll S/61 (org.gnome.UPnP.MediaObject2)\n"
        "SearchObjectsEx S/31 ((Type derivedfrom \"audio\"), 0, 100, [17], )\n"
        "SearchObjectsEx S ((Type derivedfrom \"audio\"), 0, 100, [17], )");
}

// More than are asked for in one turn; "direct10.1" and "search10" would come before "direct2.1"
// and "search2" by name.
void tst_Prepare::keepsTheOrderAskedWhateverAnswersFirst()
{
    World w;
    QStringList paths;
    QStringList expected;
    for (int i = 0; i < 60; ++i) {
        const QByteArray id = "x" + QByteArray::number(i);
        w.tree.addTrack(w.tree.addContainer(w.server, "c" + id, id), id, id);
        paths.append({path(id, "track"), path("c" + id, "container")});
        expected.append(id);
    }
    w.service.hold({});
    const auto items = w.settled(w.askPrepare(paths));
    QCOMPARE(w.service.held(), 180);
    const auto calls = w.service.calls();
    for (auto call = calls.rbegin(); w.service.held() > 0; ++call) {
        QCOMPARE(items.outcome(), "pending");
        w.release({call->member(), call->path()});
    }
    QCOMPARE(itemsText(items.value()), (expected + expected).join(' '));
}

void tst_Prepare::translatesEverythingAtOnce_data()
{
    columns<int>("paths");
    row("sent in one turn", 50);
    row("sent in many", 5000);
}

// What becomes of the server while the calls are sent changes nothing.
void tst_Prepare::translatesEverythingAtOnce()
{
    QFETCH(int, paths);
    World w;
    w.log.setLevel(log4cplus::INFO_LOG_LEVEL);
    const QString moved = names::serverPrefix + "moved";
    QStringList tracks;
    for (int i = 0; i < paths; ++i)
        tracks.append(trackA);
    const auto items = w.askPrepare(tracks + QStringList{image});
    w.service.announceLost(w.server);
    w.service.answer({"Get", moved, "UDN"}, propertyValue("uuid:1"));
    w.service.answer({"Get", moved}, propertyValue(QStringList()));
    w.service.hold({"GetAll"});
    while (w.service.count({"GetAll"}) < 40)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVERIFY(items.announcements() == 1); // the kind that nobody knows
    w.service.announceFound(moved);
    w.settle();
    QCOMPARE(w.service.count({"GetAll"}), w.service.count({"GetAll", w.a}));
    w.release();
    QCOMPARE(items.outcome(), unknownKind);
    QCOMPARE(itemsText(items.value()), QString(" A").repeated(paths).mid(1));
    w.service.announceLost(moved);
    w.settle();
    QCOMPARE(w.settled(w.askRows("/uuid:1", 0, 0)).outcome(), "error error: Server not found");
    w.log.clear();
}

void tst_Prepare::prefersAnObjectsOwnProperties()
{
    World w;
    w.service.answer({"GetAll", w.a, names::item},
        QVariantList{QVariantMap{{"DisplayName", "item's"}, {"Artist", "item's"},
                         {"URLs", QStringList{"u"}}},
            7U}); // one argument more than there should be
    w.service.answer({"GetAll", w.a, names::object},
        QVariantList{QVariantMap{{"DisplayName", "object's"}, {"Genre", "object's"}}});
    const QVariant items = w.prepared({trackA});
    QCOMPARE(itemsText(items, "title"), "object's");
    QCOMPARE(itemsText(items, "artist"), "item's");
    QCOMPARE(itemsText(items, "genre"), "object's");
}

void tst_Prepare::keepsATrackThatCannotBeRead_data()
{
    columns<QString, bool, QString>("interface", "wrongSignature", "item");
    row("no item properties", names::item, false, "A -");
    row("no object properties", names::object, false, "- a.mp3");
    row("neither", "", false, "- -");
    row("neither, another signature", "", true, "- -");
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
    const QVariantList items = w.prepared({trackA, trackB}).toList();
    QCOMPARE(items.size(), 2);
    const OrkaPlayListItem item = OrkaHash::fromVariant(items.first());
    const QString shown = (item.contains("title") ? item.title() : QString("-")) + ' '
        + (item.contains("url") ? item.url().section('/', -1) : QString("-"));
    QTEST(shown, "item");
    QCOMPARE(item.serviceId(), "media");
    QVERIFY(!item.orkaRoles().isEmpty());
}

void tst_Prepare::leavesOutWhatHasNoUrl()
{
    World w;
    w.tree.setProperty(w.a, "URLs", QStringList());
    w.tree.addTrack(w.second, "v2", "V2", {{"URLs", 7}});
    w.tree.addTrack(w.second, "v3", "V3");
    QCOMPARE(itemsText(w.prepared({trackA, folder2, trackB})), "B V1 V3");
    QCOMPARE(w.log.count("ERROR CB_UPnP: Trying to add item without URL to playlist"), 2);
}

void tst_Prepare::refusesUnknownKindsAndPreparesTheOthers_data()
{
    columns<QStringList, int>("paths", "unknown");
    row("first", QStringList{image, trackA}, 1);
    row("last", QStringList{trackA, image}, 1);
    row("several", QStringList{"/uuid:1/61", trackA, image, "/uuid:1?itemType=Track"}, 3);
    row("no path at all", QStringList{trackA, ""}, 1);
}

void tst_Prepare::refusesUnknownKindsAndPreparesTheOthers()
{
    QFETCH(QStringList, paths);
    World w;
    const auto items = w.settled(w.askPrepare(paths));
    QCOMPARE(items.outcome(), unknownKind);
    QCOMPARE(itemsText(items.value()), "A");
    QTEST(
        w.log.lines("ERROR CB_UPnP: Unknown item type for adding to Playlist ").size(), "unknown");
    QCOMPARE(items.error().message().context(), "CMUPnPWorker");
    w.log.clear(); // each of them set its error; the SDK kept the first and said so
}

void tst_Prepare::neverAnswersWhereThereIsNothingToPrepare()
{
    World w;
    const auto nothing = w.askPrepare({});
    const auto noList = w.askSet("playlist/prepareItems", 7);
    const auto unknown = w.settled(w.askPrepare({image}));
    QCOMPARE(nothing.outcome() + noList.outcome(), "pendingpending");
    QCOMPARE(unknown.outcome(), "answered, but its request is still kept");
    QCOMPARE(w.service.callsText(), "");
    w.stop();
    QCOMPARE(unknown.outcome(), unknownKind);
    QCOMPARE(nothing.outcome(), "dropped");
}

void tst_Prepare::walksOnlyWhenASearchFailedAndNothingWasFound_data()
{
    columns<QStringList, FakeReply, QString, bool>("paths", "answer", "items", "walks");
    const FakeReply fails = FakeReply::error("a.b", "can't");
    const FakeReply none{{propertyMaps({}), 5U}};
    row("a search that finds nothing", QStringList{folder1}, none, "", false);
    row("a search that fails", QStringList{folder1}, fails, "U1  U2", true);
    row("another signature", QStringList{folder1}, FakeReply{{1}}, "U1  U2", true);
    row("beside a track", QStringList{folder1, trackA}, fails, "A", false);
    row("beside a search that finds", QStringList{folder1, folder2}, fails, "V1", false);
    row("beside an unknown kind", QStringList{image, folder1}, fails, "U1  U2", true);
}

void tst_Prepare::walksOnlyWhenASearchFailedAndNothingWasFound()
{
    QFETCH(QStringList, paths);
    QFETCH(FakeReply, answer);
    QFETCH(bool, walks);
    World w;
    w.service.answer({"SearchObjectsEx", w.folder}, answer);
    QTEST(itemsText(w.prepared(paths)), "items");
    QCOMPARE(w.service.count({"ListChildren"}) > 0, walks);
    QCOMPARE(
        w.log.count("INFO CB_UPnP: Search is not supported by the server - try browsing items"),
        walks ? 1 : 0);
    const QString failure = "WARN CB_UPnP: Fetching search results failed; error: can't";
    QCOMPARE(w.log.count(failure), answer.isError() ? 1 : 0);
}

void tst_Prepare::losesUrlsAndServersOnlyWhereTheBusRefusesCalls_data()
{
    columns<bool, int>("builtIn", "withUrl");
    row("a session bus", false, 200);
    // 128 calls wait at a time: the two of each of 64 tracks, or the three of 42 servers.
    row("the daemon's built-in limit", true, 64);
}

void tst_Prepare::losesUrlsAndServersOnlyWhereTheBusRefusesCalls()
{
    QFETCH(bool, builtIn);
    PluginFixture w(builtIn ? PrivateBus::Limits::BuiltIn : PrivateBus::Limits::Session);
    const QString server = w.tree.addServer("uuid:1", "One");
    QStringList paths;
    for (int i = 0; i < 200; ++i) {
        const QByteArray id = "n" + QByteArray::number(i);
        w.tree.addTrack(server, id, id);
        paths.append(path(id, "track"));
    }
    w.start();
    w.service.hold({"GetAll"});
    const auto items = w.settled(w.askPrepare(paths));
    w.release();
    QCOMPARE(items.value().toList().size(), 200);
    QTEST(itemsText(items.value(), "url").split(' ', Qt::SkipEmptyParts).size(), "withUrl");
    for (int i = 0; i < 100; ++i)
        w.service.announceFound(w.tree.addServer(QStringLiteral("uuid:n%1").arg(i), "Server"));
    w.settle();
    QCOMPARE(w.rootRows().rowsCount() < 101, builtIn);
}

void tst_Prepare::goesWithItsWorker()
{
    World w;
    w.service.fail({"SearchObjectsEx"});
    w.service.hold({"GetAll"});
    w.service.hold({"ListChildren"});
    const auto prepared = w.askPrepare({trackA});
    const auto walked = w.settled(w.askPrepare({folder1}));
    QCOMPARE(w.service.held(), 3);
    w.stop();
    w.release();
    QCOMPARE(prepared.outcome() + walked.outcome(), "droppeddropped");
}

QTEST_GUILESS_MAIN(tst_Prepare)
#include "tst_Prepare.moc"
