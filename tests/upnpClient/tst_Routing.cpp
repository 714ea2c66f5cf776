#include "PluginFixture.h"

#include <QRegularExpression>
#include <QTest>

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

/// A searching server "uuid:1" whose folder "/uuid:1/31" holds the track "/uuid:1/32".
struct World : PluginFixture
{
    World()
    {
        const QString server =
            service.tree.addServer("uuid:1", "One", QStringList{"Artist", "DisplayName"});
        const QString folder = service.tree.addContainer(server, "1", "Folder");
        service.tree.addTrack(folder, "2", "Track");
        start();
        service.forgetCalls();
        log.clear();
    }
    /// The calls, object paths without the server's.
    QString calls() const
    {
        return service.callsText()
            .replace(FakeTree::serverPath("uuid:1"), "S")
            .replace("org.gnome.UPnP.Media", "");
    }
    QString logged() const
    {
        return (log.lines("ERROR") + log.lines("WARN") + log.lines("INFO")).join('\n');
    }
};

const QString notFound = "error default: Server not found";
const QString standard = "error default: Failed to retrieve content";
const QString noNode = "ERROR CB_UPnP: Node at path '%1' does not exist";

} // namespace

void tst_Routing::rowsGoWhereTheirPathSays_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("calls");
    QTest::addColumn<QString>("logged");
    const QString list = "ListChildren %1 (0, 3, [17])\nGet %1 (Object2, ChildCount)";
    QTest::newRow("root") << ""
                          << "value"
                          << ""
                          << "";
    QTest::newRow("server") << "/uuid:1?itemType=server"
                            << "value" << list.arg("S") << "";
    QTest::newRow("folder") << "/uuid:1/31"
                            << "value" << list.arg("S/31") << "";
    QTest::newRow("unknown server") << "/uuid:2/31" << notFound << ""
                                    << "";
    QTest::newRow("no node path at all") << "/uuid:1/31/32" << notFound << ""
                                         << "";
    QTest::newRow("text") << "hello" << notFound << ""
                          << "";
    QTest::newRow("search menu") << "/uuid:1/31?search=menu"
                                 << "value"
                                 << ""
                                 << "";
    QTest::newRow("search menu, capitalised") << "/uuid:1/31?search=Menu&query=x"
                                              << "value"
                                              << "SearchObjectsEx S/31 (, 0, 3, [17], )"
                                              << "ERROR CB_UPnP: Invalid search type: Menu";
    QTest::newRow("search results") << "/uuid:1/31?query=x&search=artist"
                                    << "value"
                                    << "SearchObjectsEx S/31 (Artist contains \"x\", 0, 3, [17], )"
                                    << "";
    QTest::newRow("an empty search is a search") << "/uuid:1?search="
                                                 << "value"
                                                 << "SearchObjectsEx S (, 0, 3, [17], )"
                                                 << "ERROR CB_UPnP: Invalid search type: ";
    QTest::newRow("sample") << "/uuid:1?sample=0,9,3"
                            << "value"
                            << QString("ListChildren S (0, 1, [17])\nGet S (Object2, ChildCount)")
                            << "";
    QTest::newRow("a sample of words takes the first child again and again")
        << "/uuid:1?sample=a,b,c"
        << "value"
        << QVector<QString>(3, "ListChildren S (0, 1, [17])\nGet S (Object2, ChildCount)")
               .toList()
               .join('\n')
        << "";
    QTest::newRow("sample before search")
        << "/uuid:1?sample=1,2&search=menu" << standard << ""
        << "ERROR CB_UPnP: Expected 3 arguments for 'sample', got 2\n"
            + noNode.arg("upnp:/uuid:1?sample=1%2C2&search=menu");
    QTest::newRow("sample of four numbers")
        << "/uuid:1?sample=0,9,3,1" << standard << ""
        << "ERROR CB_UPnP: Expected 3 arguments for 'sample', got 4\n"
            + noNode.arg("upnp:/uuid:1?sample=0%2C9%2C3%2C1");
    QTest::newRow("an empty sample is a sample")
        << "/uuid:1?sample=" << standard << ""
        << "ERROR CB_UPnP: Expected 3 arguments for 'sample', got 1\n"
            + noNode.arg("upnp:/uuid:1?sample=");
    QTest::newRow("context of nothing") << "context"
                                        << "error default: Invalid context menu request"
                                        << ""
                                        << "";
    QTest::newRow("anything that starts with context")
        << "contextual/uuid:1"
        << "error default: Invalid context menu request"
        << ""
        << "";
    QTest::newRow("Context, capitalised") << "Context" << notFound << ""
                                          << "";
}

void tst_Routing::rowsGoWhereTheirPathSays()
{
    QFETCH(QString, path);
    World w;
    const auto rows = w.askRows(path, 0, 2);
    w.settle();
    const QString outcome = rows.outcome().replace(CMError::DefaultName() + ":", "default:");
    QTEST(outcome, "outcome");
    QTEST(w.calls(), "calls");
    QTEST(w.logged(), "logged");
    QCOMPARE(w.openWork(), 0);
}

void tst_Routing::dataGoesWhereItsPathSays_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("roles");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("calls");
    const QStringList title{"title"};
    const QStringList permission{"permission"};
    const QString all = orkaToJson(QVariantList{OrkaPermission::Default_()});
    QTest::newRow("permission of a server") << "/uuid:1" << permission << "value" << all << "";
    QTest::newRow("permission of nothing") << "/a/b/c" << permission << "value" << all << "";
    QTest::newRow("permission and more of nothing")
        << "/a/b/c" << (permission + title) << standard << "[]"
        << "";
    QTest::newRow("root") << "" << QStringList{"type"} << "value"
                          << "[1]"
                          << "";
    QTest::newRow("track") << "/uuid:1/32" << title << "value"
                           << "[\"Track\"]"
                           << "GetAll S/32 ()";
    QTest::newRow("server") << "/uuid:1" << title << "value"
                            << "[\"root\"]"
                            << "GetAll S ()";
    QTest::newRow("unknown server") << "/uuid:2" << title << standard << "[]"
                                    << "";
    QTest::newRow("search menu") << "/uuid:1/31?search=menu" << title << "value"
                                 << "[\"Search menu\"]"
                                 << "";
    QTest::newRow("search results") << "/uuid:1/31?search=whatever" << title << "value"
                                    << "[\"Search results\"]"
                                    << "";
    QTest::newRow("a root with search is no root") << "?search=menu" << title << standard << "[]"
                                                   << "";
    // Empty but present: offered to the nodes, and a search all the same.
    QTest::newRow("empty search of the root") << "?search=" << QStringList{"type"} << "value"
                                              << "[1]"
                                              << "";
    QTest::newRow("empty search") << "/uuid:1?search=" << title << "value"
                                  << "[\"Search results\"]"
                                  << "";
    QTest::newRow("sample") << "/uuid:1?sample=1" << title << "value"
                            << "[\"root\"]"
                            << "GetAll S ()";
}

void tst_Routing::dataGoesWhereItsPathSays()
{
    QFETCH(QString, path);
    QFETCH(QStringList, roles);
    World w;
    const auto data = w.askData(path, roles);
    w.settle();
    const QString outcome = data.outcome().replace(CMError::DefaultName() + ":", "default:");
    QTEST(outcome, "outcome");
    QTEST(orkaToJson(data.value()), "value");
    QTEST(w.calls(), "calls");
    QCOMPARE(w.openWork(), 0);
}

void tst_Routing::setDataGoesWhereItsPathSays_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("answer");
    const QVariant text = QVariantHash{{"string_", "a \"b\" & c?"}};
    const QString notImplemented = "error internal: Not implemented";
    QTest::newRow("search text") << "/uuid:1/31?search=title" << text << "value"
                                 << "upnp:/uuid:1/31?query=a%20%22b%22%20%26%20c%3F&search=title";
    QTest::newRow("search text replaces the one before")
        << "/uuid:1?query=old&search=artist&itemType=server" << text << "value"
        << "upnp:/uuid:1?itemType=server&query=a%20%22b%22%20%26%20c%3F&search=artist";
    QTest::newRow("search text for an unknown key on an unknown server")
        << "/uuid:7?search=mood" << text << "value"
        << "upnp:/uuid:7?query=a%20%22b%22%20%26%20c%3F&search=mood";
    QTest::newRow("empty search text")
        << "/uuid:1?search=title" << QVariant(QVariantHash{{"string_", ""}}) << "value"
        << "upnp:/uuid:1?query=&search=title";
    QTest::newRow("search without a text")
        << "/uuid:1?search=title" << QVariant(QVariantHash()) << notImplemented << "";
    QTest::newRow("a text that is no record")
        << "/uuid:1?search=title" << QVariant("abba") << notImplemented << "";
    QTest::newRow("text without search") << "/uuid:1?search=" << text << notImplemented << "";
    QTest::newRow("root") << "" << text << notImplemented << "";
    QTest::newRow("nearly prepare items")
        << "playlist/prepareItem" << QVariant(QVariantList()) << notImplemented << "";
    QTest::newRow("prepare items of nothing")
        << "playlist/prepareItems" << QVariant(QVariantList()) << "nothing"
        << "";
}

void tst_Routing::setDataGoesWhereItsPathSays()
{
    QFETCH(QString, path);
    QFETCH(QVariant, value);
    World w;
    const auto set = w.askSet(path, value);
    w.settle();
    QTEST(set.outcome(), "outcome");
    QTEST(set.value().toString(), "answer");
    QCOMPARE(w.calls(), QString());
    QCOMPARE(w.logged(), QString());
}

void tst_Routing::offersTheContextMenuOfWhatCanBePlayed()
{
    World w;
    const auto menu = w.askRows("context?path=upnp%3A%2Fuuid%3A1%2F32%3FitemType%3Dtrack", 0, 0);
    const auto none = w.askRows("context?path=upnp%3A%2Fuuid%3A1%2F32", 0, 9);
    w.settle();
    QCOMPARE(menu.outcome(), QString("value"));
    QCOMPARE(menu.value().rowsCount(), 3);
    QCOMPARE(menu.value().rows().size(), 3);
    QVERIFY(!menu.value().contains(OrkaRowsRoles::RowsVersion()));
    QCOMPARE(menu.value().roles().toJsonString(), QString(R"({"title":"UPnP Context Menu"})"));
    QCOMPARE(menu.value().roles().title().context(), QByteArray("CMUPnPWorker"));
    QCOMPARE(none.message(), QString("Invalid context menu request"));
    QCOMPARE(w.calls(), QString());
}

void tst_Routing::anUnknownServerStaysKnownToDataRequests()
{
    World w;
    w.askData("/uuid:2");
    w.settle();
    const auto rows = w.askRows("/uuid:2", 0, 9);
    const auto object = w.askRows("/uuid:2/31", 0, 9);
    w.settle();
    QCOMPARE(rows.message(), QString("Failed to retrieve content"));
    QCOMPARE(w.log.count(noNode.arg("upnp:/uuid:2")), 2);
    // Its objects have a path on the bus, though nobody answers there.
    QCOMPARE(object.outcome(), QString("error internal: Failed to retrieve content"));
}

void tst_Routing::tracesWhatItEnters()
{
    World w;
    w.service.fail({"SearchObjectsEx"});
    w.askRows("/uuid:1/31", 0, 0);
    w.settle();
    w.askData("/uuid:1/31");
    w.settle();
    w.askRows("/uuid:1?search=menu", 0, 0);
    w.askRows("/uuid:1?search=artist&query=x", 0, 0);
    w.settle();
    w.askRows("context?path=upnp%3A%2Fuuid%3A1%2F32%3FitemType%3Dtrack", 0, 0);
    w.askPrepare({"/uuid:1/31?itemType=container"});
    w.settle();
    QStringList lines = w.log.lines("TRACE CB_UPnP: ");
    lines.replaceInStrings("TRACE CB_UPnP: ", "").replaceInStrings("Enter CMUPnPWorker::", "> ");
    for (const QString &line :
        lines.filter(QRegularExpression("^> (fillin_roles|checkSearchCap)|^ret=")))
        lines.removeOne(line);
    QCOMPARE(lines.join('\n'),
        QString(
            "> getRowsRequest: \n"
            "> handleListRowsRequest: \n"
            "> on_handleListRows_finished: \n"
            "> getDataRequest: \n"
            "> handleListDataRequest: \n"
            "> on_handleListData_finished: \n"
            "> getRowsRequest: \n"
            "> handleSearchMenuRowsRequest: search: menu query: \n"
            "> getRowsRequest: \n"
            "> handleSearchRowsRequest: search : artist query x\n"
            "> on_handleSearchRows_finished: \n"
            "> getRowsRequest: \n"
            "Context request path: upnp:context?path=upnp%3A%2Fuuid%3A1%2F32%3FitemType%3Dtrack\n"
            "sent reply with 3 lines\n"
            "> setDataRequest: (upnp:/uuid:1/31?itemType=container), path: "
            "upnp:playlist/prepareItems\n"
            "> preparePlaylistItems: (upnp:/uuid:1/31?itemType=container)\n"
            "Preparing search item: upnp:/uuid:1/31?itemType=container\n"
            "> on_preparePlaylistItems_finished: \n"
            "> browsePlaylistItems: \n"
            "> on_browsePlaylistItems_finished: "));
}

QTEST_GUILESS_MAIN(tst_Routing)
#include "tst_Routing.moc"
