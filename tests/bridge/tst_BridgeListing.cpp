#include "BridgeFixture.h"
#include "ScriptedUpnpServer.h"
#include "TestNamespace.h"

#include <QTest>

namespace {

const QString numbers = "numbers", empty = "empty", odd = "odd";
constexpr uint numberCount = 25;

QStringList texts(const Answer &answer, const QString &key)
{
    QStringList list;
    for (const QVariantMap &row : answer.rows())
        list.append(row.value(key).toString());
    return list;
}

QStringList trackTitles(uint from, uint to)
{
    QStringList list;
    for (uint number = from + 1; number <= to; ++number)
        list.append("Track %1"_s.arg(number, 5, 10, QLatin1Char('0')));
    return list;
}

} // namespace

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
    void initTestCase()
    {
        bridge = std::make_unique<BridgeFixture>();
        server = std::make_unique<ScriptedUpnpServer>(newUdn(), "Test & Music <1>");
        server->tree.addFolder(numbers, "0", "Numbers", numberCount);
        server->tree.addFolder(empty, "0", "Empty");
        addOddObjects();
        server->behaviour.bareAmpersands = true;
        root = bridge->add(*server);
        QVERIFY(!root.isEmpty());
    }
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
    void emptyAnswersAreEmptyLists_data();
    void emptyAnswersAreEmptyLists();
    void oddObjectsNeverCostTheirNeighbours();
    void cutAnswersAreNeverCutLists();
    void deviceTellsWhatItsDescriptionSays_data();
    void deviceTellsWhatItsDescriptionSays();
    void objectsAnswerByInterface_data();
    void objectsAnswerByInterface();
    void kindsAreListedApartAndSorted();
    void contentCannotBeChanged();
    void introspectionTellsTheTruth();
};

void tst_BridgeListing::addOddObjects()
{
    server->tree.addFolder(odd, "0", "Odd");
    const auto add = [this](const char *id, const char *title, const char *upnpClass,
                         const char *xml) {
        const auto text = [](const char *from) {
            return from ? QString::fromLatin1(from) : QString();
        };
        server->tree.add({text(id), odd, text(title), text(upnpClass), text(xml)});
    };
    add("1", "bell \x07 and more", "object.item.audioItem.musicTrack", "");
    add(nullptr, "no id", "object.item.audioItem.musicTrack", "");
    add("3", nullptr, "object.item.audioItem.musicTrack", "");
    add("4", "no class", nullptr, "");
    add("5", "odd class", "object.item.hologram.large",
        "<upnp:albumArtURI>/art/5.jpg</upnp:albumArtURI>");
    add("6", "short", "object.item.audioItem.musicTrack",
        "<res duration=\"8:17.493\" protocolInfo=\"http-get:*:audio/mpeg:*\">$BASE/6</res>");
    add("7", "second", "object.item.audioItem.musicTrack",
        "<res duration=\"0:00:01\" protocolInfo=\"http-get:*:audio/mpeg:*\">$BASE/7</res>");
    add("8", "days", "object.item.audioItem.musicTrack",
        "<res duration=\"99:59:59.999\" protocolInfo=\"http-get:*:audio/mpeg:*\">$BASE/8</res>");
    add("9", "last", "object.item.audioItem.musicTrack",
        "<upnp:albumArtURI>http://10.77.0.1/9.jpg</upnp:albumArtURI>");
    add("10", "Rock & Roll &c; <live>", "object.item.audioItem.musicTrack", "");
    add("11", "malformed", "object.item.audioItem.musicTrack", "<upnp:genre>I <3 you</upnp:genre>");
    add("12", "after it", "object.item.audioItem.musicTrack", "");
}

void tst_BridgeListing::listsAreCompleteWhateverThePages_data()
{
    QTest::addColumn<uint>("pageCap");
    QTest::addColumn<bool>("totalIsZero");
    QTest::addColumn<uint>("refuseCountFrom");
    QTest::addColumn<uint>("offset");
    QTest::addColumn<uint>("max");
    QTest::addColumn<uint>("end");
    const auto row = [](const char *name, uint cap, bool zero, uint refuse, uint offset, uint max,
                         uint end) {
        QTest::newRow(name) << cap << zero << refuse << offset << max << end;
    };
    row("all at once", 0, false, 0, 0, 0, 25);
    row("pages of seven", 7, false, 0, 0, 0, 25);
    row("pages of one", 1, false, 0, 0, 0, 25);
    row("pages that end with the list", 5, false, 0, 0, 0, 25);
    row("a total of 0", 0, true, 0, 0, 0, 25);
    row("a total of 0 and pages of seven", 7, true, 0, 0, 0, 25);
    row("a range over two pages", 7, false, 0, 3, 10, 13);
    row("a range over the end, total 0", 4, true, 0, 20, 10, 25);
    row("a range over the end", 0, false, 0, 20, 10, 25);
    row("from the end", 0, false, 0, 25, 10, 25);
    row("from beyond the end", 0, false, 0, 100, 10, 100);
    row("the greatest count", 0, false, 0x80000000U, 0, 0xffffffffU, 25);
    row("the greatest count from the middle", 7, false, 0x80000000U, 20, 0xffffffffU, 25);
}

void tst_BridgeListing::listsAreCompleteWhateverThePages()
{
    QFETCH(uint, offset);
    QFETCH(uint, max);
    QFETCH(uint, end);
    QFETCH(uint, pageCap);
    QFETCH(bool, totalIsZero);
    QFETCH(uint, refuseCountFrom);
    server->behaviour.pageCap = pageCap;
    server->behaviour.totalIsZero = totalIsZero;
    server->behaviour.refuseCountFrom = refuseCountFrom;
    const Answer answer = bridge->list(path(numbers), offset, max, {"DisplayName"});
    QCOMPARE(answer.message, QString());
    QCOMPARE(texts(answer, "DisplayName"), trackTitles(offset, end));

    const Answer found =
        bridge->search(path(numbers), "Type = \"music\"", offset, max, {"DisplayName"});
    QCOMPARE(found.message, QString());
    QCOMPARE(texts(found, "DisplayName"), trackTitles(offset, end));
}

void tst_BridgeListing::emptyAnswersAreEmptyLists_data()
{
    QTest::addColumn<int>("emptyResult");
    QTest::addColumn<bool>("xmlDeclaration");
    QTest::newRow("DIDL-Lite without children") << int(ServerBehaviour::EmptyDidl) << false;
    QTest::newRow("no DIDL-Lite") << int(ServerBehaviour::NoResult) << false;
    QTest::newRow("white space and a comment") << int(ServerBehaviour::EmptyWrapped) << false;
    QTest::newRow("a declaration") << int(ServerBehaviour::EmptyDidl) << true;
}

void tst_BridgeListing::emptyAnswersAreEmptyLists()
{
    QFETCH(int, emptyResult);
    QFETCH(bool, xmlDeclaration);
    server->behaviour.emptyResult = ServerBehaviour::EmptyResult(emptyResult);
    server->behaviour.xmlDeclaration = xmlDeclaration;
    const QVector<Answer> answers{bridge->list(path(empty)), bridge->list(path(numbers), 100, 10),
        bridge->search(root, "DisplayName contains \"no such thing\"")};
    for (const Answer &answer : answers) {
        QCOMPARE(answer.message, QString());
        QCOMPARE(answer.rows().size(), 0);
    }
    QCOMPARE(bridge->list(path(numbers)).rows().size(), int(numberCount));
}

void tst_BridgeListing::oddObjectsNeverCostTheirNeighbours()
{
    server->behaviour.xmlDeclaration = true;
    server->behaviour.bareAmpersands = true;
    const Answer answer = bridge->list(path(odd));
    QCOMPARE(answer.message, QString());
    const auto rows = answer.rows();
    QCOMPARE(rows.size(), 12);
    const auto value = [&rows](int row, const char *key) {
        return rows[row].value(QLatin1String(key));
    };
    QCOMPARE(value(0, "DisplayName").toString(), "bell  and more");
    QCOMPARE(value(1, "DisplayName").toString(), "no id");
    QCOMPARE(value(2, "Path").toString(), path("3"));
    QCOMPARE(value(3, "Type").toString(), "item.unclassified");
    QCOMPARE(value(4, "Type").toString(), "item.unclassified");
    QCOMPARE(
        value(4, "AlbumArtURL").toString(), "http://10.77.0.1:%1/art/5.jpg"_s.arg(server->port()));
    QCOMPARE(value(5, "Duration").toInt(), 497);
    QCOMPARE(value(6, "Duration").toInt(), 1);
    QCOMPARE(value(7, "Duration").toInt(), 359999);
    QCOMPARE(value(8, "AlbumArtURL").toString(), "http://10.77.0.1/9.jpg");
    QCOMPARE(value(9, "DisplayName").toString(), "Rock & Roll &c; <live>");
    QCOMPARE(value(10, "DisplayName").toString(), "malformed");
    QCOMPARE(value(11, "DisplayName").toString(), "after it");
}

/// Either the bridge gets what is missing, or it says so.
void tst_BridgeListing::cutAnswersAreNeverCutLists()
{
    server->behaviour.cutResult = true;
    const Answer answer = bridge->list(path(numbers));
    QVERIFY2(!answer.ok() || answer.rows().size() == int(numberCount),
        qPrintable("%1 rows and no error"_s.arg(answer.rows().size())));
}

void tst_BridgeListing::deviceTellsWhatItsDescriptionSays_data()
{
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char *name, const QVariant &expected) {
        QTest::newRow(name) << expected;
    };
    row("FriendlyName", "Test & Music <1>");
    row("UDN", QVariant());
    row("DeviceType", "urn:schemas-upnp-org:device:MediaServer:1");
    row("Manufacturer", "Scripted Makers");
    row("ManufacturerUrl", "http://makers.example/");
    row("ModelDescription", "A server that does as it is told");
    row("ModelName", "Scripted");
    row("ModelNumber", "1");
    row("ModelURL", "http://makers.example/1");
    row("SerialNumber", "0001");
    row("SearchCaps",
        QStringList{"DisplayName", "Artist", "Album", "Type", "TypeEx", "Path", "Parent"});
}

void tst_BridgeListing::deviceTellsWhatItsDescriptionSays()
{
    QFETCH(QVariant, expected);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const Answer answer = bridge->get(root, deviceInterface, name);
    QCOMPARE(answer.message, QString());
    QCOMPARE(answer.value(), expected.isValid() ? expected : QVariant(server->udn()));
    QCOMPARE(bridge->getAll(root, deviceInterface).map().value(name), answer.value());
}

void tst_BridgeListing::objectsAnswerByInterface_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("property"); // null: GetAll
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("value");
    const QString track = numbers + "$4", failed = "com.intel.dleyna.OperationFailed",
                  unknown = "com.intel.dleyna.UnknownInterface", none, all;
    const auto row = [](const char *name, const QString &place, const QString &interface,
                         const QString &property, const QString &error, const QString &value) {
        QTest::newRow(name) << place << interface << property << error << value;
    };
    const QString count = "ChildCount", name = "DisplayName";
    row("count as an object", numbers, objectInterface, count, none, "25");
    row("count as a container", numbers, containerInterface, count, none, "25");
    row("count without interface", numbers, QString::fromLatin1(""), count, none, "25");
    row("count of the server", "0", containerInterface, count, none, "3");
    row("title of the server's root", "0", objectInterface, name, none, "root");
    row("title of a track", track, objectInterface, name, none, "Track 00005");
    row("artist of a track", track, itemInterface, "Artist", none, "Artist 4");
    row("a container is no item", numbers, itemInterface, all, unknown, none);
    row("an item is no container", track, containerInterface, all, unknown, none);
    row("an interface nobody has", track, "org.example.None", all, unknown, none);
    row("an id nobody has", "zzz", objectInterface, name, failed, none);
    row("a property nobody has", track, objectInterface, "Bogus",
        "com.intel.dleyna.UnknownProperty", none);
}

void tst_BridgeListing::objectsAnswerByInterface()
{
    QFETCH(QString, place);
    QFETCH(QString, interface);
    QFETCH(QString, property);
    QFETCH(QString, error);
    QFETCH(QString, value);
    const QString object = place == "0" ? root : path(place);
    const Answer answer = property.isNull() ? bridge->getAll(object, interface)
                                            : bridge->get(object, interface, property);
    QCOMPARE(answer.error, error);
    QCOMPARE(answer.message.isEmpty(), error.isEmpty());
    if (error.isEmpty())
        QCOMPARE(answer.value().toString(), value);
}

void tst_BridgeListing::kindsAreListedApartAndSorted()
{
    const QStringList filter{"DisplayName"};
    const auto listed = [&](const char *method, const QVariantList &more = {}) {
        const Answer answer = bridge->call(root, containerInterface, QString::fromLatin1(method),
            QVariantList{0U, 0U, filter} + more);
        return answer.ok() ? texts(answer, filter[0]) : QStringList{answer.message};
    };
    const QStringList up{"Empty", "Numbers", "Odd"};
    const QStringList down{up[2], up[1], up[0]}, written{up[1], up[0], up[2]};
    QCOMPARE(listed("ListContainers"), written);
    QCOMPARE(listed("ListItems"), QStringList());
    QCOMPARE(listed("ListChildrenEx", {"+DisplayName"}), up);
    QCOMPARE(listed("ListContainersEx", {"-DisplayName"}), down);
    QCOMPARE(listed("ListChildrenEx", {"-Artist"}),
        written); // the server can't sort by it
    const Answer items =
        bridge->call(path(numbers), containerInterface, "ListItems", {20U, 10U, filter});
    QCOMPARE(texts(items, filter[0]), trackTitles(20, 25));
}

void tst_BridgeListing::contentCannotBeChanged()
{
    const QVector<QPair<QString, QVariantList>> changes{
        {"CreateContainer", {"New", "container", QStringList()}},
        {"Upload", {"New", "/etc/hostname"}}};
    for (const auto &[method, arguments] : changes) {
        const Answer answer = bridge->call(path(numbers), containerInterface, method, arguments);
        QVERIFY2(
            !answer.ok() && answer.message.size() > 10, qPrintable(method + ' ' + answer.message));
    }
    QVERIFY(!bridge->call(path(numbers), objectInterface, "Delete").ok());
    QCOMPARE(server->count("DestroyObject"), 0);
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
    QCOMPARE(interfaces(path(numbers)), "--xx-");
    QCOMPARE(interfaces(path(numbers + "$1")), "--x-x");
}

BRIDGE_TEST_MAIN(tst_BridgeListing)
#include "tst_BridgeListing.moc"
