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

    void listsAreCompleteWhateverThePages();
    void countsOfWhatWasSentAreNotBelieved();
    void emptyAnswersAreEmptyLists();
    void aListingKnowsTheChildCount();
    void severalObjectsAreReadAtOnce();
    void listsThatFitNoMessageSayIt();
    void cancelledCallsEndAtOnce();
    void oddObjectsNeverCostTheirNeighbours();
    void cutAnswersAreNeverCutLists();
    void otherClientsFindWhatTheyAskFor();
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
    server->tree.addFolder("twice", "away from the others", "Twice");
    for (const char *id : {"a", "b", "c", "c"})
        server->tree.addTrack(id, "twice", id);
    server->tree.addFolder("again", "away from the others", "Again");
    for (const char *id : {"d", "e", "f", "d", "e"})
        server->tree.addTrack(id, "again", id);
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

void tst_BridgeListing::listsAreCompleteWhateverThePages()
{
    server->behaviour.refuseCountFrom = 0x80000000U;
    using Behaviour = ServerBehaviour;
    const auto listed = [this](uint pageCap, Behaviour::Total total, uint offset, uint max) {
        server->behaviour.pageCap = pageCap;
        server->behaviour.total = total;
        const QStringList rows = titles(bridge->list(path("numbers"), offset, max, title));
        const auto found = bridge->search(path("numbers"), "Type = \"music\"", offset, max, title);
        return titles(found) == rows ? rows : QStringList{"a search gives others"};
    };
    const QStringList all = trackTitles(0, numberCount);
    for (const uint cap : {0U, 1U, 5U, 7U}) // none, one at a time, at the list's end, over it
        QCOMPARE(listed(cap, Behaviour::Counted, 0, 0), all);
    for (const auto total : {Behaviour::Zero, Behaviour::Five, Behaviour::OneMore}) {
        QCOMPARE(listed(7, total, 0, 0), all);
        QCOMPARE(listed(4, total, 20, 10), trackTitles(20, numberCount));
    }
    server->behaviour.beginsAnew = true;
    for (const auto total : {Behaviour::Zero, Behaviour::OneMore})
        QCOMPARE(listed(7, total, 0, 0), all);
    server->behaviour.beginsAnew = false;
    QCOMPARE(listed(7, Behaviour::Counted, 3, 10), trackTitles(3, 13));
    QCOMPARE(listed(0, Behaviour::Counted, 25, 10), QStringList());
    QCOMPARE(listed(7, Behaviour::Counted, 20, 0xffffffffU), trackTitles(20, numberCount));
    // Whoever isn't told all is told that they weren't counted.
    QCOMPARE(listed(0, Behaviour::Zero, 0, 10), trackTitles(0, 10));
    const auto found = bridge->search(path("numbers"), "Type = \"music\"", 0, 10, title);
    QCOMPARE(found.values.value(1).toUInt(), 0U);
}

/// A server that can be told by one of its counts isn't asked more than it has to be.
void tst_BridgeListing::countsOfWhatWasSentAreNotBelieved()
{
    for (const uint cap : {0U, 10U, 1U}) {
        const bool isTrue = cap == 0;
        ScriptedUpnpServer other(newUdn());
        other.tree.addFolder("numbers", "0", "Numbers", numberCount);
        other.tree.addFolder("one", "0", "One", 1);
        other.behaviour.total = isTrue ? ServerBehaviour::Counted : ServerBehaviour::Sent;
        QVERIFY(!bridge->add(other).isEmpty());
        const QString folder = objectPath(other.udn(), "numbers");
        const auto questions = [&](uint pageCap, uint offset, uint max, uint to) {
            other.behaviour.pageCap = pageCap;
            other.forgetCalls();
            const QStringList rows = titles(bridge->list(folder, offset, max, title));
            return rows == trackTitles(offset, to) ? other.calls().size() : -1;
        };
        const auto counts = [&](uint max) {
            Call listing = bridge->startListing(folder, 0, max, title);
            const auto children = bridge->get(folder, names::object, "ChildCount").value().toUInt();
            listing.wait();
            const auto found = bridge->search(folder, "Type = \"music\"", 0, max, title);
            return QString("%1 %2").arg(children).arg(found.values.value(1).toUInt());
        };
        QCOMPARE(questions(cap, 0, 0, numberCount), isTrue ? 2 : cap == 10 ? 5 : 27);
        QCOMPARE(titles(bridge->list(objectPath(other.udn(), "one"))), trackTitles(0, 1));
        QCOMPARE(counts(numberCount), isTrue ? "25 25" : "25 0");
        QCOMPARE(questions(0, 0, 0, numberCount), isTrue ? 1 : 2);
        QCOMPARE(questions(10, 3, 20, 23), 2);
        QCOMPARE(questions(0, 0, 10, 10), 1);
        QCOMPARE(counts(1), isTrue ? "25 25" : "25 0");
        QCOMPARE(counts(0), "25 25");
    }
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
    server->behaviour.emptyResult = ServerBehaviour::Uncounted;
    QVERIFY(!bridge->list(path("empty")).ok());
}

/// Clients ask for rows and count at once; the server is asked again only where it has to be.
void tst_BridgeListing::aListingKnowsTheChildCount()
{
    const auto count = [this](const QString &container, bool isCounted, int questions) {
        server->behaviour.total = isCounted ? ServerBehaviour::Counted : ServerBehaviour::Zero;
        server->behaviour.delay = 50;
        server->forgetCalls();
        Call listing = bridge->startListing(path(container), 0, 10, title);
        const Answer answer = bridge->get(path(container), names::object, "ChildCount");
        listing.wait();
        return server->calls().size() > questions ? "too many questions"
            : answer.ok()                         ? answer.value().toString()
                                                  : "error";
    };
    QCOMPARE(count("numbers", true, 1), "25");
    QCOMPARE(count("empty", true, 3), "0");
    QCOMPARE(count("numbers", false, 2), "25");
    QCOMPARE(count("nowhere", true, 2), "error");
}

void tst_BridgeListing::severalObjectsAreReadAtOnce()
{
    QList<QDBusObjectPath> objects;
    for (const QString &object : {path("t1"), path("nowhere"), serverPath(newUdn()), path("t3")})
        objects.append(QDBusObjectPath(object));
    const Answer answer =
        bridge->call(root, names::device, "BrowseObjects", {QVariant::fromValue(objects), title});
    QCOMPARE(titles(answer), (QStringList{"Say \"Hello\"", "", "", "100 % Ärger"}));
    for (const int failed : {1, 2})
        QVERIFY(answer.rows()[failed].contains("Error"));
}

void tst_BridgeListing::listsThatFitNoMessageSayIt()
{
    server->tree.addFolder("huge", "away from the others", "Huge");
    const QString artist = "<upnp:artist>%1</upnp:artist>"_s.arg(QString(4000, QLatin1Char('x')));
    for (int i = 0; i < 1400; ++i)
        server->tree.addTrack("huge%1"_s.arg(i), "huge", "x", artist.repeated(12));
    const Answer all = bridge->list(path("huge"), 0, 0, {"Artists"});
    QVERIFY2(all.message.contains("too long for one D-Bus message"), qPrintable(all.message));
    QCOMPARE(bridge->list(path("huge"), 1388, 0, {"Artists"}).rows().size(), 12);
}

void tst_BridgeListing::cancelledCallsEndAtOnce()
{
    server->behaviour.hang = QStringList{"Browse"};
    Call listing = bridge->startListing(path("numbers"), 0, 0);
    QTRY_COMPARE(server->held(), 1);
    QVERIFY(bridge->call(root, names::device, "Cancel").ok());
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
    server->behaviour.pageCap = 7;
    for (const uint overlap : {1U, 2U}) {
        server->behaviour.overlap = overlap;
        QCOMPARE(titles(bridge->list(path("numbers"))), trackTitles(0, numberCount));
        QCOMPARE(
            titles(bridge->list(path("numbers"), 5, 12)), trackTitles(5 - overlap, 17 - overlap));
    }
    server->behaviour.overlap = 0;
    server->behaviour.pageCap = 1;
    QCOMPARE(titles(bridge->list(path("again"))).join(' '), "d e f d e");
    // Not to be told from a server that sends one row for two.
    server->behaviour.overlap = 0;
    server->behaviour.pageCap = 3;
    for (const auto total : {ServerBehaviour::Counted, ServerBehaviour::Zero}) {
        server->behaviour.total = total;
        const QString lacking = titles(bridge->list(path("twice"))).join(' ');
        QVERIFY2(lacking.contains("objects here, but only 3 came"), qPrintable(lacking));
    }
    server->behaviour = {};
    server->behaviour.cutResult = true;
    const Answer answer = bridge->list(path("numbers"));
    QVERIFY2(!answer.ok() || answer.rows().size() == int(numberCount),
        qPrintable("%1 rows and no error"_s.arg(answer.rows().size())));
}

/// Clients that walk the tree in other ways than the plug-in, or would change it.
void tst_BridgeListing::otherClientsFindWhatTheyAskFor()
{
    const auto device = [this](const char *property) {
        return bridge->get(root, names::device, property).value().toString();
    };
    QCOMPARE(device("FriendlyName"), "Test & Music <1>");
    QCOMPARE(device("IconURL"), "http://10.77.0.1:%1/icon.png"_s.arg(server->port()));

    const auto asked = [&](const QString &at, const char *method, const QVariantList &more = {}) {
        const QVariantList arguments = QVariantList{0U, 3U, title} + more;
        const Answer answer = bridge->call(at, names::container, method, arguments);
        return answer.ok() ? titles(answer).join(' ') : answer.error;
    };
    QCOMPARE(asked(root, "ListContainers"), "Numbers Empty Odd");
    QCOMPARE(asked(root, "ListContainersEx", {"-DisplayName"}), "Numbers Empty Odd");
    QCOMPARE(server->calls().last().arguments["SortCriteria"], "-dc:title");
    QCOMPARE(asked(root, "ListChildrenEx", {"-Genre"}), names::operationFailed);
    QCOMPARE(asked(path("numbers"), "ListItems"), trackTitles(0, 3).join(' '));

    const auto has = [this](const QString &object, const QString &interface) {
        const QString introspectable = "org.freedesktop.DBus.Introspectable";
        return bridge->call(object, introspectable, "Introspect")
            .value()
            .toString()
            .contains('"' + interface + '"');
    };
    QVERIFY(has(names::managerPath, names::bridge) && !has(names::managerPath, names::device));
    QVERIFY(has(root, names::device) && has(root, names::container) && !has(root, names::item));
    QVERIFY(has(path("numbers$1"), names::item) && !has(path("numbers$1"), names::container));

    server->forgetCalls();
    const Answer refused = bridge->call(path("numbers"), names::object, "Delete");
    QCOMPARE(refused.error, "com.intel.dleyna.NotSupported");
    QVERIFY(server->calls().isEmpty());
}

void tst_BridgeListing::serversTellWhetherTheyCanSearch()
{
    ScriptedUpnpServer poor(newUdn()), silent(newUdn()), able(newUdn());
    poor.behaviour.searchCaps.clear();
    poor.behaviour.fail.insert("Search", 501);
    silent.behaviour.fail.insert("GetSearchCapabilities", 501);
    able.behaviour.searchCaps = "*";
    const auto caps = [this](ScriptedUpnpServer &one) {
        return bridge->get(bridge->add(one), names::device, "SearchCaps");
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
