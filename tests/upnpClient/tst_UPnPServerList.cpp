#include "PluginFixture.h"
#include "UPnPServerList.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

/// The rows of the worker's root as servers come, go and answer badly.
class tst_UPnPServerList : public QObject
{
    Q_OBJECT

private slots:
    void listsAServerWithItsRoles();
    void rowsAppearInTheOrderServersAnswer();
    void listsOnlyWhatCanBeRead();
    void aServerFoundAgainReplacesItsRow();
    void aLostServerGoesAndNoOther();
    void aServerThatMovedIsKnownByItsNewPath();
    void aServerLostWhileItIsReadIsListedAllTheSame();
    void aFailedListIsFilledByLaterSignals();
    void hearsNoSignalBeforeTheFirstAnswerAndOnlyTheServices();
    void asksForTheOwnerOnceAndNothingElse();
};

namespace {

const QString outOfSync = "ERROR CB_UPnP: Could not remove an UDN; server list out of sync.";

/// A server "uuid:1" that isn't asked for yet.
struct World : PluginFixture
{
    QString server = tree.addServer("uuid:1", "One", QStringList{"Artist", "DisplayName"});

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
    QCOMPARE(rowsText(root),
        R"([["upnp:/uuid:1?itemType=server",1,true,"Kitchen \"NAS\"",)"
        R"({"path":"upnp:/uuid:1?search=menu","title":"Search menu","type":1,)"
        R"("containerType":101},null]])");
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    QCOMPARE(w.log.count("DEBUG CB_UPnP: getServers callback"), 1);
    // Written ahead of the conversion: empty whatever the server can do.
    QCOMPARE(w.log.count("DEBUG CB_UPnP: Search caps: ()"), 1);
    const QString get = "\nGet " + w.server + " (" + names::device + ", ";
    QCOMPARE(w.service.callsText(),
        "GetServers " + names::managerPath + " ()" + get + "FriendlyName)" + get + "UDN)" + get
            + "SearchCaps)");
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

void tst_UPnPServerList::listsOnlyWhatCanBeRead()
{
    // An invalid value: the read fails.
    const auto listed = [](const QString &property, const QVariant &value) {
        World w;
        if (value.isValid())
            w.service.answer({"Get", {}, property}, propertyValue(value));
        else
            w.service.fail({"Get", {}, property});
        w.start();
        return firstColumn(w.rootRows()) + (w.worker().hasSearchCaps("uuid:1") ? " searches" : "")
            + (rowsText(w.rootRows({"search"})).contains("search=menu") ? " has a menu" : "")
            + w.log.lines("ERROR").join("\n").remove("ERROR CB_UPnP: Fetching");
    };
    QCOMPARE(listed("UDN", QVariant()), " UDN failed: it failed");
    QCOMPARE(listed("FriendlyName", QVariant()), " friendlyName failed: it failed");
    QCOMPARE(listed("FriendlyName", 42), "42 searches has a menu");
    QCOMPARE(listed("SearchCaps", QVariant()), "One search capabilities failed, assuming none");
    QCOMPARE(listed("SearchCaps", QStringList()), "One");
    QCOMPARE(listed("SearchCaps", 7), "One");
    QCOMPARE(listed("SearchCaps", QStringList{"*"}), "One searches has a menu");
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
    QVERIFY(!w.isKnown("uuid:1") && w.isKnown("uuid:10"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
    // One that isn't known takes every row, and no record.
    w.announceLost(names::serverPrefix + "77");
    QCOMPARE(w.log.count(outOfSync), 1);
    QCOMPARE(w.rootRows().rowsCount(), 0);
    QVERIFY(w.isKnown("uuid:10"));
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

void tst_UPnPServerList::aFailedListIsFilledByLaterSignals()
{
    const QString start = "ERROR CB_UPnP: Could not populate UPnP server list: ";
    for (const char *fault : {"fails", "other signature", "absent"}) {
        World w;
        if (*fault == 'f')
            w.service.fail({"GetServers"});
        else if (*fault == 'o')
            w.service.answer({"GetServers"}, QVariantList{QStringList{"/a"}});
        else
            w.service.vanish();
        w.start();
        QCOMPARE(w.log.lines(start).size(), 1);
        QCOMPARE(w.rootRows().rowsCount(), 0);
        if (*fault == 'a')
            w.service.comeBack();
        w.settle();
        w.announceFound(w.server);
        QCOMPARE(w.titles(), "One");
    }
}

void tst_UPnPServerList::hearsNoSignalBeforeTheFirstAnswerAndOnlyTheServices()
{
    World w;
    w.service.hold({"GetServers"});
    w.start();
    w.stop(); // the address sanitizer sees what it would leave behind
    w.start();
    w.service.announceFound(w.server);
    w.announceLost(w.server);
    QCOMPARE(w.service.count({"Get"}), 0);
    w.release();
    QCOMPARE(w.titles(), "One");
    QCOMPARE(w.log.lines("ERROR"), QStringList());

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

// One question for the service's owner, to the daemon; nothing that a program would wait for.
void tst_UPnPServerList::asksForTheOwnerOnceAndNothingElse()
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
