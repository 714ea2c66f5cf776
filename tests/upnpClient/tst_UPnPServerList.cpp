#include "BusMonitor.h"
#include "PluginFixture.h"
#include "UPnPServerList.h"

#include <QRegularExpression>
#include <QTest>

/// The rows of the worker's root as servers come, go and answer badly.
class tst_UPnPServerList : public QObject
{
    Q_OBJECT

private slots:
    void listsAServerWithItsRoles();
    void rowsAppearInTheOrderServersAnswer();
    void asksThreePropertiesOfEveryServer();
    void listsOnlyWhatCanBeRead_data();
    void listsOnlyWhatCanBeRead();
    void aServerFoundAgainReplacesItsRow();
    void aLostServerGoesAndNoOther();
    void aServerThatMovedIsKnownByItsNewPath();
    void anUnknownLostServerTakesEveryRow();
    void aServerLostWhileItIsReadIsListedAllTheSame();
    void aFailedListIsFilledByLaterSignals_data();
    void aFailedListIsFilledByLaterSignals();
    void hearsNoSignalBeforeTheFirstAnswer();
    void hearsOnlyTheService();
    void survivesARestartOfTheService();
    void listsFiveHundredServersAnnouncedAtOnce();
    void waitsForTheBusOnceAndNeverForTheService();
    void goesQuietlyInTheMiddle_data();
    void goesQuietlyInTheMiddle();
};

namespace {

const QStringList allCaps{"Artist", "Album", "DisplayName"};

}

void tst_UPnPServerList::listsAServerWithItsRoles()
{
    PluginFixture w;
    w.service.tree.addServer("uuid:1-a", "Kitchen \"NAS\"", allCaps);
    w.start();
    const OrkaRowsRoles root =
        w.rootRows({"path", "type", "containerPlayable", "title", "search", "icon"});
    QCOMPARE(root.rowsCount(), 1);
    QCOMPARE(rowsText(root),
        QString(R"([["upnp:/uuid:1-a?itemType=server",1,true,"Kitchen \"NAS\"",)"
                R"({"path":"upnp:/uuid:1-a?search=menu","title":"Search menu","type":1,)"
                R"("containerType":101},null]])"));
    QVERIFY(w.worker().serverList()->containsUdn("uuid:1-a"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    QCOMPARE(w.log.count("DEBUG CB_UPnP: getServers callback"), 1);
    // Written ahead of the conversion: empty whatever the server can do.
    QCOMPARE(w.log.count("DEBUG CB_UPnP: Search caps: ()"), 1);
}

void tst_UPnPServerList::rowsAppearInTheOrderServersAnswer()
{
    PluginFixture w;
    const QString a = w.service.tree.addServer("uuid:a", "A");
    const QString b = w.service.tree.addServer("uuid:b", "B");
    const QString c = w.service.tree.addServer("uuid:c", "C");
    w.service.hold({"Get"});
    w.start();
    for (const QString &server : {c, a, b}) {
        w.service.release({"Get", server});
        w.settle();
    }
    QCOMPARE(firstColumn(w.rootRows()), QString("C A B"));
}

void tst_UPnPServerList::asksThreePropertiesOfEveryServer()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:a", "A");
    w.start();
    QStringList calls;
    for (const FakeCall &call : w.service.calls())
        calls.append(call.text());
    const QString get = "Get " + server + " (" + names::device + ", ";
    QCOMPARE(calls,
        (QStringList{"GetServers " + names::managerPath + " ()", get + "FriendlyName)",
            get + "UDN)", get + "SearchCaps)"}));
}

void tst_UPnPServerList::listsOnlyWhatCanBeRead_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value"); // invalid: the read fails
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("caps"); // what the worker was told, "none" for nothing
    QTest::addColumn<QStringList>("errors");
    const QVariant fails;
    const QStringList quiet;
    const QString readable = R"([["A",null]])";
    const QString searchable =
        R"([["A",{"path":"upnp:/uuid:a?search=menu","title":"Search menu","type":1,"containerType":101}]])";
    QTest::newRow("all there") << "" << fails << searchable << "Artist,Album,DisplayName" << quiet;
    QTest::newRow("no UDN") << "UDN" << fails << "[]"
                            << "none"
                            << QStringList{"ERROR CB_UPnP: Fetching UDN failed: it failed"};
    QTest::newRow("no name") << "FriendlyName" << fails << "[]"
                             << "none"
                             << QStringList{
                                    "ERROR CB_UPnP: Fetching friendlyName failed: it failed"};
    QTest::newRow("no capabilities")
        << "SearchCaps" << fails << readable << "none"
        << QStringList{"ERROR CB_UPnP: Fetching search capabilities failed, assuming none"};
    QTest::newRow("empty capabilities")
        << "SearchCaps" << QVariant(QStringList()) << readable << "" << quiet;
    QTest::newRow("capabilities that are no list")
        << "SearchCaps" << QVariant(7) << readable << "" << quiet;
    QTest::newRow("everything") << "SearchCaps" << QVariant(QStringList{"*"}) << searchable << "*"
                                << quiet;
    QTest::newRow("a name that is a number")
        << "FriendlyName" << QVariant(42) << QString(searchable).replace("\"A\"", "\"42\"")
        << "Artist,Album,DisplayName" << quiet;
}

void tst_UPnPServerList::listsOnlyWhatCanBeRead()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QString, caps);
    PluginFixture w;
    w.service.tree.addServer("uuid:a", "A", allCaps);
    if (value.isValid())
        w.service.answer(
            {"Get", {}, property}, QVariantList{QVariant::fromValue(QDBusVariant(value))});
    else if (!property.isEmpty())
        w.service.fail({"Get", {}, property});
    w.start();
    QTEST(rowsText(w.rootRows({"title", "search"})), "rows");
    QTEST(w.log.lines("ERROR"), "errors");
    QCOMPARE(w.worker().hasSearchCaps("uuid:a"), caps != "none" && !caps.isEmpty());
    QCOMPARE(w.openWork(), 0);
}

void tst_UPnPServerList::aServerFoundAgainReplacesItsRow()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:a", "A", allCaps);
    w.service.tree.addServer("uuid:ab", "AB");
    w.start();
    w.service.tree.setProperty(server, "FriendlyName", "A again");
    w.service.tree.setProperty(server, "SearchCaps", QStringList());
    w.service.announceFound(server);
    w.settle();
    QCOMPARE(
        rowsText(w.rootRows({"title", "search"})), QString(R"([["AB",null],["A again",null]])"));
    QVERIFY(!w.worker().hasSearchCaps("uuid:a"));
}

void tst_UPnPServerList::aLostServerGoesAndNoOther()
{
    PluginFixture w;
    const QString one = w.service.tree.addServer("uuid:1", "One");
    const QString ten = w.service.tree.addServer("uuid:10", "Ten");
    w.start();
    w.service.lose(one);
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("Ten"));
    QVERIFY(!w.worker().serverList()->containsUdn("uuid:1"));
    QVERIFY(w.worker().serverList()->containsUdn("uuid:10"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    w.service.lose(ten);
    w.settle();
    QCOMPARE(w.rootRows().rowsCount(), 0);
}

void tst_UPnPServerList::aServerThatMovedIsKnownByItsNewPath()
{
    PluginFixture w;
    const QString oldPath =
        w.service.tree.addServer("uuid:1", "One", {}, names::serverPrefix + "3");
    const QString newPath =
        w.service.tree.addServer("uuid:1", "Moved", {}, names::serverPrefix + "4");
    w.start();
    QCOMPARE(firstColumn(w.rootRows()), QString("Moved"));
    w.askRows("/uuid:1", 0, 9);
    w.settle();
    QCOMPARE(w.service.calls({"ListChildren"}).value(0).path(), newPath);
    w.service.announceLost(oldPath);
    w.settle();
    QCOMPARE(w.log.count("ERROR CB_UPnP: Could not remove an UDN; server list out of sync."), 1);
    QVERIFY(w.worker().serverList()->containsUdn("uuid:1"));
}

void tst_UPnPServerList::anUnknownLostServerTakesEveryRow()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.start();
    w.service.announceLost(names::serverPrefix + "77");
    w.settle();
    QCOMPARE(w.log.count("ERROR CB_UPnP: Could not remove an UDN; server list out of sync."), 1);
    QCOMPARE(w.rootRows().rowsCount(), 0);
    QVERIFY(w.worker().serverList()->containsUdn("uuid:1"));
    w.service.announceFound(server);
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
}

void tst_UPnPServerList::aServerLostWhileItIsReadIsListedAllTheSame()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.service.hold({"Get"});
    w.start();
    w.service.announceLost(server);
    w.settle();
    QCOMPARE(w.log.count("ERROR CB_UPnP: Could not remove an UDN; server list out of sync."), 1);
    w.service.release();
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
    QVERIFY(w.worker().serverList()->containsUdn("uuid:1"));
}

void tst_UPnPServerList::aFailedListIsFilledByLaterSignals_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("line");
    const QString start = "ERROR CB_UPnP: Could not populate UPnP server list: ";
    QTest::newRow("an error") << "error" << start + "com.intel.dleyna.OperationFailed: it failed";
    QTest::newRow("another signature")
        << "signature" << start + "org.freedesktop.DBus.Error.InvalidSignature: ";
    QTest::newRow("no service") << "service"
                                << start + "org.freedesktop.DBus.Error.ServiceUnknown: ";
}

void tst_UPnPServerList::aFailedListIsFilledByLaterSignals()
{
    QFETCH(QString, fault);
    QFETCH(QString, line);
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    if (fault == "error")
        w.service.fail({"GetServers"});
    else if (fault == "signature")
        w.service.answer({"GetServers"}, QVariantList{QStringList{server}});
    else
        w.service.vanish();
    w.start();
    QCOMPARE(w.log.lines(line).size(), 1);
    QCOMPARE(w.rootRows().rowsCount(), 0);
    if (fault == "service") {
        w.service.comeBack();
        w.settle();
    }
    w.service.announceFound(server);
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
}

void tst_UPnPServerList::hearsNoSignalBeforeTheFirstAnswer()
{
    PluginFixture w;
    const QString early = w.service.tree.addServer("uuid:1", "One");
    w.service.hold({"GetServers"});
    w.start();
    w.service.announceFound(early);
    w.service.announceLost(early);
    w.settle();
    QCOMPARE(w.service.count({"Get"}), 0);
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    w.service.release();
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
}

void tst_UPnPServerList::hearsOnlyTheService()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.start();
    w.service.forgetCalls();
    QDBusConnection stranger = w.bus.open("stranger");
    for (const char *signal : {"FoundServer", "LostServer"}) {
        QDBusMessage message =
            QDBusMessage::createSignal(names::managerPath, names::manager, signal);
        stranger.send(message << QVariant::fromValue(QDBusObjectPath(server)));
    }
    stranger.call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
    w.settle();
    QCOMPARE(w.service.count({"Get"}), 0);
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
    PrivateBus::close("stranger");
}

void tst_UPnPServerList::survivesARestartOfTheService()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.start();
    w.service.vanish();
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
    w.service.comeBack();
    w.settle();
    w.service.tree.setProperty(server, "FriendlyName", "Reborn");
    w.service.announceFound(server);
    w.settle();
    QCOMPARE(firstColumn(w.rootRows()), QString("Reborn"));
}

void tst_UPnPServerList::listsFiveHundredServersAnnouncedAtOnce()
{
    PluginFixture w;
    w.start();
    w.log.setLevel(log4cplus::WARN_LOG_LEVEL);
    w.log.clear();
    for (int i = 0; i < 500; ++i) {
        w.service.announceFound(
            w.service.tree.addServer(QStringLiteral("uuid:%1").arg(i), "Server"));
    }
    w.settle();
    QCOMPARE(w.rootRows().rowsCount(), 500);
    QCOMPARE(w.log.lines().join('\n'), QString());
    QCOMPARE(w.openWork(), 0);
}

// One look-up of the service's owner, by the daemon, when the signals are connected; nothing else
// that a program would wait for.
void tst_UPnPServerList::waitsForTheBusOnceAndNeverForTheService()
{
    PluginFixture w;
    BusMonitor monitor(w.bus.address());
    const QString server = w.service.tree.addServer("uuid:1", "One", allCaps);
    const QString folder = w.service.tree.addContainer(server, "1", "Folder");
    w.service.tree.addTrack(folder, "2", "Track");
    w.start();
    w.askRows("/uuid:1/31?itemType=container", 0, 9);
    w.askData("/uuid:1/32");
    w.askRows("/uuid:1?search=title&query=x", 0, 9);
    w.askPrepare({"/uuid:1/31?itemType=container", "/uuid:1/32?itemType=track"});
    w.settle();
    orkaDBusConnection().asyncCall(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"));

    const QStringList calls = monitor.callsOf(orkaDBusConnection().baseService(), "ListNames");
    QCOMPARE(calls.filter("GetNameOwner"), QStringList{"GetNameOwner " + names::service});
    QVERIFY(calls
                .filter(QRegularExpression("^(NameHasOwner|StartServiceByName|ListActivatableNames|"
                                           "Introspect)"))
                .isEmpty());
    QCOMPARE(calls.filter("SearchObjectsEx").size(), 2);
}

void tst_UPnPServerList::goesQuietlyInTheMiddle_data()
{
    QTest::addColumn<QString>("held");
    QTest::newRow("before the first answer") << "GetServers";
    QTest::newRow("while servers are read") << "Get";
}

void tst_UPnPServerList::goesQuietlyInTheMiddle()
{
    QFETCH(QString, held);
    PluginFixture w;
    w.service.tree.addServer("uuid:1", "One");
    w.service.hold({held});
    w.start();
    QVERIFY(w.service.held() > 0);
    w.stop();
    w.service.release();
    w.settle();
    w.service.forgetRules();
    w.start();
    QCOMPARE(firstColumn(w.rootRows()), QString("One"));
}

QTEST_GUILESS_MAIN(tst_UPnPServerList)
#include "tst_UPnPServerList.moc"
