#include "PluginFixture.h"

#include <QTest>

/// What a server can search for, the menu that offers it, and what is found.
class tst_Search : public QObject
{
    Q_OBJECT

private slots:
    void offersWhatTheServerCanDo();
    void describesItsNodes();
    void writesTheCriteria();
    void givesTheRowsThatComeAndTheServersTotal();
    void saysWhyASearchFailed();
};

namespace {

struct World : FolderFixture
{
    explicit World(const QStringList &caps = {"Artist", "Album", "DisplayName"})
        : FolderFixture(caps)
    {
        start();
        service.forgetCalls();
    }
    ReplyProbe<OrkaRowsRoles> search()
    {
        return settled(askRows("/uuid:1/31?search=artist&query=x", 10, 59));
    }
    QString answer(const FakeReply &reply)
    {
        service.answer({"SearchObjectsEx"}, reply);
        const auto rows = search();
        return rows.outcome() == "value"
            ? QString("%1 of %2").arg(firstColumn(rows.value())).arg(rows.value().rowsCount())
            : rows.outcome();
    }
};

} // namespace

void tst_Search::offersWhatTheServerCanDo()
{
    const auto menu = [](const QStringList &caps, int first, int last) {
        World w(caps);
        const auto rows =
            w.settled(w.askRows("/uuid:1/31?search=menu&itemType=container", first, last));
        return QString("%1 of %2").arg(firstColumn(rows.value())).arg(rows.value().rowsCount())
            + w.service.callsText();
    };
    const QStringList all{"DisplayName", "Album", "Artist"};
    QCOMPARE(menu({}, 0, 9), " of 0");
    QCOMPARE(menu(all, -1, 2147483647), "Artist Album Title of 3"); // in the menu's order
    QCOMPARE(menu(all, 1, 1), "Album of 3");
    QCOMPARE(menu({"DisplayName", "Title", "*"}, 0, 9), "Title of 1");
    QCOMPARE(menu({"artist", "Title", "Genre"}, 0, 9), " of 0");
}

void tst_Search::describesItsNodes()
{
    World w({"Album"});
    const auto data = [&w](const QString &path) {
        return w.settled(w.askData(path, {"title", "type", "containerType", "path"})).value();
    };
    const QVariantList menuData = data("/uuid:1/31?search=menu&x=y");
    QCOMPARE(orkaToJson(menuData), R"(["Search menu",1,101,"upnp:/uuid:1/31?search=menu"])");
    QCOMPARE(orkaToJson(data("/uuid:1?itemType=server&query=x%20y&search=Menu")),
        R"(["Search results",1,null,"upnp:/uuid:1?itemType=server&query=x%20y&search=Menu"])");
    const OrkaRowsRoles menu =
        w.settled(w.askRows("/uuid:1/31?search=menu", 0, 9, {"title", "type", "path"})).value();
    QCOMPARE(rowsText(menu), R"([["Album",100,"upnp:/uuid:1/31?search=album"]])");
    QCOMPARE(menu.value(OrkaRowsRoles::RowsVersion()), QVariant(0));
    QCOMPARE(menu.roles().path().toEncoded(), "upnp:/uuid:1/31?search=menu");
    for (const QVariant &title : {menu.rows()[0].toList()[0], menuData[0]})
        QCOMPARE(title.value<TrString>().context(), "CMUPnPWorker");
}

void tst_Search::writesTheCriteria()
{
    World w;
    const auto criteria = [&w](const QString &search, const QString &query) {
        w.service.forgetCalls();
        CMPath path("upnp", "/uuid:1");
        path.addParam("search", search).addParam("query", query);
        w.settled(w.askRows(path.toEncoded().mid(5), 0, 49));
        return w.service.calls({"SearchObjectsEx"})[0].arguments()[0].toString();
    };
    const QString odd = QString::fromUtf8("%1 %2 <$'> 東京 \n");
    QCOMPARE(criteria("artist", odd), "Artist contains \"" + odd + '"');
    QCOMPARE(criteria("album", ""), R"(Album contains "")");
    QCOMPARE(criteria("title", R"(Say "Hi" \")"), R"(DisplayName contains "Say \"Hi\" \\\"")");
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    QCOMPARE(criteria("Artist", "x"), "");
    QCOMPARE(w.log.lines("ERROR"), QStringList{"ERROR CB_UPnP: Invalid search type: Artist"});
}

void tst_Search::givesTheRowsThatComeAndTheServersTotal()
{
    World w;
    const QVariant found = propertyMaps({{{"DisplayName", "b"}}, {{"DisplayName", "a"}}});
    QCOMPARE(w.answer(FakeReply{{found, 812U}}), "b a of 812");
    QCOMPARE(w.answer(FakeReply{{propertyMaps({}), 5U}}), " of 5");
    QCOMPARE(w.answer(FakeReply{{found, 4294967295U}}), "b a of -1");
    const QVariantList asked = w.service.calls({"SearchObjectsEx"})[0].arguments();
    QCOMPARE(asked.mid(1, 2), (QVariantList{10U, 50U}));
    QCOMPARE(asked[3].toStringList(), w.worker().propertyFilter());
    QCOMPARE(w.search().value().value(OrkaRowsRoles::RowsVersion()), QVariant(0));
}

void tst_Search::saysWhyASearchFailed()
{
    World w;
    const QString start = "error internal: Failed to retrieve content: ";
    QCOMPARE(w.answer(FakeReply::error("a.b", "can't %1")), start + "can't %1");
    QCOMPARE(w.log.lines("ERROR"),
        QStringList{"ERROR CB_UPnP: Fetching search results failed; error: can't %1"});
    QVERIFY(w.answer(FakeReply{{propertyMaps({})}}).startsWith(start)); // no total
}

QTEST_GUILESS_MAIN(tst_Search)
#include "tst_Search.moc"
