#include "PluginFixture.h"

#include <QTest>

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
    void findsWhatWasTyped();
    void saysWhyASearchFailed_data();
    void saysWhyASearchFailed();
};

void tst_SearchResults::writesTheCriteria_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("criteria");
    QTest::newRow("artist") << "artist"
                            << "abba"
                            << R"(Artist contains "abba")";
    QTest::newRow("album") << "album"
                           << "Gold"
                           << R"(Album contains "Gold")";
    QTest::newRow("title") << "title"
                           << "Waterloo"
                           << R"(DisplayName contains "Waterloo")";
    QTest::newRow("nothing") << "title"
                             << ""
                             << R"(DisplayName contains "")";
    QTest::newRow("a quote") << "title"
                             << R"(Say "Hi")"
                             << R"(DisplayName contains "Say \"Hi\"")";
    QTest::newRow("a backslash") << "title"
                                 << R"(back\slash)"
                                 << R"(DisplayName contains "back\\slash")";
    QTest::newRow("both") << "title"
                          << R"(\")"
                          << R"(DisplayName contains "\\\"")";
    QTest::newRow("a marker") << "artist"
                              << "%1 %2 %%"
                              << R"(Artist contains "%1 %2 %%")";
    QTest::newRow("criteria of its own") << "artist"
                                         << R"(" or Album contains ")"
                                         << R"(Artist contains "\" or Album contains \"")";
    QTest::newRow("other scripts") << "artist" << QString::fromUtf8("Björk & 東京 <$'>")
                                   << QString::fromUtf8(R"(Artist contains "Björk & 東京 <$'>")");
    QTest::newRow("a line end") << "artist"
                                << "a\nb"
                                << "Artist contains \"a\nb\"";
    for (const char *unknown : {"Artist", "genre", "titles", " title"})
        QTest::newRow(unknown) << unknown << "x"
                               << "";
}

void tst_SearchResults::writesTheCriteria()
{
    QFETCH(QString, search);
    QFETCH(QString, query);
    QFETCH(QString, criteria);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Artist", "Album", "DisplayName"});
    w.start();
    CMPath path = PluginFixture::path("/uuid:1");
    path.addParam("search", search).addParam("query", query);
    w.askRows(path.toEncoded().mid(5), 0, 49);
    w.settle();
    const auto calls = w.service.calls({"SearchObjectsEx"});
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].arguments()[0].toString(), criteria);
    QCOMPARE(w.log.lines("ERROR"),
        criteria.isEmpty() ? QStringList{"ERROR CB_UPnP: Invalid search type: " + search}
                           : QStringList());
}

void tst_SearchResults::searchesTheContainerInTheRangeAskedFor()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One", QStringList{"Artist"});
    const QString folder = w.service.tree.addContainer(server, "1", "Folder");
    w.start();
    w.askRows("/uuid:1/31?search=artist&query=x", 10, 59);
    w.settle();
    const FakeCall call = w.service.calls({"SearchObjectsEx"}).value(0);
    QCOMPARE(call.path(), folder);
    QCOMPARE(call.message.signature(), QString("suuass"));
    QCOMPARE(call.arguments().mid(1, 2), (QVariantList{10U, 50U}));
    QCOMPARE(call.arguments()[3].toStringList(), w.worker().propertyFilter());
    QCOMPARE(call.arguments()[4], QVariant(""));
}

void tst_SearchResults::givesTheRowsThatComeAndTheServersTotal_data()
{
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<uint>("total");
    QTest::addColumn<int>("rowsCount");
    QTest::newRow("some of more") << QStringList{"b", "a", "c"} << 812U << 812;
    QTest::newRow("none of some") << QStringList() << 5U << 5;
    QTest::newRow("a total of 0 beside rows") << QStringList{"a"} << 0U << 0;
    QTest::newRow("more than an int holds") << QStringList{"a"} << 4294967295U << -1;
}

void tst_SearchResults::givesTheRowsThatComeAndTheServersTotal()
{
    QFETCH(QStringList, titles);
    QFETCH(uint, total);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Artist"});
    w.start();
    QList<QVariantMap> found;
    for (const QString &title : titles)
        found.append({{"DisplayName", title}, {"Type", "music"}});
    w.service.answer({"SearchObjectsEx"}, QVariantList{propertyMaps(found), total});
    const auto rows = w.askRows("/uuid:1?search=artist&query=x", 0, 9);
    w.settle();
    QCOMPARE(rows.outcome(), QString("value"));
    QCOMPARE(firstColumn(rows.value()), titles.join(' '));
    QTEST(rows.value().rowsCount(), "rowsCount");
    QCOMPARE(rows.value().rowsVersion(), 0);
    QCOMPARE(w.openWork(), 0);
}

// As a device does it: set the text, go where the answer points.
void tst_SearchResults::findsWhatWasTyped()
{
    const QString title = QString::fromUtf8(R"(Say "Hello" & C:\temp, ?a=b#ä%20+1)");
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One", QStringList{"DisplayName"});
    w.service.tree.addTrack(server, "t", title);
    w.service.tree.addTrack(server, "u", "other");
    w.start();
    const auto text = w.askSet("/uuid:1?search=title", QVariantHash{{"string_", title.mid(4, 20)}});
    w.settle();
    const auto rows = w.askRows(text.value().toString().mid(5), 0, 9);
    w.settle();
    QCOMPARE(firstColumn(rows.value()), title);
    QCOMPARE(rows.value().rowsCount(), 1);
}

void tst_SearchResults::saysWhyASearchFailed_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<QString>("message");
    const QVariant maps = propertyMaps({{{"Type", "music"}}});
    QTest::newRow("refused") << QVariantList() << "Search operation failed: %1";
    QTest::newRow("no total") << QVariantList{maps} << "";
    QTest::newRow("a total that is a text") << QVariantList{maps, "1"} << "";
    QTest::newRow("no list") << QVariantList{"a", 1U} << "";
}

void tst_SearchResults::saysWhyASearchFailed()
{
    QFETCH(QVariantList, answer);
    QFETCH(QString, message);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One", QStringList{"Artist"});
    w.start();
    if (answer.isEmpty())
        w.service.fail({"SearchObjectsEx"}, message);
    else
        w.service.answer({"SearchObjectsEx"}, answer);
    const auto rows = w.askRows("/uuid:1?search=artist&query=x", 0, 9);
    w.settle();
    const QString start = "error internal: Failed to retrieve content: ";
    QVERIFY2(rows.outcome().startsWith(start + message), qPrintable(rows.outcome()));
    QCOMPARE(w.log.lines("ERROR"),
        QStringList{"ERROR CB_UPnP: Fetching search results failed; error: "
            + rows.outcome().mid(start.size())});
    QCOMPARE(w.openWork(), 0);
}

QTEST_GUILESS_MAIN(tst_SearchResults)
#include "tst_SearchResults.moc"
