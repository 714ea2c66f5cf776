#include <api/core/CMPath.h>
#include <api/core/OrkaHash.h>
#include <api/core/TrString.h>
#include <api/core/dbglog.h>

#include <QCoreApplication>
#include <QTest>
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
    void scopedFunctionOfThisCompiler();
    void streamedValues();

private:
    TrString member() const { return ORKA_TR("text"); }
};

namespace outer {
namespace {
struct Shape
{
    Shape() = default;
    static const char *plain(const std::map<int, std::vector<int>> &) { return Q_FUNC_INFO; }
    std::map<int, std::string> table() { return {{0, Q_FUNC_INFO}}; }
    const char *operator()(int) const { return Q_FUNC_INFO; }
    bool operator<(const Shape &) const { return last = Q_FUNC_INFO, false; }
    operator std::string() const { return Q_FUNC_INFO; }
    template<typename T>
    const char *generic(T) const
    {
        return Q_FUNC_INFO;
    }
    const char *lambda() const
    {
        return [](int) {
            return Q_FUNC_INFO;
        }(1);
    }
    inline static const char *last = nullptr;
};

template<typename T>
struct Box
{
    const char *get() { return Q_FUNC_INFO; }
};
} // namespace
} // namespace outer

void tst_texts::argumentsAreReplacedInOnePass_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QByteArray("100%1") << QStringList() << "100%1";
    QTest::newRow("order") << QByteArray("%2 by %1") << QStringList{"a", "b"} << "b by a";
    QTest::newRow("marker in an argument")
        << QByteArray("%1 and %2") << QStringList{"%2", "%1"} << "%2 and %1";
    QTest::newRow("missing argument") << QByteArray("%1 %3") << QStringList{"a"} << "a %3";
    QTest::newRow("percent signs") << QByteArray("%% %1%") << QStringList{"a"} << "%% a%";
    QTest::newRow("zero") << QByteArray("%0 %1") << QStringList{"a"} << "%0 a";
}

void tst_texts::argumentsAreReplacedInOnePass()
{
    QFETCH(QByteArray, source);
    QFETCH(QStringList, args);
    QFETCH(QString, text);
    const TrString tr("context", source, args);
    QCOMPARE(tr.toString(), text);
    QCOMPARE(tr.sourceString(), text);
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
            return qstrcmp(source, "text") == 0 ? QStringLiteral("Wort %1")
                : n == 1                        ? QStringLiteral("ein Titel")
                                                : QStringLiteral("%n Titel");
        }
    } german;
    const TrString plain(QStringLiteral("text"));
    const TrString translated("tst_texts", "text", {"%1"});
    const TrString plural("tst_texts", "%n title(s)", {}, 3);
    QCOMPARE(plural.toString(), QStringLiteral("3 title(s)"));
    QVERIFY(QCoreApplication::installTranslator(&german));
    QCOMPARE(plain.toString(), QStringLiteral("text"));
    QCOMPARE(translated.toString(), QStringLiteral("Wort %1"));
    QCOMPARE(translated.sourceString(), QStringLiteral("text"));
    QCOMPARE(plural.toString(), QStringLiteral("3 Titel"));
    QVERIFY(translated != plain);
    QVERIFY(TrString().isEmpty());
    QVERIFY(!translated.isEmpty());
}

void tst_texts::contextIsTheClass()
{
    QCOMPARE(member().context(), QByteArray("tst_texts"));
    QCOMPARE(trExtractContext("bool ns::Class::f(int) const"), QByteArray("ns::Class"));
    QCOMPARE(trExtractContext("int main(int, char **)"), QByteArray());
    QCOMPARE(trExtractContext("A::operator std::string() const"), QByteArray("A"));
}

void tst_texts::scopedFunction_data()
{
    QTest::addColumn<QByteArray>("pretty");
    QTest::addColumn<QByteArray>("name");
    const auto add = [](const char *pretty, const char *name) {
        QTest::newRow(pretty) << QByteArray(pretty) << QByteArray(name);
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
    QFETCH(QByteArray, pretty);
    QFETCH(QByteArray, name);
    QCOMPARE(QByteArray::fromStdString(dbglog_scopedFunction(pretty, "CB_UPnP")), name);
}

void tst_texts::scopedFunctionOfThisCompiler()
{
    using namespace outer;
    const Shape shape;
    const auto name = [](const std::string &pretty) {
        return QByteArray::fromStdString(dbglog_scopedFunction(pretty.c_str(), "L"));
    };
    QCOMPARE(name(Shape::plain({})), QByteArray("outer::Shape::plain"));
    QCOMPARE(name(Shape().table()[0]), QByteArray("outer::Shape::table"));
    QCOMPARE(name(shape(1)), QByteArray("outer::Shape::operator()"));
    QVERIFY(!(shape < shape));
    QCOMPARE(name(Shape::last), QByteArray("outer::Shape::operator<"));
    QVERIFY(name(shape).startsWith("outer::Shape::operator std::"));
    QCOMPARE(name(shape.generic(shape)), QByteArray("outer::Shape::generic"));
    QCOMPARE(name(shape.lambda()), QByteArray("outer::Shape::lambda"));
    QCOMPARE(name(Box<std::vector<int>>().get()), QByteArray("outer::Box::get"));
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
