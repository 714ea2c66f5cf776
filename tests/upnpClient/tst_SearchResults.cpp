#include "PluginFixture.h"
#include "Table.h"

/// Searches by artist, album and title.
class tst_SearchResults : public QObject
{
    Q_OBJECT

private slots:
    void writesTheCriteria_data();
    void writesTheCriteria();
    void searchesTheContainerInTheRangeAskedFor();
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

void tst_SearchResults::writesTheCriteria_data()
{
    columns<QString, QString, QString>("search", "query", "criteria");
    row("artist", "artist", "abba", R"(Artist contains "abba")");
    row("album", "album", "Gold", R"(Album contains "Gold")");
    row("nothing", "title", "", R"(DisplayName contains "")");
    row("a quote", "title", R"(Say "Hi")", R"(DisplayName contains "Say \"Hi\"")");
    row("a backslash", "title", R"(back\slash)", R"(DisplayName contains "back\\slash")");
    row("both", "title", R"(\")", R"(DisplayName contains "\\\"")");
    row("a marker", "artist", "%1 %2 %%", R"(Artist contains "%1 %2 %%")");
    row("criteria of its own", "artist", R"(" or Album contains ")",
        R"(Artist contains "\" or Album contains \"")");
    row("other scripts", "artist", QString::fromUtf8("Björk & 東京 <$'>"),
        QString::fromUtf8(R"(Artist contains "Björk & 東京 <$'>")"));
    row("a line end", "artist", "a\nb", "Artist contains \"a\nb\"");
    for (const char *unknown : {"Artist", "genre", "titles", " title"})
        row(unknown, unknown, "x", "");
}

void tst_SearchResults::writesTheCriteria()
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

void tst_SearchResults::searchesTheContainerInTheRangeAskedFor()
{
    World w;
    w.search();
    const FakeCall call = w.service.calls({"SearchObjectsEx"}).value(0);
    QCOMPARE(call.path(), w.folder);
    QCOMPARE(call.message.signature(), "suuass");
    QCOMPARE(call.arguments().mid(1, 2), (QVariantList{10U, 50U}));
    QCOMPARE(call.arguments()[3].toStringList(), w.worker().propertyFilter());
    QCOMPARE(call.arguments()[4], QVariant(""));
}

void tst_SearchResults::givesTheRowsThatComeAndTheServersTotal_data()
{
    columns<QStringList, uint, int>("titles", "total", "rowsCount");
    row("some of more", QStringList{"b", "a", "c"}, 812U, 812);
    row("none of some", QStringList(), 5U, 5);
    row("a total of 0 beside rows", QStringList{"a"}, 0U, 0);
    row("more than an int holds", QStringList{"a"}, 4294967295U, -1);
}

void tst_SearchResults::givesTheRowsThatComeAndTheServersTotal()
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
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(rows.value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
}

void tst_SearchResults::saysWhyASearchFailed_data()
{
    columns<FakeReply>("answer");
    const QVariant maps = propertyMaps({{{"Type", "music"}}});
    row("refused", FakeReply::error("a.b", "Search operation failed: %1"));
    row("no total", FakeReply{{maps}});
    row("a total that is a text", FakeReply{{maps, "1"}});
    row("no list", FakeReply{{"a", 1U}});
}

void tst_SearchResults::saysWhyASearchFailed()
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

QTEST_GUILESS_MAIN(tst_SearchResults)
#include "tst_SearchResults.moc"
