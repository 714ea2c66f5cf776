#include "Failure.h"
#include "output/JsonOutput.h"
#include "output/Playlist.h"
#include "output/SafeText.h"
#include "output/TextOutput.h"
#include "tree/NearestTitles.h"
#include "tree/Place.h"
#include "tree/RowRange.h"

#include <QXmlStreamReader>
#include <QtTest>

/// What people write on the command line, and what terminals and players get to read.
class tst_Text : public QObject
{
    Q_OBJECT

private slots:
    void placesAreReadAsPathOrTitles();
    void rangesOfRows();
    void jsonBecomesValues();
    void nearestTitlesComeBestFirst();
    void controlsAreShownNotObeyed();
    void widthsAndLengths();
    void urlsThatAPlayerMayGet();
    void titlesStayInTheirFields();
    void playlistsCarryLengthAndUrl();
};

namespace {

using Becomes = QPair<QString, QString>;

const QString wrongUse = QStringLiteral("(wrong usage)");
const QString someUrl = QStringLiteral("http://192.0.2.1/1.mp3");

/// Each text becomes, by this function, the other one of its pair. `wrongUse` stands for a Failure
/// with that status and a sentence.
template<typename Function>
void check(const Function &function, const QVector<Becomes> &texts)
{
    for (const Becomes &text : texts) {
        QString result;
        try {
            result = function(text.first);
        } catch (const Failure &failure) {
            const bool said = failure.status() == WrongUsage && !failure.sentence().isEmpty();
            result = said ? wrongUse : failure.sentence();
        }
        QCOMPARE(text.first + " becomes " + result, text.first + " becomes " + text.second);
    }
}

OrkaPlayListItem item(const QString &title, const QString &url = someUrl)
{
    OrkaPlayListItem item;
    item.setTitle(title);
    item.setUrl(url);
    return item;
}

/// The texts of the elements of this name, joined by "|".
QString elements(const QByteArray &xspf, const QString &name)
{
    QStringList texts;
    QXmlStreamReader xml(xspf);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == name)
            texts.append(xml.readElementText());
    }
    return xml.hasError() ? xml.errorString() : texts.join('|');
}

} // namespace

void tst_Text::placesAreReadAsPathOrTitles()
{
    const auto read = [](const QString &text) {
        const Place place = parsePlace(text, QStringLiteral("upnp"));
        return place.path.isEmpty() ? place.titles.join('|') : "path " + place.path.base();
    };
    check(read,
        {{"upnp:/uuid:4d69/64", "path /uuid:4d69/64"}, {"dlna:/x", "dlna:|x"},
            {"My NAS/Music", "My NAS|Music"}, {"NAS/AC\\/DC", "NAS|AC/DC"},
            {"NAS/back\\slash", "NAS|back\\slash"}, {"a\\\\/b", "a\\|b"}, {"a\\", "a\\"},
            {"/NAS/Music/", "NAS|Music"}, {"/", ""}, {"", wrongUse}, {"NAS//Music", wrongUse},
            {"upnp:/uuid%zz", wrongUse}, {"upnp:/u?a=1&a=2", wrongUse}});
}

void tst_Text::rangesOfRows()
{
    const auto read = [](const QString &text) {
        const RowRange range = parseRowRange(text);
        return QStringLiteral("%1 to %2").arg(range.first).arg(range.last);
    };
    check(read,
        {{"0-19", "0 to 19"}, {"7-7", "7 to 7"}, {"0-2147483646", "0 to 2147483646"},
            {"5", wrongUse}, {"-5", wrongUse}, {"5-", wrongUse}, {"5-4", wrongUse},
            {"1-2-3", wrongUse}, {"0-2147483647", wrongUse}, {"0x1-0x2", wrongUse}});
    const auto sample = [](const QString &text) {
        const SampleRange range = parseSampleRange(text);
        return QStringLiteral("%1: %2").arg(range.toString()).arg(range.positions());
    };
    check(sample,
        {{"0,9999,100", "0,9999,100: 100"}, {"0,100,10", "0,100,10: 11"}, {"5,5,9", "5,5,9: 1"},
            {"0,10,0", wrongUse}, {"10,0,1", wrongUse}, {"0,10", wrongUse}, {"0,,1", wrongUse}});
}

void tst_Text::jsonBecomesValues()
{
    QCOMPARE(valueFromJson("\"a\\u0000b\"").toString().size(), 3);
    QCOMPARE(valueFromJson("true"), QVariant(true));
    const QVariantHash inner{{"x", QVariantList{1.0}}};
    QCOMPARE(valueFromJson("{\"string_\":\"abba\",\"n\":{\"x\":[1]}}"),
        QVariant(QVariantHash{{"string_", "abba"}, {"n", inner}}));
    check([](const QString &json) { return valueFromJson(json).toString(); },
        {{"", wrongUse}, {"[1", wrongUse}, {"1] , [2", wrongUse}, {"{\"a\":1}x", wrongUse}});
}

void tst_Text::nearestTitlesComeBestFirst()
{
    NearestTitles nearest(QStringLiteral("Musik"));
    for (const char *title : {"Pictures", "Music", "All Musik", "musik", "Video", "musik"})
        nearest.add(QString::fromLatin1(title));
    QCOMPARE(nearest.titles(), (QStringList{"musik", "All Musik", "Music"}));
    QVERIFY(NearestTitles(QStringLiteral("x")).question().isEmpty());
    check(titleInPlace,
        {{"AC/DC", "AC\\/DC"}, {"back\\slash", "back\\slash"}, {"a\\/b", "a\\\\\\/b"},
            {"a\\", "a\\\\"}});
}

void tst_Text::controlsAreShownNotObeyed()
{
    check(safeText,
        {{"Say \"Hi\" \\ & $ ü漢 🎵", "Say \"Hi\" \\ & $ ü漢 🎵"}, {"\x1b[31m", "\u241b[31m"},
            {"a\nb\r", "a\u240ab\u240d"}, {QChar(0), "\u2400"}, {"\x7f", "\u2421"},
            {"\u009b2J", "\ufffd2J"}, {"a\u202eb\u200e", "a\ufffdb\ufffd"},
            {QChar(0xd83d), "\ufffd"}, {QString(300000, 'x'), QString(3999, 'x') + "…"}});
}

void tst_Text::widthsAndLengths()
{
    const auto width = [](const QString &text) {
        return QString::number(displayWidth(text)) + padded(text, 0) + padded(text, 5) + '.';
    };
    check(width,
        {{"abc", "3abcabc  ."}, {"漢字", "4漢字漢字 ."}, {"e\u0301", "1e\u0301e\u0301    ."},
            {"🎵", "2🎵🎵   ."}});
    check([](const QString &text) { return shortenedInTheMiddle(text, 5); },
        {{"abcde", "abcde"}, {"abcdefg", "ab…fg"}, {"漢字漢字", "漢…字"},
            {"e\u0301e\u0301e\u0301xyz", "e\u0301e\u0301…yz"}});
    check([](const QString &milliseconds) { return lengthText(milliseconds.toLongLong()); },
        {{"-1", ""}, {"4600", "0:05"}, {"185000", "3:05"}, {"3723000", "1:02:03"}});
}

void tst_Text::urlsThatAPlayerMayGet()
{
    const auto given = [](const QString &url) {
        const PlayListItems items = playableItems({item("t", url)});
        return items.isEmpty() ? "left out" : safeUrl(items.first().url());
    };
    check(given,
        {{"rtsp://h/1", "rtsp://h/1"}, {"HTTPS://h/1", "HTTPS://h/1"},
            {"http://h/a%20b?c=%2f#d", "http://h/a%20b?c=%2f#d"},
            {"http://h/a\n#EXTINF", "http://h/a%0A#EXTINF"},
            {"http://h/ä b", "http://h/%C3%A4%20b"}, {"file:///etc/passwd", "left out"},
            {"--script=x", "left out"}, {"", "left out"}, {"\nhttp://h/", "left out"},
            {"http:///etc/passwd", "left out"}, {"memory://x", "left out"}});
}

void tst_Text::titlesStayInTheirFields()
{
    const auto m3u8 = [](const QString &title) {
        return toM3u8({item(title)});
    };
    const auto file = [](const QString &title) {
        return "#EXTM3U\n#EXTINF:-1," + title + '\n' + someUrl + '\n';
    };
    const auto xspf = [](const QString &title) {
        return elements(toXspf({item(title)}), "title");
    };
    const QString signs = "Say \"Hi\" & <you>, 50% $1 ]]> back\\slash ü 漢字 🎵 #EXTM3U";
    const QString nul = QString::fromUtf8("a\0b", 3);
    check(m3u8,
        {{signs, file(signs)}, {"a\nhttp://x/", file("a http://x/")}, {"a\rb", file("a b")},
            {nul, file("a b")}, {"\x1b[2J", file(" [2J")}});
    QVERIFY(!toXspf({item("\u009b\u202e")}).contains("\u009b"));
    check(xspf,
        {{signs, signs}, {"\u009b\u202e", "\u009b\u202e"}, {"a\nhttp://x/", "a\nhttp://x/"},
            {"a\rb", "a\rb"}, {nul, "a\ufffdb"}, {"\x1b[2J", "\ufffd[2J"}});
}

void tst_Text::playlistsCarryLengthAndUrl()
{
    OrkaPlayListItem song = item(QStringLiteral("Song"));
    song.setArtist(QStringLiteral("Ann"));
    song.setDurationSeconds(245);
    QCOMPARE(toM3u8({song}), "#EXTM3U\n#EXTINF:245,Ann - Song\n" + someUrl + '\n');
    check([&song](const QString &name) { return elements(toXspf({song}), name); },
        {{"duration", "245000"}, {"creator", "Ann"}, {"location", someUrl}});
}

QTEST_GUILESS_MAIN(tst_Text)
#include "tst_Text.moc"
