#include "Failure.h"
#include "JsonOutput.h"
#include "SafeText.h"
#include "TextOutput.h"

#include <QtTest>

/// What reaches a terminal.
class tst_Text : public QObject
{
    Q_OBJECT

private slots:
    void controlsAreShownNotObeyed_data();
    void controlsAreShownNotObeyed();
    void widthsAreColumns_data();
    void widthsAreColumns();
    void lengths_data();
    void lengths();
    void jsonBecomesValues();
    void brokenJsonIsWrongUsage_data();
    void brokenJsonIsWrongUsage();
};

void tst_Text::controlsAreShownNotObeyed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("safe");
    QTest::newRow("plain") << "Say \"Hi\" \\ & $"
                           << "Say \"Hi\" \\ & $";
    QTest::newRow("escape") << "\x1b[31m" << QStringLiteral("\u241b[31m");
    QTest::newRow("newline") << "a\nb\r" << QStringLiteral("a\u240ab\u240d");
    QTest::newRow("nul") << QString(QChar(0)) << QStringLiteral("\u2400");
    QTest::newRow("del") << "\x7f" << QStringLiteral("\u2421");
    QTest::newRow("8-bit escape") << QStringLiteral("\u009b2J") << QStringLiteral("\ufffd2J");
    QTest::newRow("direction") << QStringLiteral("a\u202eb") << QStringLiteral("a\ufffdb");
    QTest::newRow("half a pair") << QString(QChar(0xd83d)) << QStringLiteral("\ufffd");
    QTest::newRow("outside the BMP")
        << QStringLiteral("\U0001f3b5") << QStringLiteral("\U0001f3b5");
    QTest::newRow("umlauts, CJK") << QStringLiteral("ü漢") << QStringLiteral("ü漢");
}

void tst_Text::controlsAreShownNotObeyed()
{
    QFETCH(QString, text);
    QTEST(safeText(text), "safe");
}

void tst_Text::widthsAreColumns_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::newRow("latin") << "abc" << 3;
    QTest::newRow("CJK") << QStringLiteral("漢字") << 4;
    QTest::newRow("combining") << QStringLiteral("e\u0301") << 1;
    QTest::newRow("emoji") << QStringLiteral("\U0001f3b5") << 2;
}

void tst_Text::widthsAreColumns()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QCOMPARE(displayWidth(text), width);
    QCOMPARE(displayWidth(padded(text, 6)), 6);
    QCOMPARE(padded(text, 0), text);
}

void tst_Text::lengths_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << qint64(0) << "";
    QTest::newRow("negative") << qint64(-1) << "";
    QTest::newRow("rounded") << qint64(4600) << "0:05";
    QTest::newRow("minutes") << qint64(185000) << "3:05";
    QTest::newRow("hours") << qint64(3723000) << "1:02:03";
}

void tst_Text::lengths()
{
    QFETCH(qint64, milliseconds);
    QTEST(lengthText(milliseconds), "text");
}

void tst_Text::jsonBecomesValues()
{
    QCOMPARE(valueFromJson(QStringLiteral("\"a\\u0000b\"")).toString().size(), 3);
    const QVariant hash = valueFromJson(QStringLiteral("{\"string_\":\"abba\",\"n\":{\"x\":[1]}}"));
    QCOMPARE(hash.userType(), int(QMetaType::QVariantHash));
    QCOMPARE(hash.toHash().value("n").userType(), int(QMetaType::QVariantHash));
    const QVariant list = valueFromJson(QStringLiteral("[\"a\",\"b\"]"));
    QCOMPARE(list.toStringList(), (QStringList{"a", "b"}));
    QCOMPARE(valueFromJson(QStringLiteral("true")), QVariant(true));
}

void tst_Text::brokenJsonIsWrongUsage_data()
{
    QTest::addColumn<QString>("json");
    for (const char *json : {"", "{", "[1", "1,2", "1] , [2", "nope", "{\"a\":1}x"}) {
        QTest::newRow(json) << json;
    }
}

void tst_Text::brokenJsonIsWrongUsage()
{
    QFETCH(QString, json);
    try {
        valueFromJson(json);
        QFAIL("taken as a value");
    } catch (const Failure &failure) {
        QCOMPARE(failure.status(), int(WrongUsage));
    }
}

QTEST_GUILESS_MAIN(tst_Text)
#include "tst_Text.moc"
