#include "PluginFixture.h"

#include <QRegularExpression>
#include <QTest>

/// Pictures by way of the device's own proxy.
class tst_AlbumArt : public QObject
{
    Q_OBJECT

private slots:
    void init() { CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaValue()); }
    void rewritesPlainHttp_data();
    void rewritesPlainHttp();
    void leavesHttpAloneWithoutAnAddress();
    void takesTheFirstAddressThereIs_data();
    void takesTheFirstAddressThereIs();
    void followsTheNetwork();
};

namespace {

const QString info = "INFO CB_UPnP: CB_UPNP: resource urlout = ";
const QString leave = "DEBUG CB_UPnP: Leave CMUPnPWorker::handleAlbumArtUrl: ";

template<typename Interface>
Interface withAddresses(const QStringList &ips)
{
    OrkaList<OrkaNetworkAddress> list;
    for (const QString &ip : ips) {
        OrkaNetworkAddress address;
        address.setIp(ip);
        list.append(address);
    }
    Interface interface;
    interface.setAddresses(list);
    return interface;
}

/// Addresses as "a,b"; one soft access point an entry.
OrkaValue network(const QString &wired, const QString &wireless, const QStringList &softAps)
{
    const auto split = [](const QString &ips) {
        return ips.split(',', Qt::SkipEmptyParts);
    };
    OrkaList<OrkaNetworkSoftAp> aps;
    for (const QString &ips : softAps)
        aps.append(withAddresses<OrkaNetworkSoftAp>(split(ips)));
    OrkaNetworkSoftApInterface softAp;
    softAp.setAps(aps);
    OrkaNetworkInfo network;
    network.setWired(withAddresses<OrkaNetworkWiredInterface>(split(wired)));
    network.setWireless(withAddresses<OrkaNetworkWirelessInterface>(split(wireless)));
    network.setSoftAp(softAp);
    OrkaValue value;
    value.setNetworkInfo(network);
    return value;
}

void publish(PluginFixture *w, const OrkaValue &value)
{
    CMValueStore::setValue(OrkaNetworkInfoPath(), value);
    w->settle();
}

} // namespace

void tst_AlbumArt::rewritesPlainHttp_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("encoded"); // empty: left alone
    QTest::newRow("port and path") << "http://192.0.2.9:8200/AlbumArt/1-2.jpg?a=b"
                                   << "aHR0cDovLzE5Mi4wLjIuOTo4MjAwL0FsYnVtQXJ0LzEtMi5qcGc/YT1i";
    QTest::newRow("padding") << "http://a/b"
                             << "aHR0cDovL2EvYg==";
    QTest::newRow("UTF-8") << QString::fromUtf8("http://a/ü>") << "aHR0cDovL2Evw7w+";
    QTest::newRow("nothing but the scheme") << "http://"
                                            << "aHR0cDovLw==";
    for (const char *url : {"https://a/b", "HTTP://a/b", "Http://a/b", "http:/a", "ftp://a", "",
             " http://a/b", "file:///etc/passwd"})
        QTest::newRow(*url ? url : "nothing") << url << "";
}

void tst_AlbumArt::rewritesPlainHttp()
{
    QFETCH(QString, url);
    QFETCH(QString, encoded);
    PluginFixture w;
    w.start();
    publish(&w, network("192.0.2.1", "", {}));
    w.log.clear();
    const QString proxied = "https://192.0.2.1/proxy/" + encoded;
    const bool rewritten = !encoded.isEmpty();
    QCOMPARE(w.worker().handleAlbumArtUrl(url), rewritten ? proxied : url);
    const QString line = rewritten
        ? leave + "Got HTTP album art URL, using reverse proxy to serve: " + proxied
        : info + url;
    QCOMPARE(w.log.lines(), QStringList{line});
}

void tst_AlbumArt::leavesHttpAloneWithoutAnAddress()
{
    PluginFixture w;
    w.start();
    w.log.clear();
    QCOMPARE(w.worker().handleAlbumArtUrl("http://a/b"), QString("http://a/b"));
    QCOMPARE(w.log.lines(),
        (QStringList{leave + "No IP Address, falling back on original URL", info + "http://a/b"}));
}

void tst_AlbumArt::takesTheFirstAddressThereIs_data()
{
    QTest::addColumn<QString>("wired");
    QTest::addColumn<QString>("wireless");
    QTest::addColumn<QStringList>("softAps");
    QTest::addColumn<QString>("list"); // as the log shows it, empty for no line
    QTest::newRow("all kinds") << "w1,w2"
                               << "l1" << QStringList{"s1,s2", "", "s3"}
                               << "(w1, w2, l1, s1, s2, s3)";
    QTest::newRow("wireless") << ""
                              << "l1,l2" << QStringList{"s1"} << "(l1, l2, s1)";
    QTest::newRow("an access point of its own") << ""
                                                << "" << QStringList{"s1"} << "(s1)";
    QTest::newRow("an IPv6 address, as it is") << "2001:db8::1"
                                               << "" << QStringList() << "(2001:db8::1)";
    QTest::newRow("none") << ""
                          << "" << QStringList{""} << "";
}

void tst_AlbumArt::takesTheFirstAddressThereIs()
{
    QFETCH(QString, wired);
    QFETCH(QString, wireless);
    QFETCH(QStringList, softAps);
    QFETCH(QString, list);
    PluginFixture w;
    w.start();
    w.log.clear();
    const OrkaValue value = network(wired, wireless, softAps);
    publish(&w, value);
    QStringList lines{"INFO CB_UPnP: " + value.toJsonString()};
    if (!list.isEmpty())
        lines.append("INFO CB_UPnP: Updating IP addr list: " + list);
    QCOMPARE(w.log.lines("INFO"), lines);
    const QString first = list.mid(1).section(QRegularExpression("[,)]"), 0, 0);
    QCOMPARE(w.worker().handleAlbumArtUrl("http://a/b"),
        first.isEmpty() ? "http://a/b" : "https://" + first + "/proxy/aHR0cDovL2EvYg==");
}

void tst_AlbumArt::followsTheNetwork()
{
    CMValueStore::setValue(OrkaNetworkInfoPath(), network("old", "", {}));
    PluginFixture w;
    w.service.tree.addTrack(
        w.service.tree.addServer("uuid:1", "One"), "t", "T", {{"AlbumArtURL", "http://a/b"}});
    w.start();
    const auto icon = [&w] {
        const auto rows = w.askRows("/uuid:1", 0, 0, {"icon"});
        w.settle();
        return firstColumn(rows.value()).section('/', 2, 2);
    };
    QCOMPARE(icon(), QString("old")); // what was published before the worker came
    publish(&w, network("new", "old", {}));
    QCOMPARE(icon(), QString("new"));
    publish(&w, network("", "", {}));
    QCOMPARE(icon(), QString("a"));
    publish(&w, network("", "back", {}));
    QCOMPARE(icon(), QString("back"));
}

QTEST_GUILESS_MAIN(tst_AlbumArt)
#include "tst_AlbumArt.moc"
