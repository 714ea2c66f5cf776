#include "PluginFixture.h"

#include <QRegularExpression>
#include <QTest>

/// Which call goes out, or which answer comes at once, for which request.
class tst_Routing : public QObject
{
    Q_OBJECT

private slots:
    void rowsGoWhereTheirPathSays();
    void dataGoesWhereItsPathSays();
    void setDataGoesWhereItsPathSays();
    void offersTheContextMenuOfWhatCanBePlayed();
    void offersASearchWhereOneIsPossible();
    void saysWhyTheServiceRefused();
    void aRequestGoesWithItsWorker();
    void tracesWhatItEnters();
};

namespace {

/// A server "uuid:1" whose folder "/uuid:1/31" holds the track "/uuid:1/7430".
struct World : FolderFixture
{
    explicit World(const QVariant &caps = QStringList{"Artist", "DisplayName"})
        : FolderFixture(caps)
    {
        addTracks(1);
        start();
        service.forgetCalls();
        log.clear();
    }
    /// What was answered, asked of the service (with "S" for the server's path) and logged.
    template<typename Probe>
    QString seen(const Probe &probe, const QString &answer = QString())
    {
        settle();
        QStringList lines{probe.outcome() + answer};
        for (const FakeCall &call : service.calls())
            lines.append(call.text().replace(server, "S").remove("org.gnome.UPnP.Media"));
        for (const char *level : {"ERROR CB_UPnP: ", "WARN", "INFO"})
            lines.append(log.lines(level).replaceInStrings("ERROR CB_UPnP: ", ""));
        service.forgetCalls();
        log.clear();
        return lines.join('\n');
    }
    QString rows(const QString &path) { return seen(askRows(path, 0, 2)); }
    QString data(const QString &path, const QStringList &roles = {"title"})
    {
        const auto probe = settled(askData(path, roles));
        return seen(probe, ' ' + orkaToJson(probe.value()));
    }
    QString set(const QString &path, const QVariant &value)
    {
        const auto probe = settled(askSet(path, value));
        return seen(probe, ' ' + probe.value().toString());
    }
};

const QString notFound = "error error: Server not found";
const QString standard = "error error: Failed to retrieve content";
const QString contextOfTrack = "context?path=upnp%3A%2Fuuid%3A1%2F7430%3FitemType%3Dtrack";

QString noNode(const QString &path)
{
    return "\nNode at path 'upnp:" + path + "' does not exist";
}

} // namespace

void tst_Routing::rowsGoWhereTheirPathSays()
{
    World w;
    const QString list = "\nListChildren %1 (0, %2, [17])\nGet %1 (Object2, ChildCount)";
    QCOMPARE(w.rows(""), "value");
    QCOMPARE(w.rows("/uuid:1?itemType=server"), "value" + list.arg("S", "3"));
    QCOMPARE(w.rows("/uuid:1/31"), "value" + list.arg("S/31", "3"));
    for (const char *unknown : {"/uuid:2/31", "/uuid:1/31/32", "hello", "Context"})
        QCOMPARE(w.rows(unknown), notFound);

    const QString find = "value\nSearchObjectsEx %1 (%2, 0, %3, [17], )";
    QCOMPARE(w.rows("/uuid:1/31?search=menu"), "value");
    QCOMPARE(w.rows("/uuid:1/31?query=x&search=artist"),
        find.arg("S/31", R"(Artist contains "x")", "3"));
    QCOMPARE(w.rows("/uuid:1?search="), find.arg("S", "", "3") + "\nInvalid search type: ");

    const QString one = list.arg("S", "1");
    QCOMPARE(w.rows("/uuid:1?sample=a,b,c"), "value" + one + one + one);
    QCOMPARE(w.rows("/uuid:1?sample=0,9,3&search=title&query=0"),
        find.arg("S", R"(DisplayName contains "0")", "1"));
    const QString wrong = standard + "\nExpected 3 arguments for 'sample', got ";
    QCOMPARE(w.rows("/uuid:1?sample=1,2&search=menu"),
        wrong + "2" + noNode("/uuid:1?sample=1%2C2&search=menu"));
    QCOMPARE(
        w.rows("/uuid:1?sample=0,9,3,1"), wrong + "4" + noNode("/uuid:1?sample=0%2C9%2C3%2C1"));
    QCOMPARE(w.rows("/uuid:1?sample="), wrong + "1" + noNode("/uuid:1?sample="));
    QCOMPARE(w.rows("contextual/uuid:1"), "error error: Invalid context menu request");

    // One that was asked for data is known from then on, though nobody answers there.
    QCOMPARE(w.data("/uuid:3"), standard + " []" + noNode("/uuid:3"));
    QCOMPARE(w.rows("/uuid:3"), standard + noNode("/uuid:3"));
    QVERIFY(w.rows("/uuid:3/31").startsWith("error internal: Failed to retrieve content"));
}

void tst_Routing::dataGoesWhereItsPathSays()
{
    World w;
    const QString all = "value " + orkaToJson(QVariantList{OrkaPermission::Default_()});
    QCOMPARE(w.data("/a/b/c", {"permission"}), all);
    QCOMPARE(w.data("/a/b/c", {"permission", "title"}), standard + " []" + noNode("/a/b/c"));
    QCOMPARE(w.data("", {"type"}), "value [1]");
    QCOMPARE(w.data("/uuid:1/7430?itemType=track", {"type", "icon", "title", "no role", "path"}),
        R"(value [2,null,"0",null,"upnp:/uuid:1/7430?itemType=track"])"
        "\nGetAll S/7430 ()");
    QCOMPARE(w.data("/uuid:1?sample=1"), "value [\"root\"]\nGetAll S ()");
    QCOMPARE(w.data("/uuid:1/31?search=menu"), "value [\"Search menu\"]");
    QCOMPARE(w.data("?search=menu"), standard + " []" + noNode("?search=menu"));
    // Empty but present: offered to the nodes, and a search all the same.
    QCOMPARE(w.data("?search=", {"type"}), "value [1]");
    QCOMPARE(w.data("/uuid:1?search="), "value [\"Search results\"]");
}

void tst_Routing::setDataGoesWhereItsPathSays()
{
    World w;
    const QVariant text = QVariantHash{{"string_", "a \"b\" & c?"}};
    const QString query = "query=a%20%22b%22%20%26%20c%3F&search=";
    const QString refused = "error internal: Not implemented ";
    QCOMPARE(w.set("/uuid:1/31?search=title", text), "value upnp:/uuid:1/31?" + query + "title");
    QCOMPARE(w.set("/uuid:7?query=old&search=mood&itemType=server", text),
        "value upnp:/uuid:7?itemType=server&" + query + "mood");
    QCOMPARE(w.set("/uuid:1?search=title", QVariantHash{{"string_", ""}}),
        "value upnp:/uuid:1?query=&search=title");
    QCOMPARE(w.set("/uuid:1?search=title", QVariantHash()), refused);
    QCOMPARE(w.set("/uuid:1?search=title", "abba"), refused);
    QCOMPARE(w.set("/uuid:1?search=", text), refused);
    QCOMPARE(w.set("playlist/prepareItem", QVariantList()), refused);
}

void tst_Routing::offersTheContextMenuOfWhatCanBePlayed()
{
    World w;
    for (const QString type : {"track", "container", "server"}) {
        const QString node = QString(contextOfTrack).replace("track", type);
        const auto rows = w.settled(w.askRows(node, 0, 0, {"path", "icon", "title"}));
        const OrkaRowsRoles menu = rows.value();
        const QString path = QString(node).remove("context");
        QCOMPARE(rowsText(menu),
            QString(R"([["upnp:playlist/playNow%1",null,"Play now"],)"
                    R"(["upnp:playlist/playNext%1",null,"Play next"],)"
                    R"(["upnp:playlist/addToQueue%1",null,"Add to queue"]])")
                .replace("%1", path));
        QCOMPARE(menu.rowsCount(), 3);
        QCOMPARE(menu.roles().toJsonString(), R"({"title":"UPnP Context Menu"})");
        QCOMPARE(menu.roles().title().context(), "CMUPnPWorker");
    }
    QCOMPARE(
        w.rows("context?path=upnp%3A%2Fuuid%3A1"), "error error: Invalid context menu request");
}

void tst_Routing::offersASearchWhereOneIsPossible()
{
    const QString menu = R"(value [{"path":"upnp:%1?search=menu","type":1,"containerType":101}])";
    const auto search = [](const QString &path, const QStringList &caps = {"Artist"}) {
        return World(caps).data(path, {"search"}).section('\n', 0, 0);
    };
    QCOMPARE(search("/uuid:1?itemType=server"), menu.arg("/uuid:1"));
    QCOMPARE(search("/uuid:1/31?itemType=container&x=y"), menu.arg("/uuid:1/31"));
    QCOMPARE(search("/uuid:1/7430"), "value [null]");
    QCOMPARE(search("/uuid:1", {}), "value [null]");
}

void tst_Routing::saysWhyTheServiceRefused()
{
    World w;
    const auto refused = [&w](const QString &path) {
        return w.data(path).section('\n', 0, 0).remove("error internal: Failed to retrieve ");
    };
    QCOMPARE(refused("/uuid:1/77"), "content: Browse operation failed: No such object []");
    QVERIFY(refused("/uuid:2/31").startsWith("content: "));
    w.service.answer({"GetAll"}, FakeReply::error("a.b", "%1 %2"));
    QCOMPARE(refused("/uuid:1/31"), "content: %1 %2 []");
    w.service.answer({"GetAll"}, QVariantList{QStringList{"a"}});
    const QString outcome = w.settled(w.askData("/uuid:1")).outcome();
    QCOMPARE(
        w.log.lines("ERROR").join(' ').section("failed: ", 1), outcome.section("content: ", 1));
}

// Held by the service, or on its way to the worker.
void tst_Routing::aRequestGoesWithItsWorker()
{
    World w;
    w.service.hold({});
    w.service.fail({"SearchObjectsEx", w.folder});
    const auto rows = w.askRows("/uuid:1/31", 0, 9), found = w.askRows("/uuid:1?search=x", 0, 9),
               sample = w.askRows("/uuid:1?sample=0,9,1", 0, 9);
    const auto data = w.askData("/uuid:1");
    const auto prepared = w.askPrepare({"/uuid:1/7430?itemType=track"}),
               walked = w.settled(w.askPrepare({"/uuid:1/31?itemType=container"}));
    w.stop();
    w.release();
    for (const auto &probe : {rows, found, sample})
        QCOMPARE(probe.outcome(), "dropped");
    QCOMPARE(data.outcome() + prepared.outcome() + walked.outcome(), "droppeddroppeddropped");
}

void tst_Routing::tracesWhatItEnters()
{
    World w;
    w.service.fail({"SearchObjectsEx"});
    w.settled(w.askRows("/uuid:1/31", 0, 0));
    w.askRows("/uuid:1?search=menu", 0, 0);
    w.settled(w.askData("/uuid:1/31"));
    w.settled(w.askPrepare({"/uuid:1/31?itemType=container"}));
    QStringList lines = w.log.lines("TRACE CB_UPnP: ");
    lines.replaceInStrings("TRACE CB_UPnP: ", "").replaceInStrings("Enter CMUPnPWorker::", "> ");
    lines = lines.filter(QRegularExpression("^(?!> fillin_roles|> checkSearchCap|ret=)"));
    QCOMPARE(lines.join('\n'),
        "> getRowsRequest: \n> handleListRowsRequest: \n> on_handleListRows_finished: \n"
        "> getRowsRequest: \n> handleSearchMenuRowsRequest: search: menu query: \n"
        "> getDataRequest: \n> handleListDataRequest: \n> on_handleListData_finished: \n"
        "> setDataRequest: (upnp:/uuid:1/31?itemType=container), path: upnp:playlist/prepareItems\n"
        "> preparePlaylistItems: (upnp:/uuid:1/31?itemType=container)\n"
        "Preparing search item: upnp:/uuid:1/31?itemType=container\n"
        "> on_preparePlaylistItems_finished: \n"
        "> browsePlaylistItems: \n> on_browsePlaylistItems_finished: ");
}

QTEST_GUILESS_MAIN(tst_Routing)
#include "tst_Routing.moc"
