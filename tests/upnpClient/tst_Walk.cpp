#include "NetworkInfo.h"
#include "PluginFixture.h"

#include <QTest>

/// Everything below a container of a server that can't search.
class tst_Walk : public QObject
{
    Q_OBJECT

private slots:
    void givesAContainersOwnTracksBeforeItsSubContainers();
    void visitsLargerPositionsFirst();
    void meetsEveryObjectOnce();
    void takesTheLastOfSeveralContainersAndTracks();
    void goesOnWithoutWhatCannotBeRead();
    void takesWhateverIsNoContainerAndHasAUrl();
    void livesWithinAConnectionsLimit();
    void goesOnWhenTheAnswersComeOutOfOrder();
    void namesServersAsTheyWereWhenTheLastReplyCame();
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
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse add: in12"), 1);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse finished"), 1);
}

void tst_Walk::meetsEveryObjectOnce()
{
    World w;
    const QString track = w.add(w.folder, "T");
    w.tree.addLink(w.folder, track); // takes up a position all the same
    const QString inner = w.nest(w.folder, "inner");
    w.add(inner, "U");
    w.tree.addLink(inner, track);
    w.tree.addLink(inner, inner);
    // What the request names isn't entered as met, so a way back to it is followed once.
    w.tree.addLink(inner, w.folder);
    w.start();
    QCOMPARE(w.walked(), "T U");
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse container: browse____3"), 1);
    QCOMPARE(w.service.count({"ListChildren"}), 3);
}

void tst_Walk::takesTheLastOfSeveralContainersAndTracks()
{
    World w;
    w.add(w.folder, "T");
    w.add(w.nest(w.server, "2"), "U");
    QStringList paths{theFolder, "/uuid:1/31?itemType=image"};
    for (const QByteArray id : {"a", "b"}) {
        // A track gets into a walk only when its first reading gave nothing to play.
        w.service.answer({"GetAll", w.add(w.server, id), names::item}, QVariantList{noUrl});
        paths.append("/uuid:1/" + QString(id.toHex()) + "?itemType=track");
    }
    w.start();
    QCOMPARE(w.walked(paths), "b T");
    const QString other = "/uuid:1/32?itemType=container";
    QCOMPARE(w.walked({theFolder, other}), "U");
    QCOMPARE(w.walked({other, "/uuid:1?itemType=server"}), "a b T U");
}

void tst_Walk::goesOnWithoutWhatCannotBeRead()
{
    for (const FakeReply &answer : {FakeReply::error("a.b", "broken"), FakeReply{{1}}}) {
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
        QCOMPARE(w.walked({theFolder, "/uuid:1/61?itemType=track"}), "T1 T3");
        const QString line = "ERROR CB_UPnP: Fetching children failed: " + answer.errorMessage;
        QCOMPARE(w.log.lines(line).size(), 2);
        w.service.answer({"ListChildren"}, answer);
        const auto nothing = w.walk();
        QCOMPARE(nothing.outcome(), "value");
        QCOMPARE(nothing.value(), QVariant(QVariantList()));
    }
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

// Twenty listings of a megabyte, and a connection that holds four.
void tst_Walk::livesWithinAConnectionsLimit()
{
    for (const bool nested : {false, true}) {
        World w;
        w.log.setLevel(log4cplus::ERROR_LOG_LEVEL);
        QString parent = w.folder;
        for (int i = 0; i < 20; ++i) {
            const QByteArray number = QByteArray::number(i);
            const QString container = w.nest(parent, "c" + number);
            w.tree.addTrack(container, "t" + number, number, {{"Genre", QString(1 << 20, 'x')}});
            parent = nested ? container : parent;
        }
        // The plug-in raises what it finds, so that twenty listings may be on their way at once;
        // where it can't, each is released before the next one comes.
        if (!nested)
            PrivateBus::limitUnreleasedReplies(4 << 20);
        w.start();
        if (nested)
            PrivateBus::limitUnreleasedReplies(4 << 20);
        QCOMPARE(w.walk().value().toList().size(), 20);
        QCOMPARE(w.settled(w.askData("/uuid:1")).outcome(), "value");
    }
}

// And the address is looked up anew for every listing.
void tst_Walk::goesOnWhenTheAnswersComeOutOfOrder()
{
    World w;
    QStringList containers;
    for (const QByteArray name : {"1", "2", "3"}) {
        containers.append(w.nest(w.folder, "c" + name));
        w.tree.addTrack(containers.last(), "T" + name, "T" + name, {{"AlbumArtURL", "http://art"}});
        w.add(w.nest(containers.last(), "d" + name), "U" + name);
    }
    w.start();
    for (const QString &container : containers)
        w.service.hold({"ListChildren", container});
    const auto items = w.walk();
    for (const int next : {2, 0, 1}) {
        publishNetwork({QString("host%1").arg(next)});
        w.settle();
        QCOMPARE(items.outcome(), "pending");
        w.release({"ListChildren", containers[next]});
    }
    QCOMPARE(itemsText(items.value()), "T1 U1 T2 U2 T3 U3");
    QVERIFY(itemsText(items.value(), "orkaRoles").contains("https://host1/proxy/"));
    publishNetwork({});
}

// The list takes several turns to read, and the server leaves in the first of them.
void tst_Walk::namesServersAsTheyWereWhenTheLastReplyCame()
{
    World w;
    w.addTracks(300);
    w.start();
    w.service.hold({"ListChildren"});
    const auto items = w.walk();
    w.service.release({"ListChildren"});
    w.service.announceLost(w.server);
    w.settle();
    QCOMPARE(itemsText(items.value(), "orkaRoles").count("upnp:/uuid:1/"), 300);
}

QTEST_GUILESS_MAIN(tst_Walk)
#include "tst_Walk.moc"
