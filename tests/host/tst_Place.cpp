#include "Failure.h"
#include "NearestTitles.h"
#include "Place.h"
#include "RowRange.h"

#include <QtTest>

/// What people write on the command line, before anything is asked of anybody.
class tst_Place : public QObject
{
    Q_OBJECT

private slots:
    void placesAreReadAsPathOrTitles_data();
    void placesAreReadAsPathOrTitles();
    void badPlacesAreWrongUsage_data();
    void badPlacesAreWrongUsage();
    void rangesOfRows_data();
    void rangesOfRows();
    void samples_data();
    void samples();
    void nearestTitlesComeBestFirst();
};

namespace {

/// The status of the Failure that `parse` throws, 0 where it throws none.
template<typename Parse>
int statusOf(Parse parse)
{
    try {
        parse();
    } catch (const Failure &failure) {
        return failure.sentence().isEmpty() ? -1 : failure.status();
    }
    return 0;
}

} // namespace

void tst_Place::placesAreReadAsPathOrTitles_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("node path") << "upnp:/uuid:4d69/64"
                               << "/uuid:4d69/64" << QStringList();
    QTest::newRow("another prefix is a title") << "dlna:/x"
                                               << "" << QStringList{"dlna:", "x"};
    QTest::newRow("titles") << "My NAS/Music"
                            << "" << QStringList{"My NAS", "Music"};
    QTest::newRow("slash in a title") << "NAS/AC\\/DC"
                                      << "" << QStringList{"NAS", "AC/DC"};
    QTest::newRow("backslash") << "NAS/back\\slash"
                               << "" << QStringList{"NAS", "back\\slash"};
    QTest::newRow("backslash at the end") << "a\\\\/b"
                                          << "" << QStringList{"a\\", "b"};
    QTest::newRow("lone backslash last") << "a\\"
                                         << "" << QStringList{"a\\"};
    QTest::newRow("slashes around") << "/NAS/Music/"
                                    << "" << QStringList{"NAS", "Music"};
    QTest::newRow("spaces belong to titles") << " a / b"
                                             << "" << QStringList{" a ", " b"};
    QTest::newRow("the root") << "/"
                              << "" << QStringList();
}

void tst_Place::placesAreReadAsPathOrTitles()
{
    QFETCH(QString, text);
    const Place place = parsePlace(text, QStringLiteral("upnp"));
    QTEST(place.path.base(), "base");
    QTEST(place.titles, "titles");
}

void tst_Place::badPlacesAreWrongUsage_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("empty title") << "NAS//Music";
    QTest::newRow("broken escape") << "upnp:/uuid%zz";
    QTest::newRow("parameter twice") << "upnp:/u?a=1&a=2";
}

void tst_Place::badPlacesAreWrongUsage()
{
    QFETCH(QString, text);
    QCOMPARE(statusOf([&] { parsePlace(text, QStringLiteral("upnp")); }), int(WrongUsage));
}

void tst_Place::rangesOfRows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("usual") << "0-19" << 0 << 19;
    QTest::newRow("one row") << "7-7" << 7 << 7;
    QTest::newRow("largest") << "0-2147483646" << 0 << 2147483646;
    for (const char *bad : {"", "5", "-5", "5-", "5-4", "a-b", "1-2-3", "0-2147483647", " 1-2",
             "99999999999-99999999999", "0x1-0x2"}) {
        QTest::newRow(bad) << bad << -1 << -1;
    }
}

void tst_Place::rangesOfRows()
{
    QFETCH(QString, text);
    QFETCH(int, first);
    if (first < 0) {
        QCOMPARE(statusOf([&] { parseRowRange(text); }), int(WrongUsage));
        return;
    }
    QCOMPARE(parseRowRange(text).first, first);
    QTEST(parseRowRange(text).last, "last");
}

void tst_Place::samples_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("positions"); // 0 for wrong usage
    QTest::newRow("usual") << "0,9999,100" << 100;
    QTest::newRow("end on a position") << "0,100,10" << 11;
    QTest::newRow("one position") << "5,5,9" << 1;
    for (const char *bad :
        {"0,10,0", "10,0,1", "0,10", "0,10,1,1", "a,b,c", "0,,1", "-1,5,1", ""}) {
        QTest::newRow(bad) << bad << 0;
    }
}

void tst_Place::samples()
{
    QFETCH(QString, text);
    QFETCH(int, positions);
    if (positions == 0) {
        QCOMPARE(statusOf([&] { parseSampleRange(text); }), int(WrongUsage));
        return;
    }
    QCOMPARE(parseSampleRange(text).positions(), positions);
    QCOMPARE(parseSampleRange(text).toString(), text);
}

void tst_Place::nearestTitlesComeBestFirst()
{
    NearestTitles nearest(QStringLiteral("Musik"));
    for (const char *title : {"Pictures", "Music", "All Musik", "musik", "Video", "Music"}) {
        nearest.add(QString::fromLatin1(title));
    }
    QCOMPARE(nearest.titles(), (QStringList{"musik", "All Musik", "Music"}));
    QVERIFY(NearestTitles(QStringLiteral("x")).question().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Place)
#include "tst_Place.moc"
