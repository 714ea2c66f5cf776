#include "PluginFixture.h"

#include <QTest>

/// What a server can search for, and the menu that offers it.
class tst_SearchMenu : public QObject
{
    Q_OBJECT

private slots:
    void offersWhatTheServerCanDo_data();
    void offersWhatTheServerCanDo();
    void givesTheRangeAskedForAndTheFullCount_data();
    void givesTheRangeAskedForAndTheFullCount();
    void describesItsNodes_data();
    void describesItsNodes();
    void replacesCapabilities();
    void namesTheContextOfItsTexts();
};

void tst_SearchMenu::offersWhatTheServerCanDo_data()
{
    QTest::addColumn<QStringList>("caps");
    QTest::addColumn<QString>("titles");
    QTest::newRow("nothing") << QStringList() << "";
    QTest::newRow("artist") << QStringList{"Artist"} << "Artist";
    QTest::newRow("all, in the menu's order")
        << QStringList{"DisplayName", "Album", "Artist"} << "Artist Album Title";
    QTest::newRow("titles go by another name") << QStringList{"DisplayName"} << "Title";
    QTest::newRow("which isn't theirs") << QStringList{"Title"} << "";
    QTest::newRow("case matters") << QStringList{"artist", "ALBUM", "displayName"} << "";
    QTest::newRow("a wildcard is no name") << QStringList{"*"} << "";
    QTest::newRow("others") << QStringList{"Creator", "Date", "Type", "Genre"} << "";
}

void tst_SearchMenu::offersWhatTheServerCanDo()
{
    QFETCH(QStringList, caps);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", caps);
    w.start();
    w.service.forgetCalls();
    const auto rows = w.askRows("/uuid:1?search=menu", 0, 9);
    w.settle();
    QCOMPARE(rows.outcome(), QString("value"));
    QTEST(firstColumn(rows.value()), "titles");
    QCOMPARE(rows.value().rowsCount(), rows.value().rows().size());
    QCOMPARE(w.service.callsText(), QString());
}

void tst_SearchMenu::givesTheRangeAskedForAndTheFullCount_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("titles");
    QTest::newRow("all") << 0 << 2 << "Artist Album Title";
    QTest::newRow("the middle one") << 1 << 1 << "Album";
    QTest::newRow("over the end") << 2 << 9 << "Title";
    QTest::newRow("behind the end") << 3 << 9 << "";
    QTest::newRow("none") << 1 << 0 << "";
    QTest::newRow("everything") << 0 << 2147483647 << "Artist Album Title";
}

void tst_SearchMenu::givesTheRangeAskedForAndTheFullCount()
{
    QFETCH(int, first);
    QFETCH(int, last);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Artist", "Album", "DisplayName"});
    w.start();
    const auto rows = w.askRows("/uuid:1/31?search=menu&itemType=container", first, last);
    w.settle();
    QTEST(firstColumn(rows.value()), "titles");
    QCOMPARE(rows.value().rowsCount(), 3);
}

void tst_SearchMenu::describesItsNodes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("roles");
    QTest::newRow("menu") << "/uuid:1/31?search=menu&x=y"
                          << R"(["upnp:/uuid:1/31?search=menu","Search menu",1,101])";
    QTest::newRow("Menu is a key like any other")
        << "/uuid:1?search=Menu"
        << R"(["upnp:/uuid:1?search=Menu","Search results",1,null])";
    QTest::newRow("results")
        << "/uuid:1?itemType=server&query=x%20y&search=title"
        << R"(["upnp:/uuid:1?itemType=server&query=x%20y&search=title","Search results",1,null])";
}

void tst_SearchMenu::describesItsNodes()
{
    QFETCH(QString, path);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Album"});
    w.start();
    const auto data = w.askData(path, {"path", "title", "type", "containerType"});
    const auto rows = w.askRows("/uuid:1/31?search=menu", 0, 9, {"title", "type", "path"});
    w.settle();
    QTEST(orkaToJson(data.value()), "roles");
    QCOMPARE(rowsText(rows.value()), QString(R"([["Album",100,"upnp:/uuid:1/31?search=album"]])"));
    QCOMPARE(rows.value().rowsVersion(), 0);
    QCOMPARE(rows.value().roles().path().toEncoded(), QString("upnp:/uuid:1/31?search=menu"));
}

void tst_SearchMenu::replacesCapabilities()
{
    PluginFixture w;
    w.start();
    QVERIFY(!w.worker().hasSearchCaps("uuid:1"));
    QVERIFY(!w.worker().checkSearchCap("uuid:1", "Artist"));
    w.worker().setSearchCaps("uuid:1", {"Artist", "DisplayName"});
    QVERIFY(w.worker().checkSearchCap("uuid:1", "Artist"));
    QVERIFY(w.worker().checkSearchCap("uuid:1", "Title"));
    w.worker().setSearchCaps("uuid:1", {"Album"});
    QVERIFY(!w.worker().checkSearchCap("uuid:1", "Artist"));
    w.worker().setSearchCaps("uuid:1", {});
    QVERIFY(!w.worker().hasSearchCaps("uuid:1"));
    QCOMPARE(w.log.lines("TRACE CB_UPnP: Enter CMUPnPWorker::checkSearchCap").first(),
        QString("TRACE CB_UPnP: Enter CMUPnPWorker::checkSearchCap: udn=uuid:1cap=Artist"));
    QCOMPARE(w.log.lines("TRACE CB_UPnP: ret=").first(), QString("TRACE CB_UPnP: ret=0"));
}

void tst_SearchMenu::namesTheContextOfItsTexts()
{
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Album"});
    w.start();
    const auto rows = w.askRows("/uuid:1?search=menu", 0, 0);
    const auto results = w.askData("/uuid:1?search=album");
    const auto lost = w.askRows("/uuid:2", 0, 0);
    w.settle();
    for (const TrString &text :
        {rows.value().rows()[0].toList()[0].value<TrString>(), rows.value().roles().title(),
            results.value()[0].value<TrString>(), lost.reply().error().message()})
        QCOMPARE(text.context(), QByteArray("CMUPnPWorker"));
}

QTEST_GUILESS_MAIN(tst_SearchMenu)
#include "tst_SearchMenu.moc"
