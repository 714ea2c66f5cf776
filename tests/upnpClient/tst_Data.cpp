#include "PluginFixture.h"
#include "Table.h"

/// Roles of one node.
class tst_Data : public QObject
{
    Q_OBJECT

private slots:
    void givesTheRolesInTheOrderAsked();
    void offersASearchOnlyWhereItBelongs_data();
    void offersASearchOnlyWhereItBelongs();
    void saysWhyTheServiceRefused_data();
    void saysWhyTheServiceRefused();
};

void tst_Data::givesTheRolesInTheOrderAsked()
{
    FolderFixture w;
    w.addTracks(1);
    w.start();
    const auto data =
        w.askData("/uuid:1/7430?itemType=track", {"type", "icon", "title", "no such role", "path"});
    w.service.hold({"GetAll", w.folder});
    const auto other = w.settled(w.askData("/uuid:1/31"));
    QCOMPARE(data.outcome(), "value");
    QCOMPARE(orkaToJson(data.value()), R"([2,null,"0",null,"upnp:/uuid:1/7430?itemType=track"])");
    QCOMPARE(w.service.calls({"GetAll"})[0].arguments(), QVariantList{""});
    QCOMPARE(other.outcome(), "pending");
    w.stop();
    QCOMPARE(other.outcome(), "dropped");
}

void tst_Data::offersASearchOnlyWhereItBelongs_data()
{
    columns<QVariant, QString, QString>("caps", "path", "search");
    const QVariant some = QStringList{"Artist"};
    const QString menu = R"({"path":"upnp:%1?search=menu","type":1,"containerType":101})";
    row("server", some, "/uuid:1?itemType=server", menu.arg("/uuid:1"));
    row("folder", some, "/uuid:1/31?itemType=container&x=y", menu.arg("/uuid:1/31"));
    row("track", some, "/uuid:1/7430", "null");
    row("server that can't search", QVariant(QStringList()), "/uuid:1", "null");
    row("server that didn't say", QVariant(), "/uuid:1/31", "null");
}

void tst_Data::offersASearchOnlyWhereItBelongs()
{
    QFETCH(QVariant, caps);
    QFETCH(QString, path);
    QFETCH(QString, search);
    FolderFixture w(caps);
    w.addTracks(1);
    w.start();
    QCOMPARE(orkaToJson(w.settled(w.askData(path, {"search"})).value()), "[" + search + "]");
}

void tst_Data::saysWhyTheServiceRefused_data()
{
    columns<QString, FakeReply, QString>("path", "answer", "message");
    const FakeReply odd = FakeReply::error("a.b", "%1 %2");
    row("no such object", "/uuid:1/77", FakeReply(), "Browse operation failed: No such object");
    row("no hex", "/uuid:1/xyz", FakeReply(), "object path is badly formed.");
    row("an object of an unknown server", "/uuid:2/31", FakeReply(), "");
    row("another signature", "/uuid:1", FakeReply{{QStringList{"a"}}}, "");
    row("a message that looks like a format", "/uuid:1/31", odd, "%1 %2");
}

void tst_Data::saysWhyTheServiceRefused()
{
    QFETCH(QString, path);
    QFETCH(FakeReply, answer);
    QFETCH(QString, message);
    FolderFixture w;
    w.start();
    if (answer.isError() || !answer.values.isEmpty())
        w.service.answer({"GetAll"}, answer);
    const QString outcome = w.settled(w.askData(path)).outcome();
    const QString start = "error internal: Failed to retrieve content: ";
    QVERIFY2(outcome.startsWith(start + message), qPrintable(outcome));
    QCOMPARE(w.log.lines("ERROR"),
        QStringList{"ERROR CB_UPnP: Fetching properties failed: " + outcome.mid(start.size())});
}

QTEST_GUILESS_MAIN(tst_Data)
#include "tst_Data.moc"
