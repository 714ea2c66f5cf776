#include "NetworkInfo.h"
#include "PluginFixture.h"
#include "Table.h"

#include <QRegularExpression>

/// Pictures by way of the device's own proxy.
class tst_AlbumArt : public QObject
{
    Q_OBJECT

private slots:
    void init() { publishNetwork({}); }
    void rewritesPlainHttp_data();
    void rewritesPlainHttp();
    void takesTheFirstAddressThereIs_data();
    void takesTheFirstAddressThereIs();
    void followsTheNetwork();
};

namespace {

const QString info = "INFO CB_UPnP: CB_UPNP: resource urlout = ";
const QString leave = "DEBUG CB_UPnP: Leave CMUPnPWorker::handleAlbumArtUrl: ";

} // namespace

void tst_AlbumArt::rewritesPlainHttp_data()
{
    columns<QString, QString>("url", "encoded"); // empty: left alone
    row("port and path", "http://192.0.2.9:8200/AlbumArt/1-2.jpg?a=b",
        "aHR0cDovLzE5Mi4wLjIuOTo4MjAwL0FsYnVtQXJ0LzEtMi5qcGc/YT1i");
    row("padding", "http://a/b", "aHR0cDovL2EvYg==");
    row("UTF-8", QString::fromUtf8("http://a/ü>"), "aHR0cDovL2Evw7w+");
    row("nothing but the scheme", "http://", "aHR0cDovLw==");
    for (const char *url : {"https://a/b", "HTTP://a/b", "http:/a", "", " http://a/b"})
        row(*url ? url : "nothing", url, "");
}

void tst_AlbumArt::rewritesPlainHttp()
{
    QFETCH(QString, url);
    QFETCH(QString, encoded);
    PluginFixture w;
    w.start();
    publishNetwork({"192.0.2.1"});
    w.settle();
    w.log.clear();
    const QString proxied = "https://192.0.2.1/proxy/" + encoded;
    const bool rewritten = !encoded.isEmpty();
    QCOMPARE(w.worker().handleAlbumArtUrl(url), rewritten ? proxied : url);
    const QString line = rewritten
        ? leave + "Got HTTP album art URL, using reverse proxy to serve: " + proxied
        : info + url;
    QCOMPARE(w.log.lines(), QStringList{line});
}

void tst_AlbumArt::takesTheFirstAddressThereIs_data()
{
    columns<QStringList, QStringList, QList<QStringList>, QString>(
        "wired", "wireless", "softAps", "list"); // as the log shows it
    using Aps = QList<QStringList>;
    const QStringList none;
    row("all kinds", QStringList{"w1", "w2"}, QStringList{"l1"}, Aps{{"s1", "s2"}, {}, {"s3"}},
        "(w1, w2, l1, s1, s2, s3)");
    row("wireless", none, QStringList{"l1", "l2"}, Aps{{"s1"}}, "(l1, l2, s1)");
    row("an access point of its own", none, none, Aps{{"s1"}}, "(s1)");
    row("an IPv6 address, as it is", QStringList{"2001:db8::1"}, none, Aps(), "(2001:db8::1)");
    row("none", none, none, Aps{{}}, "");
}

void tst_AlbumArt::takesTheFirstAddressThereIs()
{
    QFETCH(QStringList, wired);
    QFETCH(QStringList, wireless);
    QFETCH(QList<QStringList>, softAps);
    QFETCH(QString, list);
    PluginFixture w;
    w.start();
    w.log.clear();
    publishNetwork(wired, wireless, softAps);
    w.settle();
    QStringList lines{"TRACE CB_UPnP: Enter CMUPnPWorker::on_networkInfo_changed: ",
        "INFO CB_UPnP: " + CMValueStore::value(OrkaNetworkInfoPath()).toJsonString()};
    if (!list.isEmpty())
        lines.append("INFO CB_UPnP: Updating IP addr list: " + list);
    QCOMPARE(w.log.lines(), lines);
    const QString first = list.mid(1).section(QRegularExpression("[,)]"), 0, 0);
    QCOMPARE(w.worker().handleAlbumArtUrl("http://a/b"),
        first.isEmpty() ? "http://a/b" : "https://" + first + "/proxy/aHR0cDovL2EvYg==");
    const QString fallback = leave + "No IP Address, falling back on original URL";
    QCOMPARE(w.log.count(fallback), first.isEmpty() ? 1 : 0);
}

void tst_AlbumArt::followsTheNetwork()
{
    publishNetwork({"old"});
    FolderFixture w;
    w.addTracks(1, {{"AlbumArtURL", "http://a/b"}});
    w.start();
    const auto host = [&w] {
        w.settle();
        const auto rows = w.settled(w.askRows("/uuid:1/31", 0, 0, {"icon"}));
        return firstColumn(rows.value()).section('/', 2, 2);
    };
    QCOMPARE(host(), "old"); // what was published before the worker came
    publishNetwork({"new"}, {"old"});
    QCOMPARE(host(), "new");
    publishNetwork({});
    QCOMPARE(host(), "a");
    publishNetwork({}, {"back"});
    QCOMPARE(host(), "back");
    publishNetwork({"back"});
    w.settle();
    // Said again of a list that is the same, and not of one that has become empty.
    const QString start = "INFO CB_UPnP: Updating IP addr list: ";
    QCOMPARE(w.log.lines(start).join(' ').remove(start), "(old) (new, old) (back) (back)");
}

QTEST_GUILESS_MAIN(tst_AlbumArt)
#include "tst_AlbumArt.moc"
