#include <api/core/CMGlobal.h>
#include <api/core/CMRequest.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaValue.h>

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class tst_OrkaHash : public QObject
{
    Q_OBJECT

private slots:
    void looksUpByContent();
    void equalWhateverTheOrder();
    void travelsInVariants();
    void recordsNest();
    void rolesBecomeRows();
    void mimeTypes_data();
    void mimeTypes();
    void jsonReadsBack_data();
    void jsonReadsBack();
    void jsonTextIsAsWritten_data();
    void jsonTextIsAsWritten();
};

void tst_OrkaHash::looksUpByContent()
{
    OrkaRoles roles;
    roles.setTitle(TrString("a"));
    roles.setType(OrkaRolesType::Audio);
    roles.setTitle(TrString("b"));
    // The same text in another buffer.
    QVERIFY(roles.contains(QString("ti") + "tle"));
    QCOMPARE(roles.title().toString(), QStringLiteral("b"));
    QCOMPARE(roles.keys(), (QStringList{"title", "type"}));
    QVERIFY(!roles.value("titl").isValid());

    const OrkaRoles copy = roles;
    roles.remove("title");
    roles.remove("title");
    QCOMPARE(roles.size(), 1);
    QCOMPARE(copy.size(), 2);
}

void tst_OrkaHash::equalWhateverTheOrder()
{
    const OrkaRoles inner(QVariantHash{{"type", 2}, {"icon", "u"}});
    OrkaHash a, b;
    a.setValue("x", 1);
    a.setValue("y", inner.toVariant());
    b.setValue("y", OrkaHash(QVariantHash{{"icon", "u"}, {"type", 2}}).toVariant());
    b.setValue("x", 1);
    QVERIFY(a == b);
    QVERIFY(a.toVariant() == b.toVariant());
    b.setValue("z", QVariant());
    QVERIFY(a != b);
    a.setValue("w", QVariant());
    QVERIFY(a != b);
}

void tst_OrkaHash::travelsInVariants()
{
    const QVariantHash hash{{"string_", "abba"}};
    const OrkaHash record(hash);
    QCOMPARE(record.toVariant().toHash(), hash);
    QVERIFY(OrkaHash::fromVariant(hash) == record);
    QVERIFY(OrkaHash::fromVariant(QVariantMap{{"string_", "abba"}}) == record);
    QVERIFY(OrkaHash::fromVariant(QVariant::fromValue(OrkaValue(record))) == record);
    QVERIFY(OrkaHash::fromVariant(QVariant()).isEmpty());
    QVERIFY(OrkaHash::fromVariant(QVariant(QStringLiteral("text"))).isEmpty());
    QVERIFY(OrkaHash::fromVariant(QVariant(QVariantList{1})).isEmpty());
    // A path or a text inside a variant is also what it looks like as text.
    QCOMPARE(QVariant::fromValue(CMPath("a", "/b c")).toString(), QStringLiteral("a:/b%20c"));
    QCOMPARE(QVariant(QStringLiteral("t")).value<TrString>(), TrString("t"));
    QVERIFY(QVariant::fromValue(CMPath("a", "b")) == QVariant::fromValue(CMPath("a", "b")));
    QVERIFY(QVariant::fromValue(CMPath("a", "b")) != QVariant::fromValue(CMPath("a", "c")));
}

void tst_OrkaHash::recordsNest()
{
    OrkaResource resource;
    resource.setUri("http://10.0.0.1/1.mp3");
    resource.setDuration(1LL << 40);
    OrkaList<OrkaResource> resources;
    resources.append(resource);
    OrkaMediaData media;
    media.setResources(resources);
    OrkaRoles roles;
    roles.setMediaData(media);

    const OrkaList<OrkaResource> read = roles.mediaData().resources();
    QCOMPARE(read.size(), 1);
    QCOMPARE(read.first().duration(), 1LL << 40);
    QCOMPARE(read.first().uri(), QStringLiteral("http://10.0.0.1/1.mp3"));

    OrkaNetworkAddress address;
    address.setIp("10.0.0.1");
    OrkaList<OrkaNetworkAddress> addresses;
    addresses.append(address);
    OrkaNetworkSoftAp ap;
    ap.setAddresses(addresses);
    OrkaList<OrkaNetworkSoftAp> aps;
    aps.append(ap);
    OrkaNetworkSoftApInterface softAp;
    softAp.setAps(aps);
    OrkaNetworkInfo info;
    info.setSoftAp(softAp);
    OrkaValue value;
    value.setNetworkInfo(info);
    const QList<QVariantHash> readAddresses =
        value.networkInfo().softAp().aps().first().addresses();
    QCOMPARE(readAddresses, (QList<QVariantHash>{{{"ip", "10.0.0.1"}}}));
    QVERIFY(value.networkInfo().wired().addresses().isEmpty());
}

void tst_OrkaHash::rolesBecomeRows()
{
    OrkaRoles roles;
    roles.setTitle(TrString("t"));
    roles.setType(OrkaRolesType::Container);
    const QVariantList row =
        CMGlobal::itemRolesToList({"type", "nonsense", "title", "icon", "type"}, roles);
    QCOMPARE(row.size(), 5);
    QCOMPARE(row[0], QVariant(1));
    QVERIFY(!row[1].isValid());
    QCOMPARE(row[2].value<TrString>(), TrString("t"));
    QVERIFY(!row[3].isValid());
    QCOMPARE(row[4], QVariant(1));
}

void tst_OrkaHash::mimeTypes_data()
{
    QTest::addColumn<QString>("mimeType");
    QTest::addColumn<int>("type");
    QTest::newRow("audio") << "audio/mpeg" << int(OrkaRolesType::Audio);
    QTest::newRow("case and parameters") << " AUDIO/L16;rate=44100" << int(OrkaRolesType::Audio);
    QTest::newRow("video") << "video/mp4" << int(OrkaRolesType::Video);
    QTest::newRow("image") << "image/png" << int(OrkaRolesType::Image);
    QTest::newRow("by name only") << "application/ogg" << int(OrkaRolesType::OtherItem);
    QTest::newRow("no type") << "audio" << int(OrkaRolesType::OtherItem);
    QTest::newRow("similar") << "audiobook/x" << int(OrkaRolesType::OtherItem);
    QTest::newRow("empty") << "" << int(OrkaRolesType::Unknown);
}

void tst_OrkaHash::mimeTypes()
{
    QFETCH(QString, mimeType);
    QFETCH(int, type);
    QCOMPARE(int(CMGlobal::mimeTypeToRolesType(mimeType)), type);
}

void tst_OrkaHash::jsonReadsBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QJsonValue>("read");

    const QString hostile =
        QString::fromUtf8("\"\\/\b\f\n\r\t\x01\x1f\x7f \xe2\x80\xa8 \xf0\x9f\x8e"
                          "\xb5 </script> %1")
        + QChar(0);
    QTest::newRow("hostile text") << QVariant(hostile) << QJsonValue(hostile);
    QTest::newRow("hostile key") << QVariant(QVariantMap{{hostile, 1}})
                                 << QJsonValue(QJsonObject{{hostile, 1}});
    QTest::newRow("empty record") << OrkaHash().toVariant() << QJsonValue(QJsonObject());
    QTest::newRow("numbers") << QVariant(
        QVariantList{-1, 4294967295u, 1LL << 50, 0.1, 1e300, -1e-7, 2.5f})
                             << QJsonValue(QJsonArray{
                                    -1, 4294967295.0, double(1LL << 50), 0.1, 1e300, -1e-7, 2.5});
    QTest::newRow("not finite") << QVariant(QVariantList{qInf(), qQNaN(), QVariant()})
                                << QJsonValue(QJsonArray{QJsonValue(), QJsonValue(), QJsonValue()});
    QTest::newRow("lists") << QVariant(QVariantList{QVariantList(), QStringList{"a", "b"}, true})
                           << QJsonValue(QJsonArray{QJsonArray(), QJsonArray{"a", "b"}, true});
    const QVariantHash hash{{"b", 1}, {"a", QVariantHash{{"c", false}}}};
    const QJsonObject object{{"a", QJsonObject{{"c", false}}}, {"b", 1}};
    QTest::newRow("hash") << QVariant(hash) << QJsonValue(object);
    QTest::newRow("record") << OrkaHash(hash).toVariant() << QJsonValue(object);
    QTest::newRow("texts") << QVariant(
        QVariantList{QVariant::fromValue(TrString("ctx", "n %1", {"%1"})),
            QVariant::fromValue(CMPath("a", "/b").addParam("c", "\"")),
            QVariant::fromValue(QDBusObjectPath("/x")), QVariant::fromValue(QDBusVariant(7)),
            QByteArray("\xc3\xa4")})
                           << QJsonValue(QJsonArray{
                                  "n %1", "a:/b?c=%22", "/x", 7, QString::fromUtf8("\xc3\xa4")});
}

void tst_OrkaHash::jsonReadsBack()
{
    QFETCH(QVariant, value);
    QFETCH(QJsonValue, read);
    const QString json = orkaToJson(QVariantList{value});
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8(), &error);
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString() + json));
    QCOMPARE(document.array(), QJsonArray{read});
}

// What a reader that is lenient wouldn't show.
void tst_OrkaHash::jsonTextIsAsWritten_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("json");
    QTest::newRow("controls") << QVariant(QString("\n\x1f") + QChar(0))
                              << R"("\u000a\u001f\u0000")";
    QTest::newRow("high surrogate alone")
        << QVariant(QString(QChar(0xd83c)) + "x") << R"("\ud83cx")";
    QTest::newRow("surrogates swapped")
        << QVariant(QString(QChar(0xdfb5)) + QChar(0xd83c)) << R"("\udfb5\ud83c")";
    QTest::newRow("64 bits") << QVariant(
        QVariantList{std::numeric_limits<qint64>::min(), std::numeric_limits<quint64>::max()})
                             << "[-9223372036854775808,18446744073709551615]";
    OrkaRoles roles;
    roles.setType(OrkaRolesType::Audio);
    roles.setContainerPlayable(false);
    roles.setPath(CMPath("u", "/1"));
    QTest::newRow("keys as first set")
        << roles.toVariant() << R"({"type":2,"containerPlayable":false,"path":"u:/1"})";
}

void tst_OrkaHash::jsonTextIsAsWritten()
{
    QFETCH(QVariant, value);
    QFETCH(QString, json);
    QCOMPARE(orkaToJson(value), json);
}

QTEST_APPLESS_MAIN(tst_OrkaHash)
#include "tst_OrkaHash.moc"
