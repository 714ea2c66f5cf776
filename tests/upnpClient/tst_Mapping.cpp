#include "NetworkInfo.h"
#include "PluginFixture.h"
#include "Table.h"

#include <QDateTime>

#include <ctime>

/// Property maps of the media service as roles, and as what the player queues.
class tst_Mapping : public QObject
{
    Q_OBJECT

private slots:
    void mapsWhatAnObjectHas_data();
    void mapsWhatAnObjectHas();
    void findsTheKindOfAnObject_data();
    void findsTheKindOfAnObject();
    void readsValuesOfOtherTypes_data();
    void readsValuesOfOtherTypes();
    void readsDates_data();
    void readsDates();
    void missesNothingButTheType();
    void mapsTheRowsOfAReplyAsEachAlone();
    void takesTheLastOfAPropertyThatComesTwice();
    void logsTheSameWhateverRolesAreWanted();
    void queuesWhatATrackHas_data();
    void queuesWhatATrackHas();
    void queuesAPictureByItsOwnUrl();
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

/// Roles as JSON, of an item type and with the part behind the path.
QString roles(const QString &id, const QString &itemType, const QString &rest)
{
    return QString(R"({"path":"upnp:/uuid:1/%1?itemType=%2",%3})").arg(id, itemType, rest);
}

const QString noMedia = R"("mediaData":{"metaData":{"serviceID":"media"},"resources":[]})";

} // namespace

void tst_Mapping::mapsWhatAnObjectHas_data()
{
    columns<QVariantMap, QString>("properties", "roles");
    row("folder",
        QVariantMap{{"Type", "container"}, {"Path", at("31")},
            {"DisplayName", "A \"folder\" %1 %n"}, {"MIMEType", "audio/mpeg"}, {"ChildCount", 7U}},
        roles("31", "container",
            R"("title":"A \"folder\" %1 %n","type":1,"containerPlayable":true,)" + noMedia));
    row("track",
        QVariantMap{{"Type", "music"}, {"TypeEx", "music"}, {"Path", at("32")},
            {"DisplayName", "Song"}, {"MIMEType", "audio/flac"},
            {"URLs", QStringList{"http://a/1", "http://a/2", "http://a/3"}}, {"Artist", "Ann"},
            {"Creator", "Cid"}, {"Album", "Alb"}, {"Genre", "Pop"}, {"Date", "2001-01-01"},
            {"Duration", 245}, {"Bitrate", 320000}, {"SampleRate", 44100}, {"BitsPerSample", 16},
            {"TrackNumber", 3}, {"AlbumArtURL", "https://a/art.jpg"}},
        roles("32", "track",
            R"("title":"Song","type":2,"mediaData":{"metaData":{"artist":"Ann","composer":"Cid",)"
            R"("album":"Alb","genre":"Pop","date":978307200000,"serviceID":"media"},"resources":)"
            R"([{"mimeType":"audio/flac","uri":"http://a/1","duration":245000,"bitRate":320000,)"
            R"("sampleFrequency":44100,"bitsPerSample":16}]},"icon":"https://a/art.jpg")"));
    row("composer without artist, no MIME type",
        QVariantMap{
            {"Type", "audio"}, {"Path", at("33")}, {"Creator", "Cid"}, {"URLs", QStringList{"u"}}},
        roles("33", "track",
            R"("title":"","type":0,"mediaData":{"metaData":{"composer":"Cid","serviceID":"media"},)"
            R"("resources":[{"mimeType":"","uri":"u"}]})"));
    row("nothing plays it",
        QVariantMap{{"Type", "music"}, {"Path", at("34")}, {"MIMEType", "audio/mpeg"},
            {"Duration", 9}, {"URLs", QStringList()}},
        roles("34", "track", R"("title":"","type":2,)" + noMedia));
}

void tst_Mapping::mapsWhatAnObjectHas()
{
    QFETCH(QVariantMap, properties);
    World w;
    QTEST(w.map(properties).toJsonString(), "roles");
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Mapping::findsTheKindOfAnObject_data()
{
    columns<QVariant, QString, QString, int>("type", "mimeType", "itemType", "kind");
    row("container", QVariant("container"), "video/mp4", "container", 1);
    row("no container", QVariant("container.storageFolder"), "", "container", 0);
    row("music", QVariant("music"), "audio/mpeg", "track", 2);
    row("audio", QVariant("audio"), "AUDIO/L16;rate=44100", "track", 2);
    row("music that is a video", QVariant("music"), "video/mp4", "track", 3);
    row("Music", QVariant("Music"), "audio/mpeg", "container", 2);
    row("video", QVariant("video.movie"), "video/mp4", "container", 3);
    row("image", QVariant("image.photo"), "image/jpeg", "container", 4);
    row("anything", QVariant("item.unclassified"), "text/xml", "container", 5);
    row("no text", QVariant(QVariantList()), "audio/mpeg", "container", 2);
}

void tst_Mapping::findsTheKindOfAnObject()
{
    QFETCH(QVariant, type);
    QFETCH(QString, mimeType);
    World w;
    const OrkaRoles roles = w.map({{"Type", type}, {"MIMEType", mimeType}, {"Path", at("1")}});
    QTEST(roles.path().param("itemType"), "itemType");
    QTEST(int(roles.type()), "kind");
    QCOMPARE(roles.contains(OrkaRoles::ContainerPlayable()), type == QVariant("container"));
    QCOMPARE(w.log.lines("ERROR"), QStringList());
}

void tst_Mapping::readsValuesOfOtherTypes_data()
{
    columns<QVariantMap, QString, QString>("property", "role", "json");
    const auto add = [](const char *name, const QVariant &value, const QString &role,
                         const QString &json) {
        QTest::addRow("%s %s", name, qPrintable(json))
            << QVariantMap{{name, value}} << role << json;
    };
    add("Duration", 2147483, "duration", "2147483000");
    add("Duration", 2147484, "duration", "-2147483296");
    add("Duration", -1, "duration", "-1000");
    add("Duration", "245", "duration", "245000");
    add("Duration", "0:04:05", "duration", "0");
    add("Bitrate", 4294967295U, "bitRate", "-1");
    add("BitsPerSample", QVariantList(), "bitsPerSample", "0");
    add("Artist", 5, "artist", R"("5")");
    add("Album", "", "album", R"("")");
    add("URLs", "http://one", "uri", R"("http://one")");
    add("URLs", 5, "uri", "null");
    add("URLs", QStringList{"", "b"}, "uri", R"("")");
    add("DisplayName", QVariantMap(), "title", R"("")");
    add("Path", prefix + "/31", "path", R"("upnp:/?itemType=track")");
    add("AlbumArtURL", 7, "icon", R"("7")");
}

void tst_Mapping::readsValuesOfOtherTypes()
{
    QFETCH(QVariantMap, property);
    QFETCH(QString, role); // of the object, its metadata or its resource
    World w;
    QVariantMap properties{{"Type", "music"}, {"Path", at("1")}, {"URLs", QStringList{"u"}}};
    properties.insert(property.firstKey(), property.first());
    const OrkaRoles roles = w.map(properties);
    const OrkaHash resource = roles.mediaData().resources().value(0).value<OrkaHash>();
    QVariant found = roles.value(role);
    for (const OrkaHash &record : {resource, OrkaHash(roles.mediaData().metaData())})
        found = record.contains(role) ? record.value(role) : found;
    QTEST(orkaToJson(found), "json");
}

void tst_Mapping::readsDates_data()
{
    columns<QString, qint64, bool>("text", "inUtc", "hasZone"); // -1: no date
    row("a day", "2001-01-01", 978307200000LL, false);
    row("a second", "2026-11-21T01:25:40", 1795224340000LL, false);
    row("a second in Greenwich", "2026-11-21T01:25:40Z", 1795224340000LL, true);
    row("a second elsewhere", "2026-11-21T01:25:40+01:00", 1795220740000LL, true);
    row("part of a second", "2026-11-21T01:25:40.250Z", 1795224340250LL, true);
    row("before the epoch", "1955-11-05", -446774400000LL, false);
    for (const char *text : {"2005-06", "2005", "", "yesterday", "2005-13-01", "05/06/2005"})
        QTest::addRow("no date: %s", text) << text << -1LL << true;
}

void tst_Mapping::readsDates()
{
    QFETCH(QString, text);
    QFETCH(qint64, inUtc);
    QFETCH(bool, hasZone);
    World w;
    for (const int hoursEast : {0, 3}) {
        setTimeZone(hoursEast == 0 ? "UTC" : "EAST-3");
        const qint64 none = QDateTime().toMSecsSinceEpoch();
        const qint64 offset = hasZone ? 0 : hoursEast * 3600000LL;
        const OrkaRoles roles = w.map({{"Type", "music"}, {"Path", at("1")}, {"Date", text}});
        QCOMPARE(roles.mediaData().metaData().value(OrkaMetaData::Date()).toLongLong(),
            inUtc == -1 ? none : inUtc - offset);
    }
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
    for (const char *date : {"", "2001-01-01", "2001-01-01", "", "2001", "2002-01-01T01:00:00Z"}) {
        for (const QVariant &path :
            {at("1"), two, at("2"), unknown, unknown, two, QVariant("no")}) {
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
        for (const QStringList &roles :
            {QStringList{"title"}, QStringList(), QStringList{"mediaData/metaData/artist"}}) {
            const QVariantList row =
                w.settled(w.askRows("/uuid:1", 0, 9, roles)).value().rows().value(0).toList();
            QCOMPARE(orkaToJson(row), orkaToJson(w.settled(w.askData("/uuid:1/1", roles)).value()));
            if (roles == QStringList{"title"})
                QCOMPARE(row.value(0).value<TrString>().sourceString(), "last on the wire");
        }
    }
}

void tst_Mapping::logsTheSameWhateverRolesAreWanted()
{
    World w;
    const QVariantMap odd{{"AlbumArtURL", "http://a/b"}, {"Date", "x"}};
    QStringList logged;
    for (const QStringList &roles : {OrkaRoles::all(), QStringList{"title"}, QStringList()}) {
        w.log.clear();
        QVERIFY(w.worker().fillin_childRoles(odd, roles).size() >= roles.size());
        logged.append(w.log.lines().join('\n'));
    }
    QCOMPARE(logged[0].count('\n'), 4);
    QCOMPARE(logged, (QStringList{logged[0], logged[0], logged[0]}));
}

void tst_Mapping::queuesWhatATrackHas_data()
{
    columns<QVariantMap, QString>("properties", "item"); // without its roles
    row("everything",
        QVariantMap{{"DisplayName", "Song"}, {"URLs", QStringList{"http://a/1", "http://a/2"}},
            {"Artist", "Ann"}, {"Album", "Alb"}, {"Genre", "Pop"}, {"Duration", 245},
            {"AlbumArtURL", "http://a/art"}, {"Creator", "Cid"}, {"Date", "2001-01-01"}},
        R"({"serviceId":"media","artist":"Ann","album":"Alb","artworkUrl":"http://a/art",)"
        R"("durationSeconds":245,"genre":"Pop","url":"http://a/1","title":"Song"})");
    row("no URLs at all", QVariantMap{{"DisplayName", "S"}, {"Artist", ""}},
        R"({"serviceId":"media","artist":"","title":"S"})");
    row("nothing", QVariantMap(), R"({"serviceId":"media"})");
}

void tst_Mapping::queuesWhatATrackHas()
{
    QFETCH(QVariantMap, properties);
    World w;
    OrkaPlayListItem item = w.worker().fillin_playlistItem(properties);
    QCOMPARE(item.orkaRoles(), w.map(properties).toJsonString());
    item.remove(OrkaPlayListItem::OrkaRoles_());
    QTEST(item.toJsonString(), "item");
}

// The roles have it by way of the device's proxy.
void tst_Mapping::queuesAPictureByItsOwnUrl()
{
    World w;
    publishNetwork({"192.0.2.1"});
    w.settle();
    const OrkaPlayListItem item = w.worker().fillin_playlistItem({{"AlbumArtURL", "http://a/b"}});
    QCOMPARE(item.artworkUrl(), "http://a/b");
    QVERIFY(item.orkaRoles().endsWith("\"https://192.0.2.1/proxy/aHR0cDovL2EvYg==\"}"));
    publishNetwork({});
}

QTEST_GUILESS_MAIN(tst_Mapping)
#include "tst_Mapping.moc"
