#include "PluginFixture.h"

#include <QTest>

/// From the nodes that somebody chose to the items that are played.
class tst_Prepare : public QObject
{
    Q_OBJECT

private slots:
    void givesTracksFirstThenWhatSearchesFound();
    void keepsTheOrderAskedWhateverAnswersFirst();
    void prefersAnObjectsOwnProperties();
    void leavesOutWhatHasNoUrl();
    void refusesUnknownKindsAndPreparesTheOthers();
    void neverAnswersWhereThereIsNothingToPrepare();
    void walksOnlyWhenASearchFailedAndNothingWasFound();
    void losesUrlsAndServersOnlyWhereTheBusRefusesCalls();
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
    QStringList paths, expected;
    for (int i = 0; i < 60; ++i) {
        const QByteArray id = "x" + QByteArray::number(i);
        w.tree.addTrack(w.tree.addContainer(w.server, "c" + id, id), id, id);
        paths.append({path(id, "track"), path("c" + id, "container")});
        expected.append(id);
    }
    w.service.hold({});
    const auto items = w.settled(w.askPrepare(paths));
    const auto calls = w.service.calls();
    QCOMPARE(calls.size(), 180);
    for (auto call = calls.rbegin(); w.service.held() > 0; ++call) {
        QCOMPARE(items.outcome(), "pending");
        w.release({call->member(), call->path()});
    }
    QCOMPARE(itemsText(items.value()), (expected + expected).join(' '));
}

void tst_Prepare::prefersAnObjectsOwnProperties()
{
    World w;
    const auto read = [&w] {
        const QVariantList items = w.prepared({trackA, trackB}).toList();
        const OrkaHash item = OrkaHash::fromVariant(items.value(0));
        QStringList texts{items.size() == 2 && item.contains("orkaRoles") ? "2" : "too few"};
        for (const char *key : {"serviceId", "title", "artist", "genre", "url"})
            texts.append(item.value(key).toString());
        return texts.join('|');
    };
    w.service.answer({"GetAll", w.a, names::item},
        QVariantList{QVariantMap{{"DisplayName", "item's"}, {"Artist", "item's"},
                         {"URLs", QStringList{"u"}}},
            7U}); // one argument more than there should be
    w.service.answer({"GetAll", w.a, names::object},
        QVariantList{QVariantMap{{"DisplayName", "object's"}, {"Genre", "object's"}}});
    QCOMPARE(read(), "2|media|object's|item's|object's|u");
    w.service.fail({"GetAll", w.a, names::object});
    QCOMPARE(read(), "2|media|item's|item's||u");
    w.service.answer({"GetAll", w.a}, QVariantList{QStringList{"a"}});
    QCOMPARE(read(), "2|media||||");
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

void tst_Prepare::refusesUnknownKindsAndPreparesTheOthers()
{
    World w;
    const auto items =
        w.settled(w.askPrepare({"/uuid:1/61", trackA, image, "/uuid:1?itemType=Track", ""}));
    QCOMPARE(items.outcome(), unknownKind);
    QCOMPARE(itemsText(items.value()), "A");
    QCOMPARE(w.log.lines("ERROR CB_UPnP: Unknown item type for adding to Playlist ").size(), 4);
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

void tst_Prepare::walksOnlyWhenASearchFailedAndNothingWasFound()
{
    World w;
    const auto items = [&w](const FakeReply &answer, const QStringList &paths) {
        w.log.clear();
        w.service.forgetCalls();
        w.service.answer({"SearchObjectsEx", w.folder}, answer);
        const QString found = itemsText(w.prepared(paths));
        return found + (w.service.count({"ListChildren"}) > 0 ? " walked" : "");
    };
    const FakeReply fails = FakeReply::error("a.b", "can't");
    QCOMPARE(items(FakeReply{{propertyMaps({}), 5U}}, {folder1}), "");
    QCOMPARE(items(FakeReply{{1}}, {folder1}), "U1  U2 walked"); // another signature
    QCOMPARE(items(fails, {folder1, trackA}), "A");
    QCOMPARE(items(fails, {folder1, folder2}), "V1");
    QCOMPARE(items(fails, {image, folder1}), "U1  U2 walked");
    QCOMPARE(w.log.count("WARN CB_UPnP: Fetching search results failed; error: can't"), 1);
    QCOMPARE(
        w.log.count("INFO CB_UPnP: Search is not supported by the server - try browsing items"), 1);
}

void tst_Prepare::losesUrlsAndServersOnlyWhereTheBusRefusesCalls()
{
    for (const bool builtIn : {false, true}) {
        PluginFixture w(builtIn ? PrivateBus::builtInLimits : PrivateBus::sessionLimits);
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
        // 128 calls wait at a time: the two of each of 64 tracks, or the three of 42 servers.
        QCOMPARE(itemsText(items.value(), "url").split(' ', Qt::SkipEmptyParts).size(),
            builtIn ? 64 : 200);
        for (int i = 0; i < 500; ++i)
            w.service.announceFound(w.tree.addServer(QStringLiteral("uuid:n%1").arg(i), "Server"));
        w.settle();
        QCOMPARE(w.rootRows().rowsCount() == 501, !builtIn);
    }
}

QTEST_GUILESS_MAIN(tst_Prepare)
#include "tst_Prepare.moc"
