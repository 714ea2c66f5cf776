#include "PluginFixture.h"

#include <QTest>

/// A property map as what the player queues.
class tst_PlaylistItem : public QObject
{
    Q_OBJECT

private slots:
    void mapsWhatATrackHas_data();
    void mapsWhatATrackHas();
    void carriesTheRolesOfItsNode();
    void anEmptyListOfUrlsMakesNoItem();
};

void tst_PlaylistItem::mapsWhatATrackHas_data()
{
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<QString>("item"); // without its roles
    QTest::newRow("everything")
        << QVariantMap{{"DisplayName", "Song"}, {"URLs", QStringList{"http://a/1", "http://a/2"}},
               {"Artist", "Ann"}, {"Album", "Alb"}, {"Genre", "Pop"}, {"Duration", 245},
               {"AlbumArtURL", "http://a/art"}, {"Creator", "Cid"}, {"Date", "2001-01-01"}}
        << R"({"serviceId":"media","artist":"Ann","album":"Alb","artworkUrl":"http://a/art",)"
           R"("durationSeconds":245,"genre":"Pop","url":"http://a/1","title":"Song"})";
    QTest::newRow("title and URLs")
        << QVariantMap{{"DisplayName", "S"}, {"URLs", QStringList{"rtsp://a", "b"}}}
        << R"({"serviceId":"media","url":"rtsp://a","title":"S"})";
    QTest::newRow("no URLs at all") << QVariantMap{{"DisplayName", "S"}, {"Artist", ""}}
                                    << R"({"serviceId":"media","artist":"","title":"S"})";
    QTest::newRow("nothing") << QVariantMap() << R"({"serviceId":"media"})";
    QTest::newRow("values of other types")
        << QVariantMap{{"DisplayName", 5}, {"URLs", "http://one"}, {"Duration", "long"},
               {"Genre", QVariantList()}}
        << R"({"serviceId":"media","durationSeconds":0,"genre":"","url":"http://one","title":"5"})";
}

void tst_PlaylistItem::mapsWhatATrackHas()
{
    QFETCH(QVariantMap, properties);
    PluginFixture w;
    w.start();
    OrkaPlayListItem item = w.worker().fillin_playlistItem(properties);
    QCOMPARE(item.orkaRoles(), w.worker().fillin_roles(properties).toJsonString());
    item.remove(OrkaPlayListItem::OrkaRoles_());
    QTEST(item.toJsonString(), "item");
}

// The picture's URL is the server's own; the roles have it by way of the device's proxy.
void tst_PlaylistItem::carriesTheRolesOfItsNode()
{
    OrkaNetworkAddress address;
    address.setIp("192.0.2.1");
    OrkaList<OrkaNetworkAddress> addresses;
    addresses.append(address);
    OrkaNetworkWiredInterface wired;
    wired.setAddresses(addresses);
    OrkaNetworkInfo network;
    network.setWired(wired);
    OrkaValue value;
    value.setNetworkInfo(network);
    CMValueStore::setValue(OrkaNetworkInfoPath(), value);

    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    const QString track =
        w.service.tree.addTrack(server, "t", "A \"song\"", {{"AlbumArtURL", "http://a/b"}});
    w.start();
    const OrkaPlayListItem item = w.worker().fillin_playlistItem(w.service.tree.properties(track));
    QCOMPARE(item.artworkUrl(), QString("http://a/b"));
    const QString start =
        R"({"path":"upnp:/uuid:1/74?itemType=track","title":"A \"song\"","type":2,)";
    const QString end = R"("icon":"https://192.0.2.1/proxy/aHR0cDovL2EvYg=="})";
    QVERIFY2(item.orkaRoles().startsWith(start), qPrintable(item.orkaRoles()));
    QVERIFY2(item.orkaRoles().endsWith(end), qPrintable(item.orkaRoles()));
}

void tst_PlaylistItem::anEmptyListOfUrlsMakesNoItem()
{
    PluginFixture w;
    w.start();
    for (const QVariant &urls : {QVariant(QStringList()), QVariant(7)}) {
        w.log.clear();
        const OrkaPlayListItem item =
            w.worker().fillin_playlistItem({{"DisplayName", "S"}, {"URLs", urls}});
        QVERIFY(item.isEmpty());
        QCOMPARE(w.log.count("ERROR CB_UPnP: Trying to add item without URL to playlist"), 1);
    }
}

QTEST_GUILESS_MAIN(tst_PlaylistItem)
#include "tst_PlaylistItem.moc"
