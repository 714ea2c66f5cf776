#include "PluginFixture.h"
#include "Table.h"
#include "UPnPServerList.h"

#include <QProcess>
#include <QRegularExpression>

/// The rows of the worker's root as servers come, go and answer badly.
class tst_UPnPServerList : public QObject
{
    Q_OBJECT

private slots:
    void listsAServerWithItsRoles();
    void rowsAppearInTheOrderServersAnswer();
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
    void listsFiveHundredServersAnnouncedAtOnce();
    void waitsForTheBusOnceAndNeverForTheService();
};

namespace {

const QStringList allCaps{"Artist", "Album", "DisplayName"};
const QString outOfSync = "ERROR CB_UPnP: Could not remove an UDN; server list out of sync.";

/// A server "uuid:1" that isn't asked for yet.
struct World : PluginFixture
{
    QString server = tree.addServer("uuid:1", "One", allCaps);

    QString titles() { return firstColumn(rootRows()); }
    bool isKnown(const QString &udn) { return worker().serverList()->containsUdn(udn); }
};

} // namespace

void tst_UPnPServerList::listsAServerWithItsRoles()
{
    World w;
    w.tree.setProperty(w.server, "FriendlyName", "Kitchen \"NAS\"");
    w.start();
    const OrkaRowsRoles root =
        w.rootRows({"path", "type", "containerPlayable", "title", "search", "icon"});
    QCOMPARE(root.rowsCount(), 1);
    QCOMPARE(rowsText(root),
        R"([["upnp:/uuid:1?itemType=server",1,true,"Kitchen \"NAS\"",)"
        R"({"path":"upnp:/uuid:1?search=menu","title":"Search menu","type":1,)"
        R"("containerType":101},null]])");
    QVERIFY(w.isKnown("uuid:1"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    QCOMPARE(w.log.count("DEBUG CB_UPnP: getServers callback"), 1);
    // Written ahead of the conversion: empty whatever the server can do.
    QCOMPARE(w.log.count("DEBUG CB_UPnP: Search caps: ()"), 1);
    const QString get = "\nGet " + w.server + " (" + names::device + ", ";
    QCOMPARE(w.service.callsText(),
        "GetServers " + names::managerPath + " ()" + get + "FriendlyName)" + get + "UDN)" + get
            + "SearchCaps)");
    w.announceLost(w.server);
    w.stop();
    QStringList entered = w.log.lines("TRACE CB_UPnP: Enter UPnPServerList::");
    entered.replaceInStrings("TRACE CB_UPnP: Enter UPnPServerList::", "");
    QCOMPARE(entered.join(""),
        "UPnPServerList: on_upnpManager_getServers: on_upnpManager_foundServer: on_addServer: "
        "on_upnpManager_lostServer: ~UPnPServerList: terminating UPnPServerList");
}

void tst_UPnPServerList::rowsAppearInTheOrderServersAnswer()
{
    World w;
    const QString b = w.tree.addServer("uuid:b", "B");
    const QString c = w.tree.addServer("uuid:c", "C");
    w.service.hold({"Get"});
    w.start();
    for (const QString &server : {c, w.server, b})
        w.release({"Get", server});
    QCOMPARE(w.titles(), "C One B");
}

void tst_UPnPServerList::listsOnlyWhatCanBeRead_data()
{
    // An invalid value: the read fails.
    columns<QString, QVariant, QString, bool, QString>(
        "property", "value", "rows", "searches", "errors");
    const QVariant fails;
    const QString readable = R"([["One",null]])";
    const QString searchable = R"([["%1",{"path":"upnp:/uuid:1?search=menu","title":"Search menu",)"
                               R"("type":1,"containerType":101}]])";
    const QString error = "ERROR CB_UPnP: Fetching ";
    row("no UDN", "UDN", fails, "[]", false, error + "UDN failed: it failed");
    row("no name", "FriendlyName", fails, "[]", false, error + "friendlyName failed: it failed");
    row("no capabilities", "SearchCaps", fails, readable, false,
        error + "search capabilities failed, assuming none");
    row("empty capabilities", "SearchCaps", QVariant(QStringList()), readable, false, "");
    row("capabilities that are no list", "SearchCaps", QVariant(7), readable, false, "");
    row("everything", "SearchCaps", QVariant(QStringList{"*"}), searchable.arg("One"), true, "");
    row("a name that is a number", "FriendlyName", QVariant(42), searchable.arg("42"), true, "");
}

void tst_UPnPServerList::listsOnlyWhatCanBeRead()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    World w;
    if (value.isValid())
        w.service.answer({"Get", {}, property}, propertyValue(value));
    else
        w.service.fail({"Get", {}, property});
    w.start();
    QTEST(rowsText(w.rootRows({"title", "search"})), "rows");
    QTEST(w.log.lines("ERROR").join('\n'), "errors");
    QTEST(w.worker().hasSearchCaps("uuid:1"), "searches");
}

void tst_UPnPServerList::aServerFoundAgainReplacesItsRow()
{
    World w;
    w.tree.addServer("uuid:10", "Ten");
    w.start();
    w.tree.setProperty(w.server, "FriendlyName", "One again");
    w.tree.setProperty(w.server, "SearchCaps", QStringList());
    // First it doesn't say what it can do, which leaves what it said before; then: nothing.
    w.service.fail({"Get", {}, "SearchCaps", 1});
    for (const bool canSearch : {true, false}) {
        w.announceFound(w.server);
        QCOMPARE(rowsText(w.rootRows({"title", "search"})), R"([["Ten",null],["One again",null]])");
        QCOMPARE(w.worker().hasSearchCaps("uuid:1"), canSearch);
    }
}

void tst_UPnPServerList::aLostServerGoesAndNoOther()
{
    World w;
    w.tree.addServer("uuid:10", "Ten");
    w.start();
    w.service.lose(w.server);
    w.settle();
    QCOMPARE(w.titles(), "Ten");
    QVERIFY(!w.isKnown("uuid:1"));
    QVERIFY(w.isKnown("uuid:10"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_UPnPServerList::aServerThatMovedIsKnownByItsNewPath()
{
    World w;
    const QString newPath = w.tree.addServer("uuid:1", "Moved", {}, names::serverPrefix + "4");
    w.start();
    QCOMPARE(w.titles(), "Moved");
    w.settled(w.askRows("/uuid:1", 0, 9));
    QCOMPARE(w.service.calls({"ListChildren"}).value(0).path(), newPath);
    w.announceLost(w.server);
    QCOMPARE(w.log.count(outOfSync), 1);
    QVERIFY(w.isKnown("uuid:1"));
}

void tst_UPnPServerList::anUnknownLostServerTakesEveryRow()
{
    World w;
    w.start();
    w.announceLost(names::serverPrefix + "77");
    QCOMPARE(w.log.count(outOfSync), 1);
    QCOMPARE(w.rootRows().rowsCount(), 0);
    QVERIFY(w.isKnown("uuid:1"));
    w.announceFound(w.server);
    QCOMPARE(w.titles(), "One");
}

void tst_UPnPServerList::aServerLostWhileItIsReadIsListedAllTheSame()
{
    World w;
    w.service.hold({"Get"});
    w.start();
    w.announceLost(w.server);
    QCOMPARE(w.log.count(outOfSync), 1);
    w.release();
    QCOMPARE(w.titles(), "One");
    QVERIFY(w.isKnown("uuid:1"));
}

void tst_UPnPServerList::aFailedListIsFilledByLaterSignals_data()
{
    columns<QVariantList, QString>("answer", "error"); // no answer: no service
    row("an error", QVariantList{"error"}, "com.intel.dleyna.OperationFailed: it failed");
    row("another signature", QVariantList{QStringList{"/a"}},
        "org.freedesktop.DBus.Error.InvalidSignature: ");
    row("no service", QVariantList(), "org.freedesktop.DBus.Error.ServiceUnknown: ");
}

void tst_UPnPServerList::aFailedListIsFilledByLaterSignals()
{
    QFETCH(QVariantList, answer);
    QFETCH(QString, error);
    World w;
    if (answer.isEmpty())
        w.service.vanish();
    else if (answer == QVariantList{"error"})
        w.service.fail({"GetServers"});
    else
        w.service.answer({"GetServers"}, answer);
    w.start();
    const QString start = "ERROR CB_UPnP: Could not populate UPnP server list: ";
    QCOMPARE(w.log.lines(start + error).size(), 1);
    QCOMPARE(w.rootRows().rowsCount(), 0);
    if (answer.isEmpty())
        w.service.comeBack();
    w.settle();
    w.announceFound(w.server);
    QCOMPARE(w.titles(), "One");
}

void tst_UPnPServerList::hearsNoSignalBeforeTheFirstAnswer()
{
    World w;
    w.service.hold({"GetServers"});
    w.start();
    w.service.announceFound(w.server);
    w.announceLost(w.server);
    QCOMPARE(w.service.count({"Get"}), 0);
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    w.release();
    QCOMPARE(w.titles(), "One");
    // Nor anything when it goes first; the address sanitizer sees what it would leave behind.
    w.stop();
    w.start();
    w.stop();
    w.release();
}

void tst_UPnPServerList::hearsOnlyTheService()
{
    World w;
    w.start();
    w.service.forgetCalls();
    QDBusConnection stranger = w.bus.open("stranger");
    for (const char *signal : {"FoundServer", "LostServer"}) {
        QDBusMessage message =
            QDBusMessage::createSignal(names::managerPath, names::manager, signal);
        stranger.send(message << QVariant::fromValue(QDBusObjectPath(w.server)));
    }
    stranger.call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
    w.settle();
    QCOMPARE(w.service.count({"Get"}), 0);
    QCOMPARE(w.titles(), "One");
    PrivateBus::close("stranger");
}

void tst_UPnPServerList::listsFiveHundredServersAnnouncedAtOnce()
{
    World w;
    w.start();
    w.log.setLevel(log4cplus::WARN_LOG_LEVEL);
    w.log.clear();
    for (int i = 0; i < 500; ++i)
        w.service.announceFound(w.tree.addServer(QStringLiteral("uuid:n%1").arg(i), "Server"));
    w.settle();
    QCOMPARE(w.rootRows().rowsCount(), 501);
    QCOMPARE(w.log.lines().join('\n'), "");
}

// One look-up of the service's owner, by the daemon, when the signals are connected; nothing else
// that a program would wait for.
void tst_UPnPServerList::waitsForTheBusOnceAndNeverForTheService()
{
    World w;
    QProcess monitor;
    monitor.start("dbus-monitor", {"--address", w.bus.address(), "type=method_call"});
    QVERIFY2(monitor.waitForReadyRead(), "dbus-monitor comes with the package dbus-bin.");
    w.tree.addTrack(w.server, "2", "Track");
    w.start();
    w.askRows("/uuid:1?itemType=server", 0, 9);
    w.askData("/uuid:1/32");
    w.askRows("/uuid:1?search=title&query=x", 0, 9);
    w.settled(w.askPrepare({"/uuid:1?itemType=server", "/uuid:1/32?itemType=track"}));
    orkaDBusConnection().asyncCall(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"));

    QByteArray seen;
    while (!seen.contains("member=ListNames") && monitor.waitForReadyRead())
        seen += monitor.readAll();
    monitor.terminate();
    monitor.waitForFinished();
    QStringList calls = QString::fromUtf8(seen).split("method call");
    calls = calls.filter("sender=" + orkaDBusConnection().baseService() + ' ');
    const QStringList owners = calls.filter("member=GetNameOwner");
    QCOMPARE(owners.size(), 1);
    QVERIFY2(owners[0].contains('"' + names::service + '"'), qPrintable(owners[0]));
    QCOMPARE(calls.filter(QRegularExpression("member=(NameHasOwner|StartServiceByName|"
                                             "ListActivatableNames|Introspect)")),
        QStringList());
    QCOMPARE(calls.filter("member=SearchObjectsEx").size(), 2);
}

QTEST_GUILESS_MAIN(tst_UPnPServerList)
#include "tst_UPnPServerList.moc"
