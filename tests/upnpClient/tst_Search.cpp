#include "PluginFixture.h"
#include "Table.h"

/// What a server can search for, the menu that offers it, and what is found.
class tst_Search : public QObject
{
    Q_OBJECT

private slots:
    void offersWhatTheServerCanDo_data();
    void offersWhatTheServerCanDo();
    void describesItsNodes_data();
    void describesItsNodes();
    void replacesCapabilities();
    void writesTheCriteria_data();
    void writesTheCriteria();
    void givesTheRowsThatComeAndTheServersTotal_data();
    void givesTheRowsThatComeAndTheServersTotal();
    void saysWhyASearchFailed_data();
    void saysWhyASearchFailed();
};

namespace {

struct World : FolderFixture
{
    World()
        : FolderFixture(QStringList{"Artist", "Album", "DisplayName"})
    {
        start();
    }
    ReplyProbe<OrkaRowsRoles> search()
    {
        return settled(askRows("/uuid:1/31?search=artist&query=x", 10, 59));
    }
};

} // namespace

void tst_Search::offersWhatTheServerCanDo_data()
{
    columns<QStringList, int, int, QString, int>("caps", "first", "last", "titles", "rowsCount");
    const QStringList all{"DisplayName", "Album", "Artist"};
    row("nothing", QStringList(), 0, 9, "", 0);
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

void tst_Search::offersWhatTheServerCanDo()
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

void tst_Search::describesItsNodes_data()
{
    columns<QString, QString>("path", "roles");
    row("menu", "/uuid:1/31?search=menu&x=y",
        R"(["Search menu",1,101,"upnp:/uuid:1/31?search=menu"])");
    row("Menu is a key like any other", "/uuid:1?search=Menu",
        R"(["Search results",1,null,"upnp:/uuid:1?search=Menu"])");
    row("results", "/uuid:1?itemType=server&query=x%20y&search=title",
        R"(["Search results",1,null,"upnp:/uuid:1?itemType=server&query=x%20y&search=title"])");
}

void tst_Search::describesItsNodes()
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

void tst_Search::replacesCapabilities()
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

void tst_Search::writesTheCriteria_data()
{
    columns<QString, QString, QString>("search", "query", "criteria");
    row("artist", "artist", "abba", R"(Artist contains "abba")");
    row("album", "album", "Gold", R"(Album contains "Gold")");
    row("nothing", "title", "", R"(DisplayName contains "")");
    row("a quote", "title", R"(Say "Hi")", R"(DisplayName contains "Say \"Hi\"")");
    row("a backslash", "title", R"(back\slash)", R"(DisplayName contains "back\\slash")");
    row("both", "title", R"(\")", R"(DisplayName contains "\\\"")");
    row("a marker", "artist", "%1 %2 %%", R"(Artist contains "%1 %2 %%")");
    row("other scripts", "artist", QString::fromUtf8("Björk & 東京 <$'>"),
        QString::fromUtf8(R"(Artist contains "Björk & 東京 <$'>")"));
    row("a line end", "artist", "a\nb", "Artist contains \"a\nb\"");
    for (const char *unknown : {"Artist", "genre", "titles", " title"})
        row(unknown, unknown, "x", "");
}

void tst_Search::writesTheCriteria()
{
    QFETCH(QString, search);
    QFETCH(QString, query);
    QFETCH(QString, criteria);
    World w;
    CMPath path("upnp", "/uuid:1");
    path.addParam("search", search).addParam("query", query);
    w.settled(w.askRows(path.toEncoded().mid(5), 0, 49));
    const auto calls = w.service.calls({"SearchObjectsEx"});
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].arguments()[0].toString(), criteria);
    QCOMPARE(w.log.lines("ERROR").join('\n'),
        criteria.isEmpty() ? "ERROR CB_UPnP: Invalid search type: " + search : QString());
}

void tst_Search::givesTheRowsThatComeAndTheServersTotal_data()
{
    columns<QStringList, uint, int>("titles", "total", "rowsCount");
    row("some of more", QStringList{"b", "a", "c"}, 812U, 812);
    row("none of some", QStringList(), 5U, 5);
    row("a total of 0 beside rows", QStringList{"a"}, 0U, 0);
    row("more than an int holds", QStringList{"a"}, 4294967295U, -1);
}

void tst_Search::givesTheRowsThatComeAndTheServersTotal()
{
    QFETCH(QStringList, titles);
    QFETCH(uint, total);
    World w;
    QList<QVariantMap> found;
    for (const QString &title : titles)
        found.append({{"DisplayName", title}, {"Type", "music"}});
    w.service.answer({"SearchObjectsEx"}, QVariantList{propertyMaps(found), total});
    const auto rows = w.search();
    QCOMPARE(rows.outcome(), "value");
    QCOMPARE(firstColumn(rows.value()), titles.join(' '));
    const QVariantList asked = w.service.calls({"SearchObjectsEx"})[0].arguments();
    QCOMPARE(asked.mid(1, 2), (QVariantList{10U, 50U}));
    QCOMPARE(asked[3].toStringList(), w.worker().propertyFilter());
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(rows.value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
}

void tst_Search::saysWhyASearchFailed_data()
{
    columns<FakeReply>("answer");
    const QVariant maps = propertyMaps({{{"Type", "music"}}});
    row("refused", FakeReply::error("a.b", "Search operation failed: %1"));
    row("no total", FakeReply{{maps}});
    row("a total that is a text", FakeReply{{maps, "1"}});
}

void tst_Search::saysWhyASearchFailed()
{
    QFETCH(FakeReply, answer);
    World w;
    w.service.answer({"SearchObjectsEx"}, answer);
    const QString outcome = w.search().outcome();
    const QString start = "error internal: Failed to retrieve content: ";
    QVERIFY2(outcome.startsWith(start + answer.errorMessage), qPrintable(outcome));
    QCOMPARE(w.log.lines("ERROR"),
        QStringList{
            "ERROR CB_UPnP: Fetching search results failed; error: " + outcome.mid(start.size())});
}

QTEST_GUILESS_MAIN(tst_Search)
#include "tst_Search.moc"
