#include "PluginFixture.h"

#include <QTest>

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
    void answersAreIndependentOfEachOther();
};

void tst_Data::givesTheRolesInTheOrderAsked()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.service.tree.addTrack(server, "t", "Song", {{"Artist", "Somebody"}});
    w.start();
    const auto data =
        w.askData("/uuid:1/74?itemType=track", {"type", "icon", "title", "no such role", "path"});
    w.settle();
    QCOMPARE(data.outcome(), QString("value"));
    QCOMPARE(orkaToJson(data.value()),
        QString(R"([2,null,"Song",null,"upnp:/uuid:1/74?itemType=track"])"));
    QCOMPARE(w.service.count({"GetAll"}), 1);
    QCOMPARE(w.service.calls({"GetAll"})[0].arguments(), QVariantList{""});
    QCOMPARE(w.openWork(), 0);
}

void tst_Data::offersASearchOnlyWhereItBelongs_data()
{
    QTest::addColumn<QVariant>("caps");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("search");
    const QVariant some = QStringList{"Artist"};
    const QString menu = R"({"path":"upnp:%1?search=menu","type":1,"containerType":101})";
    QTest::newRow("server") << some << "/uuid:1?itemType=server" << menu.arg("/uuid:1");
    QTest::newRow("folder") << some << "/uuid:1/31?itemType=container&x=y"
                            << menu.arg("/uuid:1/31");
    QTest::newRow("track") << some << "/uuid:1/32"
                           << "null";
    QTest::newRow("server that can't search") << QVariant(QStringList()) << "/uuid:1"
                                              << "null";
    QTest::newRow("server that didn't say") << QVariant() << "/uuid:1/31"
                                            << "null";
}

void tst_Data::offersASearchOnlyWhereItBelongs()
{
    QFETCH(QVariant, caps);
    QFETCH(QString, path);
    QFETCH(QString, search);
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One", caps);
    w.service.tree.addContainer(server, "1", "Folder");
    w.service.tree.addTrack(server, "2", "Song");
    w.start();
    const auto data = w.askData(path, {"search"});
    w.settle();
    QCOMPARE(orkaToJson(data.value()), "[" + search + "]");
}

void tst_Data::saysWhyTheServiceRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<QString>("message");
    QTest::newRow("no such object")
        << "/uuid:1/77" << QVariantList() << "Browse operation failed: No such object";
    QTest::newRow("no hex") << "/uuid:1/xyz" << QVariantList() << "object path is badly formed.";
    QTest::newRow("an object of an unknown server") << "/uuid:2/31" << QVariantList() << "";
    QTest::newRow("another signature") << "/uuid:1" << QVariantList{QStringList{"a"}} << "";
    QTest::newRow("a message that looks like a format")
        << "/uuid:1/31" << QVariantList{"%1 %2"} << "";
}

void tst_Data::saysWhyTheServiceRefused()
{
    QFETCH(QString, path);
    QFETCH(QVariantList, answer);
    QFETCH(QString, message);
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    w.service.tree.addContainer(server, "1", "Folder");
    w.start();
    if (!answer.isEmpty() && answer[0].type() == QVariant::String) {
        message = answer[0].toString();
        w.service.fail({"GetAll"}, message);
    } else if (!answer.isEmpty()) {
        w.service.answer({"GetAll"}, answer);
    }
    const auto data = w.askData(path);
    w.settle();
    const QString start = "error internal: Failed to retrieve content: ";
    QVERIFY2(data.outcome().startsWith(start + message), qPrintable(data.outcome()));
    const QString given = data.outcome().mid(start.size());
    QCOMPARE(
        w.log.lines("ERROR"), QStringList{"ERROR CB_UPnP: Fetching properties failed: " + given});
    QCOMPARE(w.openWork(), 0);
}

void tst_Data::answersAreIndependentOfEachOther()
{
    PluginFixture w;
    const QString server = w.service.tree.addServer("uuid:1", "One");
    const QString a = w.service.tree.addTrack(server, "a", "A");
    const QString b = w.service.tree.addTrack(server, "b", "B");
    w.start();
    w.service.hold({"GetAll"});
    const auto first = w.askData("/uuid:1/61");
    const auto second = w.askData("/uuid:1/62");
    w.settle();
    w.service.release({"GetAll", b});
    w.settle();
    QCOMPARE(first.outcome(), QString("nothing"));
    QCOMPARE(orkaToJson(second.value()), QString("[\"B\"]"));
    w.service.release({"GetAll", a});
    w.settle();
    QCOMPARE(orkaToJson(first.value()), QString("[\"A\"]"));
}

QTEST_GUILESS_MAIN(tst_Data)
#include "tst_Data.moc"
