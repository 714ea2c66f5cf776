#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QTest>

namespace {

constexpr uint numberCount = 25;
const QStringList title{"DisplayName"};

QStringList titles(const Answer &answer)
{
    QStringList list;
    for (const QVariantMap &row : answer.rows())
        list.append(row.value(title[0]).toString());
    return answer.ok() ? list : QStringList{answer.message};
}

QStringList trackTitles(uint from, uint to)
{
    QStringList list;
    for (uint number = from + 1; number <= to; ++number)
        list.append("Track %1"_s.arg(number, 5, 10, QLatin1Char('0')));
    return list;
}

} // namespace

/// What clients get to see of one server, whatever way it sends it.
class tst_BridgeListing : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<BridgeFixture> bridge;
    std::unique_ptr<ScriptedUpnpServer> server;
    QString root;

    QString path(const QString &id) const { return objectPath(server->udn(), id); }
    void addOddObjects();

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase()
    {
        server.reset();
        bridge.reset();
    }
    void init()
    {
        server->behaviour = {};
        server->forgetCalls();
    }

    void listsAreCompleteWhateverThePages_data();
    void listsAreCompleteWhateverThePages();
    void emptyAnswersAreEmptyLists();
    void aListingKnowsTheChildCount_data();
    void aListingKnowsTheChildCount();
    void severalObjectsAreReadAtOnce();
    void listsThatFitNoMessageSayIt();
    void cancelledCallsEndAtOnce();
    void oddObjectsNeverCostTheirNeighbours();
    void cutAnswersAreNeverCutLists();
    void deviceTellsWhatItsDescriptionSays();
    void kindsAreListedApartAndSorted();
    void contentCannotBeChanged();
    void introspectionTellsTheTruth();

    void searchTextsTravelAsTheyAre_data();
    void searchTextsTravelAsTheyAre();
    void badQueriesNeverReachTheServer();
    void resultsAreSortedByWhatTheServerCan();
    void serversTellWhetherTheyCanSearch();
};

void tst_BridgeListing::initTestCase()
{
    bridge = std::make_unique<BridgeFixture>();
    server = std::make_unique<ScriptedUpnpServer>(newUdn(), "Test & Music <1>");
    server->tree.addFolder("numbers", "0", "Numbers", numberCount);
    server->tree.addFolder("empty", "0", "Empty");
    server->tree.addFolder("odd", "0", "Odd");
    addOddObjects();
    server->tree.addFolder("m", "0", "Music");
    server->tree.addTrack("t1", "m", "Say \"Hello\"");
    server->tree.addTrack("t2", "m", "Back\\slash & <more>");
    server->tree.addTrack("t3", "m", "100 % Ärger");
    server->behaviour.bareAmpersands = true;
    root = bridge->add(*server);
    QVERIFY(!root.isEmpty());
}

void tst_BridgeListing::addOddObjects()
{
    const auto add = [this](const char *id, const char *name, const char *xml = "",
                         const char *upnpClass = "object.item.audioItem.musicTrack") {
        server->tree.add({id, "odd", name, upnpClass, xml});
    };
    add("1", "bell \x07 and more");
    add(nullptr, "no id");
    add("3", nullptr);
    add("4", "no class", "", nullptr);
    add("5", "odd class", "<upnp:albumArtURI>/art/5.jpg</upnp:albumArtURI>",
        "object.item.hologram");
    add("6", "short",
        "<res duration='8:17.493' protocolInfo='http-get:*:audio/mpeg:*'>$BASE/6</res>");
    add("7", "Rock & Roll &c; <live>");
    add("8", "malformed", "<upnp:genre>I <3 you</upnp:genre>");
    add("9", "last", "<upnp:albumArtURI>http://10.77.0.1/9.jpg</upnp:albumArtURI>");
}

void tst_BridgeListing::listsAreCompleteWhateverThePages_data()
{
    QTest::addColumn<uint>("pageCap");
    QTest::addColumn<bool>("totalIsZero");
    QTest::addColumn<uint>("offset");
    QTest::addColumn<uint>("max");
    QTest::addColumn<uint>("end");
    const auto row = [](const char *name, uint cap, bool zero, uint offset, uint max, uint end) {
        QTest::newRow(name) << cap << zero << offset << max << end;
    };
    row("all at once", 0, false, 0, 0, 25);
    row("pages of seven", 7, false, 0, 0, 25);
    row("pages of one", 1, false, 0, 0, 25);
    row("pages that end with the list", 5, false, 0, 0, 25);
    row("a total of 0", 0, true, 0, 0, 25);
    row("a total of 0 and pages of seven", 7, true, 0, 0, 25);
    row("a range over two pages", 7, false, 3, 10, 13);
    row("a range over the end, total 0", 4, true, 20, 10, 25);
    row("from the end", 0, false, 25, 10, 25);
    row("the greatest count", 0, false, 0, 0xffffffffU, 25);
    row("the greatest count from the middle", 7, false, 20, 0xffffffffU, 25);
}

void tst_BridgeListing::listsAreCompleteWhateverThePages()
{
    QFETCH(uint, offset);
    QFETCH(uint, max);
    QFETCH(uint, end);
    QFETCH(uint, pageCap);
    QFETCH(bool, totalIsZero);
    server->behaviour.pageCap = pageCap;
    server->behaviour.totalIsZero = totalIsZero;
    server->behaviour.refuseCountFrom = 0x80000000U;
    QCOMPARE(titles(bridge->list(path("numbers"), offset, max, title)), trackTitles(offset, end));
    QCOMPARE(titles(bridge->search(path("numbers"), "Type = \"music\"", offset, max, title)),
        trackTitles(offset, end));
}

void tst_BridgeListing::emptyAnswersAreEmptyLists()
{
    for (const auto result :
        {ServerBehaviour::EmptyDidl, ServerBehaviour::NoResult, ServerBehaviour::EmptyWrapped}) {
        for (const bool declaration : {false, true}) {
            server->behaviour.emptyResult = result;
            server->behaviour.xmlDeclaration = declaration;
            QCOMPARE(titles(bridge->list(path("empty"))), QStringList());
            QCOMPARE(titles(bridge->list(path("numbers"), 100, 10)), QStringList());
            QCOMPARE(titles(bridge->search(root, "DisplayName contains \"no such thing\"")),
                QStringList());
            QCOMPARE(titles(bridge->list(path("numbers"))), trackTitles(0, numberCount));
        }
    }
}

void tst_BridgeListing::aListingKnowsTheChildCount_data()
{
    QTest::addColumn<QString>("container");
    QTest::addColumn<bool>("totalIsZero");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("questions");
    QTest::newRow("with its rows") << "numbers" << false << int(numberCount) << 1;
    QTest::newRow("of nothing") << "empty" << false << 0 << 3;
    QTest::newRow("where the server gives no total") << "numbers" << true << int(numberCount) << 2;
    QTest::newRow("where the listing fails") << "nowhere" << false << -1 << 2;
}

/// Clients ask for rows and count at once; the server is asked again only where it has to be.
void tst_BridgeListing::aListingKnowsTheChildCount()
{
    QFETCH(QString, container);
    QFETCH(bool, totalIsZero);
    QFETCH(int, questions);
    server->behaviour.totalIsZero = totalIsZero;
    server->behaviour.delay = 50;
    server->forgetCalls();
    Call listing = bridge->startListing(path(container), 0, 10, title);
    const Answer count = bridge->get(path(container), objectInterface, "ChildCount");
    listing.wait();
    QTEST(count.ok() ? count.value().toInt() : -1, "count");
    QVERIFY2(
        server->calls().size() <= questions, qPrintable(QString::number(server->calls().size())));
}

void tst_BridgeListing::severalObjectsAreReadAtOnce()
{
    QList<QDBusObjectPath> objects;
    for (const QString &object : {path("t1"), path("nowhere"), serverPath(newUdn()), path("t3")})
        objects.append(QDBusObjectPath(object));
    const Answer answer =
        bridge->call(root, deviceInterface, "BrowseObjects", {QVariant::fromValue(objects), title});
    QCOMPARE(titles(answer), (QStringList{"Say \"Hello\"", "", "", "100 % Ärger"}));
    for (const int failed : {1, 2})
        QVERIFY(answer.rows()[failed].contains("Error"));
}

void tst_BridgeListing::listsThatFitNoMessageSayIt()
{
    server->tree.addFolder("huge", "away from the others", "Huge");
    const QString longest(16 << 10, QLatin1Char('x'));
    for (int i = 0; i < 4000; ++i)
        server->tree.addTrack("huge%1"_s.arg(i), "huge", longest);
    const Answer all = bridge->list(path("huge"), 0, 0, title);
    QVERIFY2(all.message.contains("too long for one D-Bus message"), qPrintable(all.message));
    QCOMPARE(bridge->list(path("huge"), 3988, 0, title).rows().size(), 12);
}

void tst_BridgeListing::cancelledCallsEndAtOnce()
{
    server->behaviour.hang = QStringList{"Browse"};
    Call listing = bridge->startListing(path("numbers"), 0, 0);
    QTRY_COMPARE(server->held(), 1);
    QVERIFY(bridge->call(root, deviceInterface, "Cancel").ok());
    const Answer answer = listing.wait();
    QCOMPARE(answer.error, "com.intel.dleyna.Cancelled");
    QVERIFY2(answer.milliseconds < 5000, qPrintable(QString::number(answer.milliseconds)));
}

void tst_BridgeListing::oddObjectsNeverCostTheirNeighbours()
{
    server->behaviour.xmlDeclaration = true;
    server->behaviour.bareAmpersands = true;
    const Answer answer = bridge->list(path("odd"));
    QCOMPARE(titles(answer),
        (QStringList{"bell  and more", "no id", "", "no class", "odd class", "short",
            "Rock & Roll &c; <live>", "malformed", "last"}));
    const auto value = [rows = answer.rows()](int row, const char *key) {
        return rows[row].value(key).toString();
    };
    QCOMPARE(value(2, "Path"), path("3"));
    QCOMPARE(value(3, "Type"), "item.unclassified");
    QCOMPARE(value(4, "Type"), "item.unclassified");
    QCOMPARE(value(4, "AlbumArtURL"), "http://10.77.0.1:%1/art/5.jpg"_s.arg(server->port()));
    QCOMPARE(value(5, "Duration"), "497");
    QCOMPARE(value(8, "AlbumArtURL"), "http://10.77.0.1/9.jpg");
}

/// Either the bridge gets what is missing, or it says so.
void tst_BridgeListing::cutAnswersAreNeverCutLists()
{
    server->behaviour.cutResult = true;
    const Answer answer = bridge->list(path("numbers"));
    QVERIFY2(!answer.ok() || answer.rows().size() == int(numberCount),
        qPrintable("%1 rows and no error"_s.arg(answer.rows().size())));
}

void tst_BridgeListing::deviceTellsWhatItsDescriptionSays()
{
    const QVariantMap expected{{"FriendlyName", "Test & Music <1>"}, {"UDN", server->udn()},
        {"DeviceType", "urn:schemas-upnp-org:device:MediaServer:1"},
        {"Manufacturer", "Scripted Makers"}, {"ManufacturerUrl", "http://makers.example/"},
        {"ModelDescription", "A server that does as it is told"}, {"ModelName", "Scripted"},
        {"ModelNumber", "1"}, {"ModelURL", "http://makers.example/1"}, {"SerialNumber", "0001"},
        {"IconURL", "http://10.77.0.1:%1/icon.png"_s.arg(server->port())},
        {"SearchCaps",
            QStringList{"DisplayName", "Artist", "Album", "Type", "TypeEx", "Path", "Parent"}}};
    const QVariantMap all = bridge->getAll(root, deviceInterface).map();
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        QCOMPARE(all.value(it.key()), *it);
        QCOMPARE(bridge->get(root, deviceInterface, it.key()).value(), *it);
    }
}

void tst_BridgeListing::kindsAreListedApartAndSorted()
{
    const auto listed = [&](const char *method, const QVariantList &more = {}) {
        return titles(
            bridge->call(root, containerInterface, method, QVariantList{0U, 0U, title} + more));
    };
    const QStringList written{"Numbers", "Empty", "Odd", "Music"};
    QCOMPARE(listed("ListContainers"), written);
    QCOMPARE(listed("ListItems"), QStringList());
    QCOMPARE(listed("ListChildrenEx", {"+DisplayName"}),
        (QStringList{"Empty", "Music", "Numbers", "Odd"}));
    QCOMPARE(listed("ListContainersEx", {"-DisplayName"}),
        (QStringList{"Odd", "Numbers", "Music", "Empty"}));
    QCOMPARE(
        bridge->call(root, containerInterface, "ListChildrenEx", {0U, 0U, title, "-Genre"}).error,
        "com.intel.dleyna.OperationFailed"); // the server can't sort by it
    QCOMPARE(
        titles(bridge->call(path("numbers"), containerInterface, "ListItems", {20U, 10U, title})),
        trackTitles(20, numberCount));
}

void tst_BridgeListing::contentCannotBeChanged()
{
    const auto refused = [this](const QString &interface, const char *method,
                             const QVariantList &arguments = {}) {
        const Answer answer = bridge->call(path("numbers"), interface, method, arguments);
        return answer.error == "com.intel.dleyna.NotSupported" && answer.message.size() > 10;
    };
    QVERIFY(refused(containerInterface, "CreateContainer", {"New", "container", QStringList()}));
    QVERIFY(refused(containerInterface, "Upload", {"New", "/etc/hostname"}));
    QVERIFY(refused(objectInterface, "Delete"));
    QVERIFY(server->calls().isEmpty());
}

void tst_BridgeListing::introspectionTellsTheTruth()
{
    const auto interfaces = [this](const QString &object) {
        const QString xml =
            bridge->call(object, "org.freedesktop.DBus.Introspectable", "Introspect")
                .value()
                .toString();
        QString has;
        for (const QString &one :
            {managerInterface, deviceInterface, objectInterface, containerInterface, itemInterface})
            has += xml.contains('"' + one + '"') ? 'x' : '-';
        return has;
    };
    QCOMPARE(interfaces(managerPath), "x----");
    QCOMPARE(interfaces(root), "-xxx-");
    QCOMPARE(interfaces(path("numbers")), "--xx-");
    QCOMPARE(interfaces(path("numbers$1")), "--x-x");
}

void tst_BridgeListing::searchTextsTravelAsTheyAre_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("id");
    const auto row = [](const char *name, const char *query, const char *sent, const char *id) {
        const auto text = [](const char *single) { // ' stands for "
            return QString(single).replace('\'', '"');
        };
        QTest::newRow(name) << text(query) << text(sent) << QString(id);
    };
    row("quotes", "DisplayName contains 'Say \\'Hello\\''", "dc:title contains 'Say \\'Hello\\''",
        "t1");
    row("a backslash", "DisplayName contains 'Back\\\\slash'", "dc:title contains 'Back\\\\slash'",
        "t2");
    row("markup", "DisplayName contains '& <more>'", "dc:title contains '& <more>'", "t2");
    row("per cent and an umlaut", "DisplayName contains '% Ä'", "dc:title contains '% Ä'", "t3");
}

void tst_BridgeListing::searchTextsTravelAsTheyAre()
{
    QFETCH(QString, query);
    const Answer answer = bridge->search(root, query);
    QCOMPARE(answer.message, QString());
    QTEST(server->calls().last().arguments.value("SearchCriteria"), "sent");
    QFETCH(QString, id);
    QCOMPARE(answer.rows().size(), 1);
    QCOMPARE(answer.rows()[0].value("Path").toString(), path(id));
    QCOMPARE(answer.values.value(1).toUInt(), 1U);
}

void tst_BridgeListing::badQueriesNeverReachTheServer()
{
    for (const char *query : {"Bogus contains \"x\"", "Artist contains \"open", "Artist",
             "(Artist = \"a\"", "dc:title contains \"x\""}) {
        const Answer answer = bridge->search(root, query);
        QCOMPARE(answer.error, "com.intel.dleyna.BadQuery");
        QVERIFY(!answer.message.isEmpty());
    }
    QVERIFY(server->calls().isEmpty());
}

void tst_BridgeListing::resultsAreSortedByWhatTheServerCan()
{
    const auto search = [this](const char *query, const char *sort) {
        return bridge->search(path("m"), query, 0, 1, title, sort);
    };
    QCOMPARE(titles(search("Type = \"music\"", "-DisplayName")), QStringList{"Say \"Hello\""});
    QCOMPARE(search("", "+DisplayName").values.value(1).toUInt(), 3U); // everything
    QCOMPARE(search("", "+Genre").error, "com.intel.dleyna.OperationFailed");
    QVERIFY(!search("", "+Bogus").ok());
}

void tst_BridgeListing::serversTellWhetherTheyCanSearch()
{
    ScriptedUpnpServer poor(newUdn()), silent(newUdn()), able(newUdn());
    poor.behaviour.searchCaps.clear();
    poor.behaviour.fail.insert("Search", 501);
    silent.behaviour.fail.insert("GetSearchCapabilities", 501);
    able.behaviour.searchCaps = "*";
    const auto caps = [this](ScriptedUpnpServer &one) {
        return bridge->get(bridge->add(one), deviceInterface, "SearchCaps");
    };
    QCOMPARE(caps(poor).value(), QVariant(QStringList()));
    QCOMPARE(caps(able).value(), QVariant(QStringList{"*"}));
    QCOMPARE(caps(silent).error, "com.intel.dleyna.UnknownProperty");
    QVERIFY(bridge->list(serverPath(silent.udn())).ok());
    const Answer refused = bridge->search(serverPath(poor.udn()), "Artist contains \"x\"");
    QCOMPARE(refused.error, "com.intel.dleyna.OperationFailed");
    QVERIFY(refused.message.startsWith("Search operation failed"));
}

BRIDGE_TEST_MAIN(tst_BridgeListing)
#include "tst_BridgeListing.moc"
