#include "Table.h"

#include <api/core/CMGlobal.h>
#include <api/core/CMRequest.h>
#include <api/core/OrkaValue.h>

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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
    QCOMPARE(roles.title().toString(), "b");
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
    OrkaHash a, b;
    a.setValue("x", 1);
    a.setValue("y", OrkaHash(QVariantHash{{"type", 2}, {"icon", "u"}}).toVariant());
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
    for (const QVariant &same : {QVariant(hash), QVariant(QVariantMap{{"string_", "abba"}}),
             QVariant::fromValue(OrkaValue(record)), record.toVariant()}) {
        QVERIFY(OrkaHash::fromVariant(same) == record);
        QCOMPARE(same.toHash(), hash);
    }
    for (const QVariant &other : {QVariant(), QVariant("text"), QVariant(QVariantList{1})})
        QVERIFY(OrkaHash::fromVariant(other).isEmpty());
    // A path or a text inside a variant is also what it looks like as text.
    QCOMPARE(QVariant::fromValue(CMPath("a", "/b c")).toString(), "a:/b%20c");
    QCOMPARE(QVariant(QStringLiteral("t")).value<TrString>(), TrString("t"));
    QVERIFY(QVariant::fromValue(CMPath("a", "b")) == QVariant::fromValue(CMPath("a", "b")));
    QVERIFY(QVariant::fromValue(CMPath("a", "b")) != QVariant::fromValue(CMPath("a", "c")));
}

void tst_OrkaHash::recordsNest()
{
    OrkaResource resource;
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
}

void tst_OrkaHash::rolesBecomeRows()
{
    OrkaRoles roles;
    roles.setTitle(TrString("t"));
    roles.setType(OrkaRolesType::Container);
    const QStringList wanted{"type", "nonsense", "title", "icon", "type"};
    QCOMPARE(orkaToJson(CMGlobal::itemRolesToList(wanted, roles)), R"([1,null,"t",null,1])");
    QCOMPARE(
        orkaToJson(CMGlobal::itemRolesToList(wanted, std::move(roles))), R"([1,null,"t",null,1])");
}

void tst_OrkaHash::mimeTypes_data()
{
    columns<QString, int>("mimeType", "type");
    row("audio", "audio/mpeg", int(OrkaRolesType::Audio));
    row("case and parameters", " AUDIO/L16;rate=44100", int(OrkaRolesType::Audio));
    row("video", "Video/mp4", int(OrkaRolesType::Video));
    row("image", "iMage/png", int(OrkaRolesType::Image));
    row("by name only", "application/ogg", int(OrkaRolesType::OtherItem));
    row("no type", "audio", int(OrkaRolesType::OtherItem));
    row("similar", "audiobook/x", int(OrkaRolesType::OtherItem));
    row("empty", "", int(OrkaRolesType::Unknown));
}

void tst_OrkaHash::mimeTypes()
{
    QFETCH(QString, mimeType);
    QTEST(int(CMGlobal::mimeTypeToRolesType(mimeType)), "type");
}

void tst_OrkaHash::jsonReadsBack_data()
{
    columns<QVariant, QJsonValue>("value", "read");
    const auto add = [](const char *name, const QVariant &value, const QJsonValue &read) {
        row(name, value, read);
    };
    const QString hostile = QString::fromUtf8("\"\\/\b\f\n\r\t\x01\x1f\x7f \xe2\x80\xa8 "
                                              "\xf0\x9f\x8e\xb5 </script> %1")
        + QChar(0);
    add("hostile text", hostile, hostile);
    add("hostile key", QVariantMap{{hostile, 1}}, QJsonObject{{hostile, 1}});
    add("empty record", OrkaHash().toVariant(), QJsonObject());
    add("numbers", QVariantList{-1, 4294967295u, 1LL << 50, 0.1, 1e300, -1e-7, 2.5f},
        QJsonArray{-1, 4294967295.0, double(1LL << 50), 0.1, 1e300, -1e-7, 2.5});
    add("not finite", QVariantList{qInf(), qQNaN(), QVariant()},
        QJsonArray{QJsonValue(), QJsonValue(), QJsonValue()});
    add("lists", QVariantList{QVariantList(), QStringList{"a", "b"}, true},
        QJsonArray{QJsonArray(), QJsonArray{"a", "b"}, true});
    const QVariantHash hash{{"b", 1}, {"a", QVariantHash{{"c", false}}}};
    const QJsonObject object{{"a", QJsonObject{{"c", false}}}, {"b", 1}};
    add("hash", hash, object);
    add("record", OrkaHash(hash).toVariant(), object);
    add("texts",
        QVariantList{QVariant::fromValue(TrString("ctx", "n %1", {"%1"})),
            QVariant::fromValue(CMPath("a", "/b").addParam("c", "\"")),
            QVariant::fromValue(QDBusObjectPath("/x")), QVariant::fromValue(QDBusVariant(7)),
            QByteArray("\xc3\xa4")},
        QJsonArray{"n %1", "a:/b?c=%22", "/x", 7, QString::fromUtf8("\xc3\xa4")});
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
    columns<QVariant, QString>("value", "json");
    row("controls", QVariant(QString("\n\x1f") + QChar(0)), R"("\u000a\u001f\u0000")");
    row("high surrogate alone", QVariant(QString(QChar(0xd83c)) + "x"), R"("\ud83cx")");
    row("surrogates swapped", QVariant(QString(QChar(0xdfb5)) + QChar(0xd83c)),
        R"("\udfb5\ud83c")");
    row("64 bits",
        QVariant(
            QVariantList{std::numeric_limits<qint64>::min(), std::numeric_limits<quint64>::max()}),
        "[-9223372036854775808,18446744073709551615]");
    const QVariantHash unordered{{"c", 1}, {"e", 2}, {"a", 3}, {"d", 4}, {"b", 5}};
    const QString ordered = R"({"a":3,"b":5,"c":1,"d":4,"e":2})";
    row("keys of a hash", QVariant(unordered), ordered);
    row("keys of a record made of one", OrkaHash(unordered).toVariant(), ordered);
    OrkaRoles roles;
    roles.setType(OrkaRolesType::Audio);
    roles.setContainerPlayable(false);
    roles.setPath(CMPath("u", "/1"));
    row("keys as first set", roles.toVariant(),
        R"({"type":2,"containerPlayable":false,"path":"u:/1"})");
}

void tst_OrkaHash::jsonTextIsAsWritten()
{
    QFETCH(QVariant, value);
    QTEST(orkaToJson(value), "json");
}

QTEST_APPLESS_MAIN(tst_OrkaHash)
#include "tst_OrkaHash.moc"
