#include <playListHelper/PlayListHelper.h>

#include <QTest>

class tst_PlayListHelper : public QObject
{
    Q_OBJECT

private slots:
    void offersToPlayWhatCanBePlayed();
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

void tst_PlayListHelper::offersToPlayWhatCanBePlayed()
{
    for (const char *type : {"track", "container", "server"}) {
        const CMPath node = CMPath("upnp", "/uuid:1/a b").addParam("itemType", type);
        QVariantList expected;
        const auto add = [&](const char *title, const QString &base) {
            const CMPath path = CMPath("upnp", base).addParam("path", node.toEncoded());
            expected.append(QVariant(QVariantList{title, QVariant(), QVariant::fromValue(path)}));
        };
        add("Play now", "playlist/playNow");
        add("Play next", "playlist/playNext");
        add("Add to queue", "playlist/addToQueue");
        QCOMPARE(orkaToJson(menu(node.toEncoded())), orkaToJson(expected));
    }
    const QVariant title = menu("upnp:/uuid:1?itemType=track").first().toList().first();
    QCOMPARE(title.value<TrString>().context(), "PlayListHelper");

    for (const char *other : {"upnp:/uuid:1", "upnp:/uuid:1?itemType=search",
             "upnp:/uuid:1?itemType=Track", "upnp:/%?itemType=track", ""})
        QVERIFY2(menu(other).isEmpty(), other);
}

QTEST_APPLESS_MAIN(tst_PlayListHelper)
#include "tst_PlayListHelper.moc"
