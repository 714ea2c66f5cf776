#include "PluginFixture.h"
#include "Table.h"

/// What a server can search for, and the menu that offers it.
class tst_SearchMenu : public QObject
{
    Q_OBJECT

private slots:
    void offersWhatTheServerCanDo_data();
    void offersWhatTheServerCanDo();
    void describesItsNodes_data();
    void describesItsNodes();
    void replacesCapabilities();
};

void tst_SearchMenu::offersWhatTheServerCanDo_data()
{
    columns<QStringList, int, int, QString, int>("caps", "first", "last", "titles", "rowsCount");
    const QStringList all{"DisplayName", "Album", "Artist"};
    row("nothing", QStringList(), 0, 9, "", 0);
    row("artist", QStringList{"Artist"}, 0, 9, "Artist", 1);
    row("all, in the menu's order", all, 0, 2, "Artist Album Title", 3);
    row("titles go by another name", QStringList{"DisplayName", "Title"}, 0, 9, "Title", 1);
    row("case matters", QStringList{"artist", "ALBUM", "displayName"}, 0, 9, "", 0);
    row("others, and a wildcard is no name", QStringList{"Title", "Genre", "*"}, 0, 9, "", 0);
    row("the middle one", all, 1, 1, "Album", 3);
    row("over the end", all, 2, 9, "Title", 3);
    row("behind the end", all, 3, 9, "", 3);
    row("none", all, 1, 0, "", 3);
    row("everything", all, 0, 2147483647, "Artist Album Title", 3);
}

void tst_SearchMenu::offersWhatTheServerCanDo()
{
    QFETCH(QStringList, caps);
    QFETCH(int, first);
    QFETCH(int, last);
    FolderFixture w(caps);
    w.start();
    w.service.forgetCalls();
    const auto rows =
        w.settled(w.askRows("/uuid:1/31?search=menu&itemType=container", first, last));
    QCOMPARE(rows.outcome(), "value");
    QTEST(firstColumn(rows.value()), "titles");
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(w.service.callsText(), "");
}

void tst_SearchMenu::describesItsNodes_data()
{
    columns<QString, QString>("path", "roles");
    row("menu", "/uuid:1/31?search=menu&x=y",
        R"(["Search menu",1,101,"upnp:/uuid:1/31?search=menu"])");
    row("Menu is a key like any other", "/uuid:1?search=Menu",
        R"(["Search results",1,null,"upnp:/uuid:1?search=Menu"])");
    row("results", "/uuid:1?itemType=server&query=x%20y&search=title",
        R"(["Search results",1,null,"upnp:/uuid:1?itemType=server&query=x%20y&search=title"])");
}

void tst_SearchMenu::describesItsNodes()
{
    QFETCH(QString, path);
    FolderFixture w(QStringList{"Album"});
    w.start();
    const auto data = w.askData(path, {"title", "type", "containerType", "path"});
    const OrkaRowsRoles menu =
        w.settled(w.askRows("/uuid:1/31?search=menu", 0, 9, {"title", "type", "path"})).value();
    QTEST(orkaToJson(data.value()), "roles");
    QCOMPARE(rowsText(menu), R"([["Album",100,"upnp:/uuid:1/31?search=album"]])");
    QCOMPARE(menu.value(OrkaRowsRoles::RowsVersion()), QVariant(0));
    QCOMPARE(menu.roles().path().toEncoded(), "upnp:/uuid:1/31?search=menu");
    for (const QVariant &title :
        {menu.rows()[0].toList()[0], data.value()[0], QVariant::fromValue(menu.roles().title())})
        QCOMPARE(title.value<TrString>().context(), "CMUPnPWorker");
}

void tst_SearchMenu::replacesCapabilities()
{
    PluginFixture w;
    w.start();
    QVERIFY(!w.worker().hasSearchCaps("uuid:1"));
    QVERIFY(!w.worker().checkSearchCap("uuid:1", "Artist"));
    w.worker().setSearchCaps("uuid:1", {"Artist"});
    QVERIFY(w.worker().checkSearchCap("uuid:1", "Artist"));
    w.worker().setSearchCaps("uuid:1", {"Album"});
    QVERIFY(!w.worker().checkSearchCap("uuid:1", "Artist"));
    QVERIFY(w.worker().hasSearchCaps("uuid:1"));
    QCOMPARE(w.log.lines("TRACE CB_UPnP: Enter CMUPnPWorker::checkSearchCap").first(),
        "TRACE CB_UPnP: Enter CMUPnPWorker::checkSearchCap: udn=uuid:1cap=Artist");
    QCOMPARE(w.log.lines("TRACE CB_UPnP: ret=").first(), "TRACE CB_UPnP: ret=0");
}

QTEST_GUILESS_MAIN(tst_SearchMenu)
#include "tst_SearchMenu.moc"
