#include "PluginFixture.h"

#include <QTest>

/// Everything below a container of a server that can't search.
class tst_Walk : public QObject
{
    Q_OBJECT

private slots:
    void givesAContainersOwnTracksBeforeItsSubContainers();
    void visitsLargerPositionsFirst();
    void listsEveryContainerOnceUnderItsName();
    void meetsEveryObjectOnce_data();
    void meetsEveryObjectOnce();
    void takesTheLastOfSeveralContainers();
    void takesTheLastTrackBeforeTheContainer();
    void goesOnWithoutWhatCannotBeRead_data();
    void goesOnWithoutWhatCannotBeRead();
    void answersWithNothingWhereEverythingFails();
    void takesWhateverIsNoContainerAndHasAUrl();
    void goesAThousandContainersDeep();
    void survivesMoreThanAConnectionHolds();
    void releasesRepliesAsItGoes();
    void goesOnWhenTheAnswersComeOutOfOrder();
    void looksUpTheAddressAnewForEveryListing();
    void dropsALongWalkWithItsWorker();
};

namespace {

/// A server "uuid:1" that can't search, and its folder "/uuid:1/31".
struct World : PluginFixture
{
    FakeTree &tree = service.tree;
    QString server = tree.addServer("uuid:1", "One");
    QString folder = tree.addContainer(server, "1", "Folder");

    QString add(const QString &parent, const QByteArray &track)
    {
        return tree.addTrack(parent, track, track);
    }
    QString nest(const QString &parent, const QByteArray &container)
    {
        return tree.addContainer(parent, container, container);
    }
    ReplyProbe<QVariant> walk(const QStringList &paths = {"/uuid:1/31?itemType=container"})
    {
        const auto items = askPrepare(paths);
        settle();
        return items;
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
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(itemsText(items.value()), QString("T1 T2 V1 U1 U2 W1"));
    QCOMPARE(w.openWork(), 0);
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
            w.tree.addItem(w.folder, name, {{"Type", "image"}, {"URLs", QStringList()}});
    }
    w.start();
    QCOMPARE(itemsText(w.walk().value()), QString("in101 in120 in12 in2 in3"));
    const QString start = "DEBUG CB_UPnP: browse finished call: ";
    QCOMPARE(w.log.lines(start).join(' ').remove(start),
        QString("browse browse__101 browse__120 browse___12 browse____2 browse____3"));
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse add: in12"), 1);
    QCOMPARE(w.log.count("DEBUG CB_UPnP: browse finished"), 1);
}

void tst_Walk::listsEveryContainerOnceUnderItsName()
{
    World w;
    w.add(w.folder, "T");
    const QString second = w.nest(w.folder, "2");
    w.add(second, "a");
    w.add(second, "b");
    w.nest(second, "3");
    w.start();
    w.walk();
    const QString start = "DEBUG CB_UPnP: browse container: ";
    QCOMPARE(w.log.lines(start).join(' ').remove(start), QString("browse____2 browse____2____3"));
    QCOMPARE(w.service.count({"ListChildren"}), 3);
}

void tst_Walk::meetsEveryObjectOnce_data()
{
    QTest::addColumn<QString>("link");
    QTest::newRow("a container in itself") << "self";
    QTest::newRow("a loop of two") << "loop";
    QTest::newRow("a track in two containers") << "track";
}

void tst_Walk::meetsEveryObjectOnce()
{
    QFETCH(QString, link);
    World w;
    const QString track = w.add(w.folder, "T");
    const QString inner = w.nest(w.folder, "inner");
    w.add(inner, "U");
    if (link == "track")
        w.tree.addLink(inner, track);
    else
        w.tree.addLink(inner, link == "self" ? inner : w.folder);
    w.start();
    const auto items = w.walk();
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(itemsText(items.value()), QString("T U"));
    // What the request names isn't entered as met, so a way back to it is followed once.
    QCOMPARE(w.service.count({"ListChildren"}), link == "loop" ? 3 : 2);
}

void tst_Walk::takesTheLastOfSeveralContainers()
{
    World w;
    w.add(w.folder, "T");
    w.add(w.nest(w.server, "2"), "U");
    w.start();
    const QString a = "/uuid:1/31?itemType=container";
    const QString b = "/uuid:1/32?itemType=container";
    QCOMPARE(itemsText(w.walk({a, b}).value()), QString("U"));
    QCOMPARE(itemsText(w.walk({b, a}).value()), QString("T"));
    QCOMPARE(itemsText(w.walk({b, "/uuid:1?itemType=server"}).value()), QString("T U"));
}

// A track gets into a walk only when its first reading gave nothing to play.
void tst_Walk::takesTheLastTrackBeforeTheContainer()
{
    World w;
    w.add(w.folder, "T");
    QStringList paths{"/uuid:1/31?itemType=container", "/uuid:1/31?itemType=image"};
    for (const QByteArray id : {"a", "b"}) {
        const QString track = w.add(w.server, id);
        w.service.answer(
            {"GetAll", track, names::item}, QVariantList{QVariantMap{{"URLs", QStringList()}}});
        paths.append("/uuid:1/" + QString(id.toHex()) + "?itemType=track");
    }
    w.start();
    QCOMPARE(itemsText(w.walk(paths).value()), QString("b T"));
    QCOMPARE(w.service.count({"GetAll", {}, ""}), 6);
}

void tst_Walk::goesOnWithoutWhatCannotBeRead_data()
{
    QTest::addColumn<bool>("wrongSignature");
    QTest::newRow("an error") << false;
    QTest::newRow("another signature") << true;
}

void tst_Walk::goesOnWithoutWhatCannotBeRead()
{
    QFETCH(bool, wrongSignature);
    World w;
    QString middle;
    for (const QByteArray name : {"1", "2", "3"}) {
        middle = name == "2" ? w.nest(w.folder, "c2") : middle;
        w.add(name == "2" ? middle : w.nest(w.folder, "c" + name), "T" + name);
    }
    const QString track = w.add(w.server, "a");
    w.service.answer(
        {"GetAll", track, names::item}, QVariantList{QVariantMap{{"URLs", QStringList()}}});
    for (const FakeMatch &match :
        {FakeMatch{"ListChildren", middle}, FakeMatch{"GetAll", track, ""}}) {
        if (match.member == "GetAll")
            w.service.answer(match, [wrongSignature](const FakeCall &call) {
                const QVariantMap noUrl{{"URLs", QStringList()}};
                if (call.arguments() != QVariantList{""})
                    return FakeReply{{noUrl}, {}, {}};
                return wrongSignature ? FakeReply{{1}, {}, {}} : FakeReply::error("a.b", "broken");
            });
        else if (wrongSignature)
            w.service.answer(match, QVariantList{QStringList{"a"}});
        else
            w.service.fail(match, "broken", "a.b");
    }
    w.start();
    const auto items = w.walk({"/uuid:1/31?itemType=container", "/uuid:1/61?itemType=track"});
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(itemsText(items.value()), QString("T1 T3"));
    QCOMPARE(w.log.lines("ERROR CB_UPnP: Fetching children failed: ").size(), 2);
    if (!wrongSignature)
        QCOMPARE(w.log.count("ERROR CB_UPnP: Fetching children failed: broken"), 2);
}

void tst_Walk::answersWithNothingWhereEverythingFails()
{
    World w;
    w.service.fail({"ListChildren"});
    w.start();
    const auto items = w.walk();
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(items.value(), QVariant(QVariantList()));
    QCOMPARE(w.openWork(), 0);
}

void tst_Walk::takesWhateverIsNoContainerAndHasAUrl()
{
    World w;
    const QStringList url{"u"};
    w.tree.addItem(w.folder, "1", {{"DisplayName", "video"}, {"Type", "video"}, {"URLs", url}});
    w.tree.addItem(
        w.folder, "2", {{"DisplayName", "none"}, {"Type", "music"}, {"URLs", QStringList()}});
    w.tree.addItem(w.folder, "3", {{"DisplayName", "untyped"}, {"URLs", url}});
    w.tree.addItem(w.folder, "4", {{"DisplayName", "missing"}, {"Type", "music"}});
    w.start();
    QCOMPARE(itemsText(w.walk().value()), QString("video untyped missing"));
    // Objects without a path are all one to the walk.
    w.service.answer({"ListChildren"},
        QVariantList{propertyMaps(
            {{{"DisplayName", "p"}, {"URLs", url}}, {{"DisplayName", "q"}, {"URLs", url}}})});
    QCOMPARE(itemsText(w.walk().value()), QString("p"));
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
    QCOMPARE(itemsText(w.walk().value()), QString("bottom"));
}

// Twelve listings of 6 MB each come in before the first is handled: more than the 63 MiB of replies
// that a connection holds as it is. It still works afterwards.
void tst_Walk::survivesMoreThanAConnectionHolds()
{
    World w;
    w.log.setLevel(log4cplus::ERROR_LOG_LEVEL);
    const QString padding(60000, 'x');
    for (int c = 0; c < 12; ++c) {
        const QString container = w.nest(w.folder, "c" + QByteArray::number(c));
        for (int i = 0; i < 100; ++i) {
            w.tree.addTrack(
                container, "t" + QByteArray::number(c * 100 + i), "T", {{"Genre", padding}});
        }
    }
    w.start();
    const auto items = w.walk();
    QCOMPARE(items.outcome(), QString("value"));
    QCOMPARE(items.value().toList().size(), 1200);
    const auto rows = w.askRows("/uuid:1/31", 0, 0);
    w.settle();
    QCOMPARE(rows.value().rowsCount(), 12);
}

// Twenty containers, one in the other, on a connection that holds the listings of four.
void tst_Walk::releasesRepliesAsItGoes()
{
    World w;
    PrivateBus::limitUnreleasedReplies(4 << 20);
    w.log.setLevel(log4cplus::ERROR_LOG_LEVEL);
    QString container = w.folder;
    for (int depth = 0; depth < 20; ++depth) {
        const QByteArray number = QByteArray::number(depth);
        w.tree.addTrack(container, "t" + number, number, {{"Genre", QString(1 << 20, 'x')}});
        container = w.nest(container, "c" + number);
    }
    w.start();
    QCOMPARE(w.walk().value().toList().size(), 20);
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
        QCOMPARE(items.outcome(), QString("nothing"));
        w.service.release({"ListChildren", containers[next]});
        w.settle();
    }
    QCOMPARE(itemsText(items.value()), QString("T1 U1 T2 U2 T3 U3"));
}

void tst_Walk::looksUpTheAddressAnewForEveryListing()
{
    const auto publish = [](const QString &ip) {
        const QVariantHash address{{"ip", ip}};
        const QVariantHash wired{{"addresses", QVariantList{address}}};
        CMValueStore::setValue(OrkaNetworkInfoPath(),
            OrkaHash(QVariantHash{{"networkInfo", QVariantHash{{"wired", wired}}}}));
    };
    World w;
    w.tree.addTrack(w.folder, "a", "A", {{"AlbumArtURL", "http://art"}});
    const QString inner = w.nest(w.folder, "inner");
    w.tree.addTrack(inner, "b", "B", {{"AlbumArtURL", "http://art"}});
    publish("old");
    w.start();
    w.service.hold({"ListChildren", inner});
    const auto items = w.walk();
    publish("new");
    w.settle();
    w.service.release();
    w.settle();
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
    for (int i = 0; i < 350; ++i)
        w.add(w.folder, "n" + QByteArray::number(i));
    w.start();
    const auto items = w.askPrepare({"/uuid:1/31?itemType=container"});
    while (w.log.lines("DEBUG CB_UPnP: browse add: ").isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    w.stop();
    w.settle();
    QVERIFY(w.log.lines("DEBUG CB_UPnP: browse add: ").size() < 350);
    QCOMPARE(items.outcome(), QString("nothing"));
    QCOMPARE(items.reply().handles(), 2L);
    w.start();
    QCOMPARE(w.walk().value().toList().size(), 350);
}

QTEST_GUILESS_MAIN(tst_Walk)
#include "tst_Walk.moc"
