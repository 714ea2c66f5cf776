#include "Table.h"

#include <api/core/CMPath.h>
#include <api/core/OrkaHash.h>
#include <api/core/TrString.h>
#include <api/core/dbglog.h>

#include <QCoreApplication>
#include <QTranslator>

#include <sstream>

/// Texts for people and for logs.
class tst_texts : public QObject
{
    Q_OBJECT

private slots:
    void argumentsAreReplacedInOnePass_data();
    void argumentsAreReplacedInOnePass();
    void translatesWhenRead();
    void contextIsTheClass();
    void scopedFunction_data();
    void scopedFunction();
    void streamedValues();

private:
    TrString member() const { return ORKA_TR("text"); }
};

void tst_texts::argumentsAreReplacedInOnePass_data()
{
    columns<QByteArray, QStringList, QString>("source", "args", "text");
    const auto add = [](const char *source, const QStringList &args, const char *text) {
        row(source, QByteArray(source), args, text);
    };
    add("100%1", {}, "100%1");
    add("%2 by %1", {"a", "b"}, "b by a");
    add("%1 and %2", {"%2", "%1"}, "%2 and %1");
    add("%1 %3", {"a"}, "a %3");
    add("%% %1%", {"a"}, "%% a%");
    add("%0 %1", {"a"}, "%0 a");
    add("%12", {"a"}, "%12");
}

void tst_texts::argumentsAreReplacedInOnePass()
{
    QFETCH(QByteArray, source);
    QFETCH(QStringList, args);
    const TrString tr("context", source, args);
    QTEST(tr.toString(), "text");
    QTEST(tr.sourceString(), "text");
}

void tst_texts::translatesWhenRead()
{
    class German : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(
            const char *context, const char *source, const char *, int n) const override
        {
            if (qstrcmp(context, "tst_texts") != 0)
                return QString();
            return QString(qstrcmp(source, "text") == 0 ? "Wort %1"
                    : n == 1                            ? "ein Titel"
                                                        : "%n Titel");
        }
    } german;
    const TrString plain(QStringLiteral("text"));
    const TrString translated("tst_texts", "text", {"%1"});
    const TrString plural("tst_texts", "%n title(s)", {}, 3);
    QCOMPARE(plural.toString(), "3 title(s)");
    QVERIFY(QCoreApplication::installTranslator(&german));
    QCOMPARE(plain.toString(), "text");
    QCOMPARE(translated.toString(), "Wort %1");
    QCOMPARE(translated.sourceString(), "text");
    QCOMPARE(plural.toString(), "3 Titel");
    QVERIFY(translated != plain);
    QVERIFY(TrString().isEmpty());
    QVERIFY(!translated.isEmpty());
}

void tst_texts::contextIsTheClass()
{
    QCOMPARE(member().context(), "tst_texts");
    QCOMPARE(trExtractContext("bool ns::Class::f(int) const"), "ns::Class");
    QCOMPARE(trExtractContext("int main(int, char **)"), "");
    QCOMPARE(trExtractContext("A::operator std::string() const"), "A");
}

void tst_texts::scopedFunction_data()
{
    columns<QByteArray>("name");
    const auto add = [](const char *pretty, const char *name) {
        row(pretty, QByteArray(name));
    };
    add("virtual void Class::function(const T &)", "Class::function");
    add("void* worker_create(const char*, void*)", "worker_create");
    add("static const QString& ns::Class::f()", "ns::Class::f");
    add("Class::Class(int)", "Class::Class");
    add("virtual Class::~Class()", "Class::~Class");
    add("std::map<int, std::vector<int> > Class::f(int) const", "Class::f");
    add("std::enable_if_t<(N > 0), int> Class::f() [with int N = 1]", "Class::f");
    add("void Box<T>::f(U) [with T = int; U = A::B]", "Box::f");
    add("Class::f(int)::<lambda(const A::B&)>", "Class::f");
    add("auto Class::f(int)::(anonymous class)::operator()(int) const", "Class::f");
    add("void {anonymous}::Class::f()", "Class::f");
    add("void (anonymous namespace)::f(int)", "f");
    add("bool Class::operator()(int) const", "Class::operator()");
    add("bool Class::operator<(const Class&) const", "Class::operator<");
    add("T* Class::operator->() const", "Class::operator->");
    add("Class::operator std::string() const", "Class::operator std::string");
    add("bool Class::operatorOf(int)", "Class::operatorOf");
    add("decltype(auto) Class::f()", "Class::f");
    add("decltype (a + b) Class::f(T)", "Class::f");
    add("void (* Class::f(int))(double)", "Class::f");
    add("void CB_UPnP::f()", "f");
    add("function", "function");
    add("", "");
    add("<<<(((", "");
}

void tst_texts::scopedFunction()
{
    QTEST(QByteArray::fromStdString(dbglog_scopedFunction(QTest::currentDataTag(), "CB_UPnP")),
        "name");
}

void tst_texts::streamedValues()
{
    const CMPath path("upnp", "/a b");
    std::ostringstream stream;
    stream << QVariant(QVariantList{"a", 1, QStringList{"x", "y"}, true, QVariant()}) << '|'
           << QVariantMap{{"b", 2}, {"a", "t"}} << '|' << QList<CMPath>{path, path} << '|'
           << QVariant(QVariantHash{{"string_", "abba"}}) << '|' << QVariant::fromValue(path) << '|'
           << QDBusObjectPath("/x") << '|' << QString::fromUtf8("\xc3\xa4");
    QCOMPARE(QString::fromStdString(stream.str()),
        QString::fromUtf8(
            "(a, 1, (x, y), true, (invalid))|QMap((a, t)(b, 2))"
            "|(upnp:/a%20b, upnp:/a%20b)|{\"string_\":\"abba\"}|upnp:/a%20b|/x|\xc3\xa4"));
}

QTEST_GUILESS_MAIN(tst_texts)
#include "tst_texts.moc"
