#include <playListHelper/PlayListHelper.h>

#include <QTest>

class tst_PlayListHelper : public QObject
{
    Q_OBJECT

private slots:
    void rowsOfWhatCanBePlayed();
    void nothingForTheRest_data();
    void nothingForTheRest();
};

namespace {
QVariantList menu(const QString &path)
{
    CMReply<OrkaRowsRoles> reply;
    const CMPath context = CMPath("upnp", "context").addParam("path", path);
    return PlayListHelper::playListRows(
        CMGetRowsRequest(context, 1, 1, -1, {"title", "icon", "path"}, reply));
}
} // namespace

void tst_PlayListHelper::rowsOfWhatCanBePlayed()
{
    for (const QString type : {"track", "container", "server"}) {
        const QString node = CMPath("upnp", "/uuid:1/a b").addParam("itemType", type).toEncoded();
        QStringList titles, paths;
        for (const QVariant &row : menu(node)) {
            const QVariantList values = row.toList();
            QCOMPARE(values.size(), 3);
            QVERIFY(!values[1].isValid());
            const auto path = values[2].value<CMPath>();
            titles.append(values[0].value<TrString>().toString());
            paths.append(path.withoutParams().toEncoded());
            QCOMPARE(path.param("path"), node);
        }
        QCOMPARE(titles, (QStringList{"Play now", "Play next", "Add to queue"}));
        QCOMPARE(paths,
            (QStringList{
                "upnp:playlist/playNow", "upnp:playlist/playNext", "upnp:playlist/addToQueue"}));
    }
    const auto title = menu("upnp:/uuid:1?itemType=track").first().toList().first();
    QCOMPARE(title.value<TrString>().context(), QByteArray("PlayListHelper"));
}

void tst_PlayListHelper::nothingForTheRest_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no kind") << "upnp:/uuid:1";
    QTest::newRow("another kind") << "upnp:/uuid:1?itemType=search";
    QTest::newRow("case") << "upnp:/uuid:1?itemType=Track";
    QTest::newRow("undecodable") << "upnp:/%?itemType=track";
    QTest::newRow("none") << "";
}

void tst_PlayListHelper::nothingForTheRest()
{
    QFETCH(QString, path);
    QVERIFY(menu(path).isEmpty());
}

QTEST_APPLESS_MAIN(tst_PlayListHelper)
#include "tst_PlayListHelper.moc"
