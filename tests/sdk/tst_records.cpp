#include <api/core/CMGlobal.h>
#include <api/core/OrkaValue.h>
#include <api/core/dbglog.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTest>
#include <QTranslator>

/// Records, their JSON, and texts for people and for logs.
class tst_records : public QObject
{
    Q_OBJECT

private slots:
    void equalWhateverTheOrder();
    void travelInVariants();
    void becomeRows();
    void areWrittenAsJson();
    void textsAreTranslatedWhenRead();
    void logLinesNameTheirFunction();
};

void tst_records::equalWhateverTheOrder()
{
    OrkaHash a, b;
    a.setValue("x", 1);
    a.setValue("y", 2);
    b.setValue("y", 2);
    b.setValue(QString("xx").left(1), 1);
    QVERIFY(a.toVariant() == b.toVariant());
    b.setValue("z", QVariant());
    QVERIFY(a != b);
}

void tst_records::travelInVariants()
{
    const QVariantHash hash{{"string_", "abba"}};
    for (const QVariant &same : {QVariant(hash), QVariant(QVariantMap{{"string_", "abba"}}),
             QVariant::fromValue(OrkaValue(OrkaHash(hash))), OrkaHash(hash).toVariant()}) {
        QVERIFY(OrkaHash::fromVariant(same) == OrkaHash(hash));
        QCOMPARE(same.toHash(), hash);
    }
    QVERIFY(OrkaHash::fromVariant("text").isEmpty());
}

void tst_records::becomeRows()
{
    OrkaRoles roles;
    roles.setTitle(TrString("t"));
    const QStringList wanted{"title", "nonsense", "title"};
    QCOMPARE(orkaToJson(CMGlobal::itemRolesToList(wanted, roles)), R"(["t",null,"t"])");
    QCOMPARE(orkaToJson(CMGlobal::itemRolesToList(wanted, std::move(roles))), R"(["t",null,"t"])");
}

void tst_records::areWrittenAsJson()
{
    const QVariantMap hostile{{"\"\\/\b\n\x01\x1f\x7f %1\xe2\x80\xa8\xf0\x9f\x8e\xb5", QChar(0)}};
    QCOMPARE(QJsonDocument::fromJson(orkaToJson(hostile).toUtf8()).toVariant(), QVariant(hostile));
    QVERIFY(!orkaToJson(hostile).contains(QChar(0x1f)));
    QCOMPARE(orkaToJson(QVariant(QString(QChar(0xd83c)) + "x")), R"("\ud83cx")");
    QCOMPARE(orkaToJson(QVariantList{std::numeric_limits<qint64>::min(),
                 std::numeric_limits<quint64>::max(), 0.1, 1e300, qInf(), true, QVariant()}),
        "[-9223372036854775808,18446744073709551615,0.1,1e+300,null,true,null]");
    const QVariantHash unordered{{"c", 1}, {"a", QVariantHash()}, {"b", QStringList{"x", "y"}}};
    const QString ordered = R"({"a":{},"b":["x","y"],"c":1})";
    QCOMPARE(orkaToJson(unordered), ordered);
    QCOMPARE(orkaToJson(OrkaHash(unordered).toVariant()), ordered);
}

void tst_records::textsAreTranslatedWhenRead()
{
    class German : public QTranslator
    {
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *, const char *, int) const override
        {
            return qstrcmp(context, "tst_records") == 0 ? "%n Wort %1" : QString();
        }
    } german;
    const TrString text("tst_records", "%% %0 %2 %1 %3 %12", {"%2", "b"}, 3);
    QCOMPARE(text.toString(), "%% %0 b %2 %3 %12");
    QVERIFY(QCoreApplication::installTranslator(&german));
    QCOMPARE(text.toString(), "3 Wort %2");
    QCOMPARE(text.sourceString(), "%% %0 b %2 %3 %12");
    QCOMPARE(ORKA_TR("x").context(), "tst_records");
}

void tst_records::logLinesNameTheirFunction()
{
    const auto name = [](const char *pretty) {
        return QString::fromStdString(dbglog_scopedFunction(pretty, "CB_UPnP"));
    };
    QCOMPARE(name("virtual const QString& ns::Class::f(const T &) const"), "ns::Class::f");
    QCOMPARE(name("void* worker_create(const char*, void*)"), "worker_create");
    QCOMPARE(name("std::map<int, std::vector<int> > Class::~Class()"), "Class::~Class");
    QCOMPARE(name("Class::f(int)::<lambda(const A::B&)>"), "Class::f");
    QCOMPARE(name("void {anonymous}::Class::f()"), "Class::f");
    QCOMPARE(name("<<<((("), "");
}

QTEST_GUILESS_MAIN(tst_records)
#include "tst_records.moc"
