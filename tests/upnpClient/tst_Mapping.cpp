#include "PluginFixture.h"

#include <QDateTime>
#include <QTest>

#include <ctime>

/// Property maps of the media service as roles.
class tst_Mapping : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
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
    void logsTheSameWhateverRolesAreWanted();
    void buildsNoLogLineThatNobodyReads();

private:
    OrkaRoles map(const QVariantMap &properties) { return m_w->worker().fillin_roles(properties); }

    std::unique_ptr<PluginFixture> m_w;
};

namespace {

const QString prefix = FakeTree::serverPath("uuid:1");

QVariant at(const QString &id)
{
    return QVariant::fromValue(QDBusObjectPath(prefix + "/" + id));
}

/// One resource of an object that has this property and a URL.
OrkaResource resource(const OrkaRoles &roles)
{
    return roles.mediaData().resources().value(0).value<OrkaHash>();
}

void setTimeZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

} // namespace

void tst_Mapping::init()
{
    setTimeZone("UTC");
    m_w = std::make_unique<PluginFixture>();
    m_w->service.tree.addServer("uuid:1", "One");
    m_w->service.tree.addServer("uuid:2", "Two", {}, names::serverPrefix + "2");
    m_w->start();
    m_w->log.clear();
}

void tst_Mapping::cleanup()
{
    m_w.reset();
}

void tst_Mapping::mapsWhatAnObjectHas_data()
{
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<QString>("roles");
    const QString noMedia = R"("mediaData":{"metaData":{"serviceID":"media"},"resources":[]})";
    QTest::newRow("folder") << QVariantMap{{"Type", "container"}, {"Path", at("31")},
        {"DisplayName", "A \"folder\""}, {"MIMEType", "audio/mpeg"}, {"ChildCount", 7U}}
                            << R"({"path":"upnp:/uuid:1/31?itemType=container",)"
                               R"("title":"A \"folder\"","type":1,"containerPlayable":true,)"
            + noMedia + "}";
    QTest::newRow("track") << QVariantMap{{"Type", "music"}, {"TypeEx", "music"},
        {"Path", at("32")}, {"DisplayName", "Song"}, {"MIMEType", "audio/flac"},
        {"URLs", QStringList{"http://a/1", "http://a/2", "http://a/3"}}, {"Artist", "Ann"},
        {"Creator", "Cid"}, {"Album", "Alb"}, {"Genre", "Pop"}, {"Date", "2001-01-01"},
        {"Duration", 245}, {"Bitrate", 320000}, {"SampleRate", 44100}, {"BitsPerSample", 16},
        {"TrackNumber", 3}, {"AlbumArtURL", "https://a/art.jpg"}}
                           << R"({"path":"upnp:/uuid:1/32?itemType=track","title":"Song","type":2,)"
                              R"("mediaData":{"metaData":{"artist":"Ann","composer":"Cid",)"
                              R"("album":"Alb","genre":"Pop","date":978307200000,)"
                              R"("serviceID":"media"},"resources":[{"mimeType":"audio/flac",)"
                              R"("uri":"http://a/1","duration":245000,"bitRate":320000,)"
                              R"("sampleFrequency":44100,"bitsPerSample":16}]},)"
                              R"("icon":"https://a/art.jpg"})";
    QTest::newRow("composer without artist, no MIME type")
        << QVariantMap{{"Type", "audio"}, {"Path", at("33")}, {"Creator", "Cid"},
               {"URLs", QStringList{"u"}}}
        << R"({"path":"upnp:/uuid:1/33?itemType=track","title":"","type":0,"mediaData":)"
           R"({"metaData":{"composer":"Cid","serviceID":"media"},"resources":[{"mimeType":"",)"
           R"("uri":"u"}]}})";
    QTest::newRow("nothing plays it") << QVariantMap{{"Type", "music"}, {"Path", at("34")},
        {"MIMEType", "audio/mpeg"}, {"Duration", 9}, {"URLs", QStringList()}}
                                      << R"({"path":"upnp:/uuid:1/34?itemType=track","title":"",)"
                                         R"("type":2,)"
            + noMedia + "}";
    QTest::newRow("a title that looks like a format")
        << QVariantMap{{"Type", "container"}, {"Path", at("35")}, {"DisplayName", "100%1 %n"}}
        << R"({"path":"upnp:/uuid:1/35?itemType=container","title":"100%1 %n","type":1,)"
           R"("containerPlayable":true,)"
            + noMedia + "}";
}

void tst_Mapping::mapsWhatAnObjectHas()
{
    QFETCH(QVariantMap, properties);
    QTEST(map(properties).toJsonString(), "roles");
    QCOMPARE(m_w->log.lines("ERROR"), QStringList());
}

void tst_Mapping::findsTheKindOfAnObject_data()
{
    QTest::addColumn<QVariant>("type");
    QTest::addColumn<QString>("mimeType");
    QTest::addColumn<QString>("itemType");
    QTest::addColumn<int>("kind");
    QTest::newRow("container") << QVariant("container") << "video/mp4"
                               << "container" << 1;
    QTest::newRow("no container") << QVariant("container.storageFolder") << ""
                                  << "container" << 0;
    QTest::newRow("music") << QVariant("music") << "audio/mpeg"
                           << "track" << 2;
    QTest::newRow("audio") << QVariant("audio") << "AUDIO/L16;rate=44100"
                           << "track" << 2;
    QTest::newRow("music that is a video") << QVariant("music") << "video/mp4"
                                           << "track" << 3;
    QTest::newRow("Music") << QVariant("Music") << "audio/mpeg"
                           << "container" << 2;
    QTest::newRow("video") << QVariant("video.movie") << "video/mp4"
                           << "container" << 3;
    QTest::newRow("image") << QVariant("image.photo") << "image/jpeg"
                           << "container" << 4;
    QTest::newRow("anything") << QVariant("item.unclassified") << "text/xml"
                              << "container" << 5;
    QTest::newRow("no text") << QVariant(7) << "audio/mpeg"
                             << "container" << 2;
}

void tst_Mapping::findsTheKindOfAnObject()
{
    QFETCH(QVariant, type);
    QFETCH(QString, mimeType);
    const OrkaRoles roles = map({{"Type", type}, {"MIMEType", mimeType}, {"Path", at("1")}});
    QTEST(roles.path().param("itemType"), "itemType");
    QTEST(int(roles.type()), "kind");
    QCOMPARE(roles.contains(OrkaRoles::ContainerPlayable()), type == QVariant("container"));
}

void tst_Mapping::readsValuesOfOtherTypes_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("role"); // of the resource, the metadata or the object
    QTest::addColumn<QString>("json");
    const auto row = [](const QString &property, const QVariant &value, const QString &role,
                         const QString &json) {
        QTest::addRow("%s %s", qPrintable(property), qPrintable(json))
            << property << value << role << json;
    };
    row("Duration", 2147483, "duration", "2147483000");
    row("Duration", 2147484, "duration", "-2147483296");
    row("Duration", -1, "duration", "-1000");
    row("Duration", "245", "duration", "245000");
    row("Duration", "0:04:05", "duration", "0");
    row("Duration", qlonglong(5), "duration", "5000");
    row("Bitrate", 4294967295U, "bitRate", "-1");
    row("Bitrate", "fast", "bitRate", "0");
    row("SampleRate", 44100.0, "sampleFrequency", "44100");
    row("BitsPerSample", QVariantList(), "bitsPerSample", "0");
    row("Artist", 5, "artist", "\"5\"");
    row("Artist", QStringList{"a", "b"}, "artist", "\"\"");
    row("Album", "", "album", "\"\"");
    row("Genre", true, "genre", "\"true\"");
    row("URLs", "http://one", "uri", "\"http://one\"");
    row("URLs", 5, "uri", "null");
    row("URLs", QStringList{"", "b"}, "uri", "\"\"");
    row("DisplayName", QVariantMap(), "title", "\"\"");
    row("Path", prefix + "/31", "path", "\"upnp:/?itemType=track\"");
    row("AlbumArtURL", 7, "icon", "\"7\"");
}

void tst_Mapping::readsValuesOfOtherTypes()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QString, role);
    QVariantMap properties{{"Type", "music"}, {"Path", at("1")}, {"URLs", QStringList{"u"}}};
    properties.insert(property, value);
    const OrkaRoles roles = map(properties);
    QVariant found = roles.value(role);
    for (const OrkaHash &record :
        {OrkaHash(resource(roles)), OrkaHash(roles.mediaData().metaData())})
        found = record.contains(role) ? record.value(role) : found;
    QTEST(orkaToJson(found), "json");
}

void tst_Mapping::readsDates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("inUtc"); // -1: no date
    QTest::addColumn<bool>("hasZone");
    QTest::newRow("a day") << "2001-01-01" << 978307200000LL << false;
    QTest::newRow("a second") << "2026-11-21T01:25:40" << 1795224340000LL << false;
    QTest::newRow("a second in Greenwich") << "2026-11-21T01:25:40Z" << 1795224340000LL << true;
    QTest::newRow("a second elsewhere") << "2026-11-21T01:25:40+01:00" << 1795220740000LL << true;
    QTest::newRow("part of a second") << "2026-11-21T01:25:40.250Z" << 1795224340250LL << true;
    QTest::newRow("before the epoch") << "1955-11-05" << -446774400000LL << false;
    for (const char *text : {"2005-06", "2005", "", "yesterday", "2005-13-01", "05/06/2005"})
        QTest::addRow("no date: %s", text) << text << -1LL << true;
}

void tst_Mapping::readsDates()
{
    QFETCH(QString, text);
    QFETCH(qint64, inUtc);
    QFETCH(bool, hasZone);
    for (const int hoursEast : {0, 3}) {
        setTimeZone(hoursEast == 0 ? "UTC" : "EAST-3");
        const qint64 none = QDateTime().toMSecsSinceEpoch();
        const qint64 offset = hasZone ? 0 : hoursEast * 3600000LL;
        const OrkaRoles roles = map({{"Type", "music"}, {"Path", at("1")}, {"Date", text}});
        QCOMPARE(roles.mediaData().metaData().value(OrkaMetaData::Date()).toLongLong(),
            inUtc == -1 ? none : inUtc - offset);
    }
}

void tst_Mapping::missesNothingButTheType()
{
    const OrkaRoles roles = map({});
    QCOMPARE(roles.toJsonString(),
        QString(R"({"path":"upnp:/?itemType=container","title":"","type":0,"mediaData":)"
                R"({"metaData":{"serviceID":"media"},"resources":[]}})"));
    QCOMPARE(m_w->log.lines("ERROR").join('\n'),
        QString("ERROR CB_UPnP_util: Could not translate dleyna path \""
                "/com/intel/dLeynaServer/server/\" to server UDN\n"
                "ERROR CB_UPnP: Cannot find Type property - cannot decide if object is container"));
    m_w->log.clear();
    map({{"Type", "music"}, {"Title", "\"x\""}, {"Path", at("1")}});
    // The whole map is in the line, in the order of its keys.
    QCOMPARE(m_w->log.lines("TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles").value(0),
        QString("TRACE CB_UPnP: Enter CMUPnPWorker::fillin_roles: QMap((Path, %1)(Title, \"x\")"
                "(Type, music))")
            .arg(prefix + "/1"));
}

// Rows of one reply share what is the same for all of them; none may get what is its neighbour's.
void tst_Mapping::mapsTheRowsOfAReplyAsEachAlone()
{
    setTimeZone("EAST-3");
    const QVariant two = QVariant::fromValue(QDBusObjectPath(names::serverPrefix + "2/1"));
    const QVariant unknown = QVariant::fromValue(QDBusObjectPath(names::serverPrefix + "9/1"));
    QList<QVariantMap> maps;
    for (const char *date : {"", "2001-01-01", "2001-01-01", "", "2001", "2002-01-01T01:00:00Z"}) {
        for (const QVariant &path :
            {at("1"), two, at("2"), unknown, unknown, two, QVariant("no")}) {
            maps.append({{"Date", date}, {"Path", path}, {"Type", "music"}});
            maps.append({{"Path", path}, {"AlbumArtURL", "http://a/b"}});
        }
    }
    m_w->service.answer({"ListChildren"}, QVariantList{propertyMaps(maps)});
    const QStringList roles = OrkaRoles::all();
    const auto rows = m_w->askRows("/uuid:1", 0, 99, roles);
    m_w->settle();
    QCOMPARE(rows.value().rows().size(), maps.size());
    for (int i = 0; i < maps.size(); ++i) {
        QCOMPARE(orkaToJson(rows.value().rows()[i]),
            orkaToJson(m_w->worker().fillin_childRoles(maps[i], roles)));
    }
}

void tst_Mapping::logsTheSameWhateverRolesAreWanted()
{
    const QVariantMap odd{{"AlbumArtURL", "http://a/b"}, {"Date", "x"}};
    QStringList logged;
    for (const QStringList &roles : {OrkaRoles::all(), QStringList{"title"}, QStringList()}) {
        m_w->log.clear();
        QCOMPARE(m_w->worker().fillin_childRoles(odd, roles).size(), roles.size());
        logged.append(m_w->log.lines().join('\n'));
    }
    QCOMPARE(logged[0].count('\n'), 4);
    QCOMPARE(logged[1], logged[0]);
    QCOMPARE(logged[2], logged[0]);
}

void tst_Mapping::buildsNoLogLineThatNobodyReads()
{
    m_w->log.setLevel(log4cplus::INFO_LOG_LEVEL);
    map({{"Type", "music"}, {"Path", at("1")}, {"AlbumArtURL", "https://a"}});
    QCOMPARE(m_w->log.lines(), QStringList{"INFO CB_UPnP: CB_UPNP: resource urlout = https://a"});
}

QTEST_GUILESS_MAIN(tst_Mapping)
#include "tst_Mapping.moc"
