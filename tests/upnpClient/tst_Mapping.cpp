#include "NetworkInfo.h"
#include "PluginFixture.h"

#include <QDateTime>
#include <QTest>

#include <ctime>

/// Property maps of the media service as roles, and as what the player queues; their pictures by
/// way of the device's own proxy.
class tst_Mapping : public QObject
{
    Q_OBJECT

private slots:
    void init() { publishNetwork({}); }
    void mapsWhatAnObjectHas();
    void findsTheKindOfAnObject();
    void readsValuesOfOtherTypes();
    void readsDates();
    void missesNothingButTheType();
    void mapsTheRowsOfAReplyAsEachAlone();
    void takesTheLastOfAPropertyThatComesTwice();
    void queuesWhatATrackHas();
    void rewritesPicturesOfPlainHttp();
    void followsTheNetwork();
};

namespace {

const QString prefix = FakeTree::serverPath("uuid:1");

QVariant at(const QString &id)
{
    return QVariant::fromValue(QDBusObjectPath(prefix + "/" + id));
}

void setTimeZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

/// Servers "uuid:1" and "uuid:2", the second one by the older path grammar.
struct World : PluginFixture
{
    World()
    {
        setTimeZone("UTC");
        tree.addServer("uuid:1", "One");
        tree.addServer("uuid:2", "Two", {}, names::serverPrefix + "2");
        start();
        log.clear();
    }
    OrkaRoles map(const QVariantMap &properties) { return worker().fillin_roles(properties); }
};

const QString noMedia = R"("mediaData":{"metaData":{"serviceID":"media"},"resources":[]})";
const QVariantMap everything{{"Type", "music"}, {"TypeEx", "music"}, {"Path", at("32")},
    {"DisplayName", "A \"song\" %1"}, {"MIMEType", "audio/flac"},
    {"URLs", QStringList{"http://a/1", "http://a/2"}}, {"Artist", "Ann"}, {"Creator", "Cid"},
    {"Album", "Alb"}, {"Genre", "Pop"}, {"Date", "2001-01-01"}, {"Duration", 245},
    {"Bitrate", 320000}, {"SampleRate", 44100}, {"BitsPerSample", 16}, {"TrackNumber", 3},
    {"AlbumArtURL", "http://a/b"}};

} // namespace

void tst_Mapping::mapsWhatAnObjectHas()
{
    World w;
    const QString folder = R"({"path":"upnp:/uuid:1/31?itemType=container","title":"","type":1,)"
                           R"("containerPlayable":true,)"
        + noMedia + "}";
    const QString track =
        R"({"path":"upnp:/uuid:1/32?itemType=track","title":"A \"song\" %1","type":2,)"
        R"("mediaData":{"metaData":{"artist":"Ann","composer":"Cid","album":"Alb",)"
        R"("genre":"Pop","date":978307200000,"serviceID":"media"},"resources":)"
        R"([{"mimeType":"audio/flac","uri":"http://a/1","duration":245000,"bitRate":320000,)"
        R"("sampleFrequency":44100,"bitsPerSample":16}]},"icon":"http://a/b"})";
    const OrkaRoles made =
        w.map({{"Type", "container"}, {"Path", at("31")}, {"MIMEType", "audio/mpeg"}});
    QCOMPARE(made.toJsonString(), folder);
    QCOMPARE(w.map(everything).toJsonString(), track);
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Mapping::findsTheKindOfAnObject()
{
    World w;
    const auto kind = [&w](const QVariant &type, const QString &mimeType) {
        const OrkaRoles roles = w.map({{"Type", type}, {"MIMEType", mimeType}, {"Path", at("1")}});
        return roles.path().param("itemType") + ' ' + QString::number(roles.type())
            + (roles.contains(OrkaRoles::ContainerPlayable()) ? " playable" : "");
    };
    QCOMPARE(kind("container", "video/mp4"), "container 1 playable");
    QCOMPARE(kind("container.storageFolder", ""), "container 0");
    QCOMPARE(kind("music", "video/mp4"), "track 3");
    QCOMPARE(kind("Music", "audio/mpeg"), "container 2");
    QCOMPARE(kind(QVariantList(), "text/xml"), "container 5");
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Mapping::readsValuesOfOtherTypes()
{
    World w;
    // Of the object, its metadata or its resource.
    const auto read = [&w](const QString &property, const QVariant &value, const QString &role) {
        QVariantMap properties{{"Type", "music"}, {"Path", at("1")}, {"URLs", QStringList{"u"}}};
        properties.insert(property, value);
        const OrkaRoles roles = w.map(properties);
        const OrkaHash resource = roles.mediaData().resources().value(0).value<OrkaHash>();
        QVariant found = roles.value(role);
        for (const OrkaHash &record : {resource, OrkaHash(roles.mediaData().metaData())})
            found = record.contains(role) ? record.value(role) : found;
        return orkaToJson(found);
    };
    QCOMPARE(read("Duration", 2147484, "duration"), "-2147483296");
    QCOMPARE(read("Duration", "245", "duration"), "245000");
    QCOMPARE(read("Bitrate", 4294967295U, "bitRate"), "-1");
    QCOMPARE(read("Artist", 5, "artist"), R"("5")");
    QCOMPARE(read("URLs", "http://one", "uri"), R"("http://one")");
    QCOMPARE(read("URLs", 5, "uri"), "null");
    QCOMPARE(read("Path", prefix + "/31", "path"), R"("upnp:/?itemType=track")");
}

void tst_Mapping::readsDates()
{
    World w;
    const auto hours = [&w](const QString &date) {
        const OrkaRoles roles = w.map({{"Type", "music"}, {"Path", at("1")}, {"Date", date}});
        return double(roles.mediaData().metaData().value(OrkaMetaData::Date()).toLongLong())
            / 3600000;
    };
    setTimeZone("EAST-3");
    QCOMPARE(hours("1970-01-02"), 21.0); // local time, where no zone is given
    QCOMPARE(hours("1970-01-02T00:00:00"), 21.0);
    QCOMPARE(hours("1970-01-02T00:00:00.900Z"), 24.00025);
    QCOMPARE(hours("1970-01-02T00:00:00+01:00"), 23.0);
    const double none = double(QDateTime().toMSecsSinceEpoch()) / 3600000;
    for (const char *date : {"2005-06", "", "yesterday", "2005-13-01"})
        QCOMPARE(hours(date), none);
}

void tst_Mapping::missesNothingButTheType()
{
    World w;
    QCOMPARE(w.map({}).toJsonString(),
        R"({"path":"upnp:/?itemType=container","title":"","type":0,)" + noMedia + "}");
    QCOMPARE(w.log.lines("ERROR").join('\n'),
        "ERROR CB_UPnP_util: Could not translate dleyna path \""
        "/com/intel/dLeynaServer/server/\" to server UDN\n"
        "ERROR CB_UPnP: Cannot find Type property - cannot decide if object is container");
    w.log.clear();
    w.map({{"Type", "music"}, {"Title", "\"x\""}, {"Path", at("1")}});
    // The whole map is in the line, in the order of its keys.
    QCOMPARE(w.log.lines("TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles").value(0),
        "TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles: QMap((Path, " + prefix
            + "/1)(Title, \"x\")(Type, music))");
}

// Rows of one reply share what is the same for all of them; none may get what is its neighbour's.
// With their log lines on, the maps are read in another way.
void tst_Mapping::mapsTheRowsOfAReplyAsEachAlone()
{
    World w;
    setTimeZone("EAST-3");
    const QVariant two = QVariant::fromValue(QDBusObjectPath(names::serverPrefix + "2/1"));
    const QVariant unknown = QVariant::fromValue(QDBusObjectPath(names::serverPrefix + "9/1"));
    QList<QVariantMap> maps;
    for (const char *date : {"", "2001-01-01", "2001-01-01", "", "2002-01-01T01:00:00Z"}) {
        for (const QVariant &path : {at("1"), two, at("2"), unknown, two, QVariant("no")}) {
            maps.append({{"Date", date}, {"Path", path}, {"Type", "music"}, {"Other", date}});
            maps.append({{"Path", path}, {"AlbumArtURL", "http://a/b"}, {"MIMEType", "image/png"}});
        }
    }
    w.service.answer({"ListChildren"}, QVariantList{propertyMaps(maps)});
    for (const auto level : {log4cplus::TRACE_LOG_LEVEL, log4cplus::ERROR_LOG_LEVEL}) {
        w.log.setLevel(level);
        for (const QStringList &roles : {OrkaRoles::all(), QStringList{"type", "icon"}}) {
            const auto rows = w.settled(w.askRows("/uuid:1", 0, 99, roles));
            QCOMPARE(rows.value().rows().size(), maps.size());
            for (int i = 0; i < maps.size(); ++i) {
                QCOMPARE(orkaToJson(rows.value().rows()[i]),
                    orkaToJson(w.worker().fillin_childRoles(maps[i], roles)));
            }
        }
    }
}

// A request for one object agrees, and so do both where the roles are none, or none that are known.
void tst_Mapping::takesTheLastOfAPropertyThatComesTwice()
{
    World w;
    QMultiMap<QString, QVariant> twice{{"Type", "music"}, {"Path", at("1")}};
    for (const char *name : {"last on the wire", "first on the wire"})
        twice.insert("DisplayName", name);
    w.service.answer({"ListChildren"}, QVariantList{propertyMaps({twice})});
    w.service.answer({"GetAll"}, QVariantList{twice});
    for (const auto level : {log4cplus::TRACE_LOG_LEVEL, log4cplus::ERROR_LOG_LEVEL}) {
        w.log.setLevel(level);
        const auto same = [&w](const QStringList &roles) {
            const auto row = w.settled(w.askRows("/uuid:1", 0, 9, roles)).value().rows().value(0);
            const QString data = orkaToJson(w.settled(w.askData("/uuid:1/1", roles)).value());
            return orkaToJson(row) == data ? data : "different";
        };
        QCOMPARE(same({"title"}), R"(["last on the wire"])");
        QVERIFY(same({}) != "different");
        QCOMPARE(same({"mediaData/metaData/artist"}), "[null]");
    }
}

void tst_Mapping::queuesWhatATrackHas()
{
    World w;
    publishNetwork({"192.0.2.1"});
    w.settle();
    const auto item = [&w](const QVariantMap &properties) {
        OrkaPlayListItem made = w.worker().fillin_playlistItem(properties);
        const bool hasRoles = made.orkaRoles() == w.map(properties).toJsonString();
        made.remove(OrkaPlayListItem::OrkaRoles_());
        return hasRoles ? made.toJsonString() : "other roles";
    };
    // The picture by its own URL; the roles have it by way of the device's proxy.
    const QString all =
        R"({"serviceId":"media","artist":"Ann","album":"Alb","artworkUrl":"http://a/b",)"
        R"("durationSeconds":245,"genre":"Pop","url":"http://a/1","title":"A \"song\" %1"})";
    QCOMPARE(item(everything), all);
    QCOMPARE(item({{"Artist", ""}}), R"({"serviceId":"media","artist":""})");
}

void tst_Mapping::rewritesPicturesOfPlainHttp()
{
    World w;
    const auto picture = [&w](const QString &url) {
        w.log.clear();
        return w.worker().handleAlbumArtUrl(url);
    };
    const QString leave = "DEBUG CB_UPnP: Leave CMUPnPWorker::handleAlbumArtUrl: ";
    const QString info = "INFO CB_UPnP: CB_UPNP: resource urlout = ";
    QCOMPARE(picture("http://a/b"), "http://a/b");
    QCOMPARE(w.log.lines(),
        (QStringList{leave + "No IP Address, falling back on original URL", info + "http://a/b"}));
    publishNetwork({"192.0.2.1"});
    w.settle();
    const QString proxied = "https://192.0.2.1/proxy/aHR0cDovL2Evw7w+YQ==";
    QCOMPARE(picture(QString::fromUtf8("http://a/ü>a")), proxied);
    QCOMPARE(w.log.lines(),
        QStringList{leave + "Got HTTP album art URL, using reverse proxy to serve: " + proxied});
    for (const char *url : {"https://a/b", "HTTP://a/b", "", " http://a/b"}) {
        QCOMPARE(picture(url), url);
        QCOMPARE(w.log.lines(), QStringList{info + url});
    }
}

void tst_Mapping::followsTheNetwork()
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
    publishNetwork({"2001:db8::1", "w2"}, {"l1"}, {{"s1", "s2"}, {}, {"s3"}});
    QCOMPARE(host(), "2001:db8::1");
    publishNetwork({});
    QCOMPARE(host(), "a");
    publishNetwork({}, {"back"});
    QCOMPARE(host(), "back");
    publishNetwork({"back"});
    QCOMPARE(host(), "back");
    // Said again of a list that is the same, and not of one that has become empty.
    const QString start = "INFO CB_UPnP: Updating IP addr list: ";
    QCOMPARE(w.log.lines(start).join(' ').remove(start),
        "(old) (2001:db8::1, w2, l1, s1, s2, s3) (back) (back)");
    QCOMPARE(
        w.log.count("INFO CB_UPnP: " + CMValueStore::value(OrkaNetworkInfoPath()).toJsonString()),
        1);
}

QTEST_GUILESS_MAIN(tst_Mapping)
#include "tst_Mapping.moc"
