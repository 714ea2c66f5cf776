#include "NetworkInfo.h"
#include "PluginFixture.h"
#include "SlicedWork.h"
#include "Table.h"

/// Everything below a container of a server that can't search.
class tst_Walk : public QObject
{
    Q_OBJECT

private slots:
    void givesAContainersOwnTracksBeforeItsSubContainers();
    void visitsLargerPositionsFirst();
    void meetsEveryObjectOnce_data();
    void meetsEveryObjectOnce();
    void takesTheLastOfSeveralContainersAndTracks();
    void goesOnWithoutWhatCannotBeRead_data();
    void goesOnWithoutWhatCannotBeRead();
    void takesWhateverIsNoContainerAndHasAUrl();
    void listsMoreSubContainersThanFitIntoATurn();
    void goesAThousandContainersDeep();
    void livesWithinAConnectionsLimit_data();
    void livesWithinAConnectionsLimit();
    void goesOnWhenTheAnswersComeOutOfOrder();
    void looksUpTheAddressAnewForEveryListing();
    void dropsALongWalkWithItsWorker();
};

namespace {

const QString theFolder = "/uuid:1/31?itemType=container";
const QVariantMap noUrl{{"URLs", QStringList()}};

struct World : FolderFixture
{
    QString add(const QString &parent, const QByteArray &track)
    {
        return tree.addTrack(parent, track, track);
    }
    QString nest(const QString &parent, const QByteArray &container)
    {
        return tree.addContainer(parent, container, container);
    }
    /// A track gets into a walk only when its first reading gave nothing to play.
    QString addUnreadable(const QByteArray &track)
    {
        const QString path = add(server, track);
        service.answer({"GetAll", path, names::item}, QVariantList{noUrl});
        return path;
    }
    ReplyProbe<QVariant> walk(const QStringList &paths = {theFolder})
    {
        return settled(askPrepare(paths));
    }
    /// What is walked, by titles.
    QString walked(const QStringList &paths = {theFolder})
    {
        return itemsText(walk(paths).value());
    }
};

} // namespace

void tst_Walk::givesAContainersOwnTracksBeforeItsSubContainers()
{
    World w;
    w.add(w.folder, "T1");
    const QString s1 = w.nest(w.folder, "S1");
    w.add(w.folder, "T2");
    const QString s2 = w.nest(w.folder, "S2");
    for (const QByteArray track : {"U1", "U2"})
        w.add(s2, track);
    w.add(w.nest(s2, "S3"), "W1");
    w.add(s1, "V1");
    w.start();
    const auto items = w.walk();
    QCOMPARE(items.outcome(), "value");
    QCOMPARE(itemsText(items.value()), "T1 T2 V1 U1 U2 W1");
    QCOMPARE(w.service.count({"ListChildren"}), 4);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse container: browse____4____3"), 1);
    for (const FakeCall &call : w.service.calls({"ListChildren"})) {
        QCOMPARE(call.arguments().mid(0, 2), (QVariantList{0U, 10000U}));
        QCOMPARE(call.arguments()[2].toStringList(), w.worker().propertyFilter());
    }
}

// "_" fills the names of positions up to five characters, and sorts after the digits.
void tst_Walk::visitsLargerPositionsFirst()
{
    World w;
    for (int position = 1; position <= 120; ++position) {
        const QByteArray name = QByteArray::number(position);
        if (position == 2 || position == 3 || position == 12 || position == 101 || position == 120)
            w.add(w.nest(w.folder, "S" + name), "in" + name);
        else
            w.tree.addItem(w.folder, name, noUrl);
    }
    w.start();
    QCOMPARE(w.walked(), "in101 in120 in12 in2 in3");
    const QString start = "DEBUG CB_UPnP: browse finished call: ";
    QCOMPARE(w.log.lines(start).join(' ').remove(start),
        "browse browse__101 browse__120 browse___12 browse____2 browse____3");
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse container: browse___12"), 1);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse add: in12"), 1);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse finished"), 1);
}

void tst_Walk::meetsEveryObjectOnce_data()
{
    columns<QString, int>("link", "listings");
    row("a container in itself", "self", 2);
    // What the request names isn't entered as met, so a way back to it is followed once.
    row("a loop of two", "loop", 3);
    row("a track in two containers", "track", 2);
}

void tst_Walk::meetsEveryObjectOnce()
{
    QFETCH(QString, link);
    World w;
    const QString track = w.add(w.folder, "T");
    w.tree.addLink(w.folder, track); // takes up a position all the same
    const QString inner = w.nest(w.folder, "inner");
    w.add(inner, "U");
    w.tree.addLink(inner, link == "track" ? track : link == "self" ? inner : w.folder);
    w.start();
    QCOMPARE(w.walked(), "T U");
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse container: browse____3"), 1);
    QTEST(w.service.count({"ListChildren"}), "listings");
}

void tst_Walk::takesTheLastOfSeveralContainersAndTracks()
{
    World w;
    w.add(w.folder, "T");
    w.add(w.nest(w.server, "2"), "U");
    QStringList paths{theFolder, "/uuid:1/31?itemType=image"};
    for (const QByteArray id : {"a", "b"}) {
        w.addUnreadable(id);
        paths.append("/uuid:1/" + QString(id.toHex()) + "?itemType=track");
    }
    w.start();
    QCOMPARE(w.walked(paths), "b T");
    QCOMPARE(w.service.count({"GetAll", {}, ""}), 6);
    const QString other = "/uuid:1/32?itemType=container";
    QCOMPARE(w.walked({theFolder, other}), "U");
    QCOMPARE(w.walked({other, theFolder}), "T");
    QCOMPARE(w.walked({other, "/uuid:1?itemType=server"}), "a b T U");
}

void tst_Walk::goesOnWithoutWhatCannotBeRead_data()
{
    columns<FakeReply>("answer");
    row("an error", FakeReply::error("a.b", "broken"));
    row("another signature", FakeReply{{1}});
}

void tst_Walk::goesOnWithoutWhatCannotBeRead()
{
    QFETCH(FakeReply, answer);
    World w;
    for (const QByteArray name : {"1", "2", "3"}) {
        const QString container = w.nest(w.folder, "c" + name);
        w.add(container, "T" + name);
        if (name == "2")
            w.service.answer({"ListChildren", container}, answer);
    }
    const QString track = w.add(w.server, "a");
    w.service.answer({"GetAll", track}, [&](const FakeCall &call) {
        return call.arguments() == QVariantList{""} ? answer : FakeReply{{noUrl}};
    });
    w.start();
    const auto items = w.walk({theFolder, "/uuid:1/61?itemType=track"});
    QCOMPARE(items.outcome(), "value");
    QCOMPARE(itemsText(items.value()), "T1 T3");
    QCOMPARE(
        w.log.lines("ERROR CB_UPnP: Fetching children failed: " + answer.errorMessage).size(), 2);
    w.service.answer({"ListChildren"}, answer);
    const auto nothing = w.walk();
    QCOMPARE(nothing.outcome(), "value");
    QCOMPARE(nothing.value(), QVariant(QVariantList()));
}

void tst_Walk::takesWhateverIsNoContainerAndHasAUrl()
{
    World w;
    const QStringList url{"u"};
    w.tree.addItem(
        w.folder, "1", {{"DisplayName", "list"}, {"Type", "container.list"}, {"URLs", url}});
    w.tree.addItem(w.folder, "2", noUrl);
    w.tree.addItem(w.folder, "3", {{"DisplayName", "untyped"}, {"URLs", url}});
    w.tree.addItem(w.folder, "4", {{"DisplayName", "missing"}, {"Type", "music"}});
    w.start();
    QCOMPARE(w.walked(), "list untyped missing");
    // Objects without a path are all one to the walk.
    const QVariantMap p{{"DisplayName", "p"}, {"URLs", url}}, q{{"DisplayName", "q"}};
    w.service.answer({"ListChildren"}, QVariantList{propertyMaps({p, q})});
    QCOMPARE(w.walked(), "p");
}

void tst_Walk::listsMoreSubContainersThanFitIntoATurn()
{
    World w;
    const int containers = 3 * SlicedWork::stepsPerTurn;
    for (int i = 0; i < containers; ++i) {
        const QByteArray number = QByteArray::number(i);
        w.add(w.nest(w.folder, "c" + number), "t" + number);
    }
    w.start();
    QCOMPARE(w.walk().value().toList().size(), containers);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse finished"), 1);
}

void tst_Walk::goesAThousandContainersDeep()
{
    World w;
    w.log.setLevel(log4cplus::ERROR_LOG_LEVEL);
    QString container = w.folder;
    for (int depth = 0; depth < 1000; ++depth)
        container = w.nest(container, "d" + QByteArray::number(depth));
    w.add(container, "bottom");
    w.start();
    QCOMPARE(w.walked(), "bottom");
}

void tst_Walk::livesWithinAConnectionsLimit_data()
{
    columns<bool, bool>("nested", "limitedLater");
    // The plug-in raises what it finds, so that twenty listings may be on their way at once.
    row("one beside the other", false, false);
    // The limit stays, and each is released before the next one comes.
    row("one in the other", true, true);
}

// Twenty listings of a megabyte, and a connection that holds four.
void tst_Walk::livesWithinAConnectionsLimit()
{
    QFETCH(bool, nested);
    QFETCH(bool, limitedLater);
    World w;
    w.log.setLevel(log4cplus::ERROR_LOG_LEVEL);
    QString parent = w.folder;
    for (int i = 0; i < 20; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QString container = w.nest(parent, "c" + number);
        w.tree.addTrack(container, "t" + number, number, {{"Genre", QString(1 << 20, 'x')}});
        parent = nested ? container : parent;
    }
    if (!limitedLater)
        PrivateBus::limitUnreleasedReplies(4 << 20);
    w.start();
    if (limitedLater)
        PrivateBus::limitUnreleasedReplies(4 << 20);
    QCOMPARE(w.walk().value().toList().size(), 20);
    QCOMPARE(w.settled(w.askData("/uuid:1")).outcome(), "value");
}

void tst_Walk::goesOnWhenTheAnswersComeOutOfOrder()
{
    World w;
    QStringList containers;
    for (const QByteArray name : {"1", "2", "3"}) {
        containers.append(w.nest(w.folder, "c" + name));
        w.add(containers.last(), "T" + name);
        w.add(w.nest(containers.last(), "d" + name), "U" + name);
    }
    w.start();
    for (const QString &container : containers)
        w.service.hold({"ListChildren", container});
    const auto items = w.walk();
    for (const int next : {2, 0, 1}) {
        QCOMPARE(items.outcome(), "pending");
        w.release({"ListChildren", containers[next]});
    }
    QCOMPARE(itemsText(items.value()), "T1 U1 T2 U2 T3 U3");
}

void tst_Walk::looksUpTheAddressAnewForEveryListing()
{
    World w;
    w.tree.addTrack(w.folder, "a", "A", {{"AlbumArtURL", "http://art"}});
    const QString inner = w.nest(w.folder, "inner");
    w.tree.addTrack(inner, "b", "B", {{"AlbumArtURL", "http://art"}});
    publishNetwork({"old"});
    w.start();
    w.service.hold({"ListChildren", inner});
    const auto items = w.walk();
    publishNetwork({"new"});
    w.settle();
    w.release();
    QStringList hosts;
    for (const QVariant &item : items.value().toList()) {
        const QString roles = OrkaPlayListItem(OrkaHash::fromVariant(item)).orkaRoles();
        hosts.append(roles.section("https://", 1).section('/', 0, 0));
    }
    QCOMPARE(hosts, (QStringList{"old", "new"}));
}

void tst_Walk::dropsALongWalkWithItsWorker()
{
    World w;
    w.addTracks(350);
    w.start();
    const auto items = w.askPrepare({theFolder});
    const QString added = "DEBUG CB_UPnP: browse add: ";
    w.runUntilLogged(added);
    w.stop();
    w.settle();
    QVERIFY(w.log.lines(added).size() < 350);
    QCOMPARE(items.outcome(), "dropped");
    w.start();
    QCOMPARE(w.walk().value().toList().size(), 350);
}

QTEST_GUILESS_MAIN(tst_Walk)
#include "tst_Walk.moc"
