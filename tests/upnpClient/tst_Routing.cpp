#include "PluginFixture.h"
#include "Table.h"

#include <QRegularExpression>

/// Which call goes out, or which answer comes at once, for which request. Every case has a worker
/// of its own, since a data request for an unknown server leaves a record of it behind.
class tst_Routing : public QObject
{
    Q_OBJECT

private slots:
    void rowsGoWhereTheirPathSays_data();
    void rowsGoWhereTheirPathSays();
    void dataGoesWhereItsPathSays_data();
    void dataGoesWhereItsPathSays();
    void setDataGoesWhereItsPathSays_data();
    void setDataGoesWhereItsPathSays();
    void offersTheContextMenuOfWhatCanBePlayed();
    void anUnknownServerStaysKnownToDataRequests();
    void tracesWhatItEnters();
};

namespace {

/// A searching server "uuid:1" whose folder "/uuid:1/31" holds the track "/uuid:1/7430".
struct World : FolderFixture
{
    World()
        : FolderFixture(QStringList{"Artist", "DisplayName"})
    {
        addTracks(1);
        start();
        service.forgetCalls();
        log.clear();
    }
    /// The calls, object paths without the server's.
    QString calls() const
    {
        return service.callsText().replace(server, "S").remove("org.gnome.UPnP.Media");
    }
    QString logged() const
    {
        return (log.lines("ERROR") + log.lines("WARN") + log.lines("INFO")).join('\n');
    }
};

const QString notFound = "error error: Server not found";
const QString standard = "error error: Failed to retrieve content";
const QString noNode = "ERROR CB_UPnP: Node at path 'upnp:%1' does not exist";
const QString contextOfTrack = "context?path=upnp%3A%2Fuuid%3A1%2F7430%3FitemType%3Dtrack";

} // namespace

void tst_Routing::rowsGoWhereTheirPathSays_data()
{
    columns<QString, QString, QString, QString>("path", "outcome", "calls", "logged");
    const QString list = "ListChildren %1 (0, %2, [17])\nGet %1 (Object2, ChildCount)";
    row("root", "", "value", "", "");
    row("server", "/uuid:1?itemType=server", "value", list.arg("S", "3"), "");
    row("folder", "/uuid:1/31", "value", list.arg("S/31", "3"), "");
    row("unknown server", "/uuid:2/31", notFound, "", "");
    row("no node path at all", "/uuid:1/31/32", notFound, "", "");
    row("text", "hello", notFound, "", "");

    const QString find = "SearchObjectsEx %1 (%2, 0, 3, [17], )";
    const QString invalid = "ERROR CB_UPnP: Invalid search type: ";
    row("search menu", "/uuid:1/31?search=menu", "value", "", "");
    row("search menu, capitalised", "/uuid:1/31?search=Menu&query=x", "value", find.arg("S/31", ""),
        invalid + "Menu");
    row("search results", "/uuid:1/31?query=x&search=artist", "value",
        find.arg("S/31", R"(Artist contains "x")"), "");
    row("an empty search is a search", "/uuid:1?search=", "value", find.arg("S", ""), invalid);

    const QString wrong = "ERROR CB_UPnP: Expected 3 arguments for 'sample', got ";
    const QString one = list.arg("S", "1");
    row("sample", "/uuid:1?sample=0,9,3", "value", one, "");
    row("a sample of words takes the first child again and again", "/uuid:1?sample=a,b,c", "value",
        QStringList{one, one, one}.join('\n'), "");
    row("sample of search results", "/uuid:1?sample=0,9,3&search=title&query=0", "value",
        "SearchObjectsEx S (DisplayName contains \"0\", 0, 1, [17], )", "");
    row("sample before search", "/uuid:1?sample=1,2&search=menu", standard, "",
        wrong + "2\n" + noNode.arg("/uuid:1?sample=1%2C2&search=menu"));
    row("sample of four numbers", "/uuid:1?sample=0,9,3,1", standard, "",
        wrong + "4\n" + noNode.arg("/uuid:1?sample=0%2C9%2C3%2C1"));
    row("an empty sample is a sample", "/uuid:1?sample=", standard, "",
        wrong + "1\n" + noNode.arg("/uuid:1?sample="));

    const QString noContext = "error error: Invalid context menu request";
    row("context of nothing", "context", noContext, "", "");
    row("anything that starts with context", "contextual/uuid:1", noContext, "", "");
    row("Context, capitalised", "Context", notFound, "", "");
}

void tst_Routing::rowsGoWhereTheirPathSays()
{
    QFETCH(QString, path);
    World w;
    const auto rows = w.settled(w.askRows(path, 0, 2));
    QTEST(rows.outcome(), "outcome");
    QTEST(w.calls(), "calls");
    QTEST(w.logged(), "logged");
}

void tst_Routing::dataGoesWhereItsPathSays_data()
{
    columns<QString, QStringList, QString, QString, QString>(
        "path", "roles", "outcome", "value", "calls");
    const QStringList title{"title"}, type{"type"}, permission{"permission"};
    const QString all = orkaToJson(QVariantList{OrkaPermission::Default_()});
    const QString menu = R"(["Search menu"])", results = R"(["Search results"])";
    row("permission of a server", "/uuid:1", permission, "value", all, "");
    row("permission of nothing", "/a/b/c", permission, "value", all, "");
    row("permission and more of nothing", "/a/b/c", permission + title, standard, "[]", "");
    row("root", "", type, "value", "[1]", "");
    row("track", "/uuid:1/7430", title, "value", R"(["0"])", "GetAll S/7430 ()");
    row("server", "/uuid:1", title, "value", R"(["root"])", "GetAll S ()");
    row("unknown server", "/uuid:2", title, standard, "[]", "");
    row("search menu", "/uuid:1/31?search=menu", title, "value", menu, "");
    row("search results", "/uuid:1/31?search=whatever", title, "value", results, "");
    row("a root with search is no root", "?search=menu", title, standard, "[]", "");
    // Empty but present: offered to the nodes, and a search all the same.
    row("empty search of the root", "?search=", type, "value", "[1]", "");
    row("empty search", "/uuid:1?search=", title, "value", results, "");
    row("sample", "/uuid:1?sample=1", title, "value", R"(["root"])", "GetAll S ()");
}

void tst_Routing::dataGoesWhereItsPathSays()
{
    QFETCH(QString, path);
    QFETCH(QStringList, roles);
    World w;
    const auto data = w.settled(w.askData(path, roles));
    QTEST(data.outcome(), "outcome");
    QTEST(orkaToJson(data.value()), "value");
    QTEST(w.calls(), "calls");
}

void tst_Routing::setDataGoesWhereItsPathSays_data()
{
    columns<QString, QVariant, QString, QString>("path", "value", "outcome", "answer");
    const QVariant text = QVariantHash{{"string_", "a \"b\" & c?"}};
    const QVariant noText = QVariantHash{{"string_", ""}};
    const QVariant nothing = QVariantList();
    const QString refused = "error internal: Not implemented";
    const QString query = "query=a%20%22b%22%20%26%20c%3F&search=";
    row("search text", "/uuid:1/31?search=title", text, "value",
        "upnp:/uuid:1/31?" + query + "title");
    row("search text replaces the one before", "/uuid:1?query=old&search=artist&itemType=server",
        text, "value", "upnp:/uuid:1?itemType=server&" + query + "artist");
    row("search text for an unknown key on an unknown server", "/uuid:7?search=mood", text, "value",
        "upnp:/uuid:7?" + query + "mood");
    row("empty search text", "/uuid:1?search=title", noText, "value",
        "upnp:/uuid:1?query=&search=title");
    row("search without a text", "/uuid:1?search=title", QVariant(QVariantHash()), refused, "");
    row("a text that is no record", "/uuid:1?search=title", QVariant("abba"), refused, "");
    row("text without search", "/uuid:1?search=", text, refused, "");
    row("root", "", text, refused, "");
    row("nearly prepare items", "playlist/prepareItem", nothing, refused, "");
    row("prepare items of nothing", "playlist/prepareItems", nothing, "pending", "");
}

void tst_Routing::setDataGoesWhereItsPathSays()
{
    QFETCH(QString, path);
    QFETCH(QVariant, value);
    World w;
    const auto set = w.settled(w.askSet(path, value));
    QTEST(set.outcome(), "outcome");
    QTEST(set.value().toString(), "answer");
    QCOMPARE(w.calls() + w.logged(), "");
}

void tst_Routing::offersTheContextMenuOfWhatCanBePlayed()
{
    World w;
    const auto rows = w.settled(w.askRows(contextOfTrack, 0, 0));
    QCOMPARE(rows.outcome(), "value");
    const OrkaRowsRoles menu = rows.value();
    QCOMPARE(menu.rowsCount(), 3);
    QCOMPARE(menu.rows().size(), 3);
    QVERIFY(!menu.contains(OrkaRowsRoles::RowsVersion()));
    QCOMPARE(menu.roles().toJsonString(), R"({"title":"UPnP Context Menu"})");
    QCOMPARE(menu.roles().title().context(), "CMUPnPWorker");
    QCOMPARE(w.calls(), "");
}

void tst_Routing::anUnknownServerStaysKnownToDataRequests()
{
    World w;
    w.settled(w.askData("/uuid:2"));
    const auto rows = w.askRows("/uuid:2", 0, 9);
    const auto object = w.settled(w.askRows("/uuid:2/31", 0, 9));
    QCOMPARE(rows.outcome(), standard);
    QCOMPARE(w.log.count(noNode.arg("/uuid:2")), 2);
    // Its objects have a path on the bus, though nobody answers there.
    QCOMPARE(object.outcome(), "error internal: Failed to retrieve content");
}

void tst_Routing::tracesWhatItEnters()
{
    World w;
    w.service.fail({"SearchObjectsEx"});
    w.settled(w.askRows("/uuid:1/31", 0, 0));
    w.settled(w.askData("/uuid:1/31"));
    w.askRows("/uuid:1?search=menu", 0, 0);
    w.settled(w.askRows("/uuid:1?search=artist&query=x", 0, 0));
    w.askRows(contextOfTrack, 0, 0);
    w.askData("/uuid:1?search=x");
    w.settled(w.askPrepare({"/uuid:1/31?itemType=container"}));
    QStringList lines = w.log.lines("TRACE CB_UPnP: ");
    lines.replaceInStrings("TRACE CB_UPnP: ", "").replaceInStrings("Enter CMUPnPWorker::", "> ");
    lines = lines.filter(QRegularExpression("^(?!> fillin_roles|> checkSearchCap|ret=)"));
    QCOMPARE(lines.join('\n'),
        "> getRowsRequest: \n> handleListRowsRequest: \n> on_handleListRows_finished: \n"
        "> getDataRequest: \n> handleListDataRequest: \n> on_handleListData_finished: \n"
        "> getRowsRequest: \n> handleSearchMenuRowsRequest: search: menu query: \n"
        "> getRowsRequest: \n> handleSearchRowsRequest: search : artist query x\n"
        "> on_handleSearchRows_finished: \n> getRowsRequest: \nContext request path: upnp:"
            + contextOfTrack
            + "\nsent reply with 3 lines\n"
              "> getDataRequest: \n> handleSearchDataRequest: \n"
              "> setDataRequest: (upnp:/uuid:1/31?itemType=container), path: "
              "upnp:playlist/prepareItems\n"
              "> preparePlaylistItems: (upnp:/uuid:1/31?itemType=container)\n"
              "Preparing search item: upnp:/uuid:1/31?itemType=container\n"
              "> on_preparePlaylistItems_finished: \n"
              "> browsePlaylistItems: \n> on_browsePlaylistItems_finished: ");
}

QTEST_GUILESS_MAIN(tst_Routing)
#include "tst_Routing.moc"
