#include "Playlist.h"

#include <QXmlStreamReader>
#include <QtTest>

/// Playlist files, read back by readers that are not ours where this machine has them.
class tst_Playlist : public QObject
{
    Q_OBJECT

private slots:
    void urlsThatAPlayerMayGet_data();
    void urlsThatAPlayerMayGet();
    void titlesStayInTheirFields_data();
    void titlesStayInTheirFields();
    void m3u8CarriesLengthAndUrl();
    void xspfIsReadByXmllint();
};

namespace {

OrkaPlayListItem item(const QString &title, const QString &url)
{
    OrkaPlayListItem item;
    item.setTitle(title);
    item.setUrl(url);
    return item;
}

const QString someUrl = QStringLiteral("http://192.0.2.1/1.mp3");

/// The text of each element of this name.
QStringList elements(const QByteArray &xspf, const QString &name)
{
    QStringList texts;
    QXmlStreamReader xml(xspf);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == name) {
            texts.append(xml.readElementText());
        }
    }
    return xml.hasError() ? QStringList{xml.errorString()} : texts;
}

} // namespace

void tst_Playlist::urlsThatAPlayerMayGet_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("inPlaylist"); // empty: left out
    QTest::newRow("http") << someUrl << someUrl;
    QTest::newRow("https, rtsp") << "rtsp://h/1"
                                 << "rtsp://h/1";
    QTest::newRow("capitals") << "HTTP://h/1"
                              << "HTTP://h/1";
    QTest::newRow("escapes stay") << "http://h/a%20b?c=%2f#d"
                                  << "http://h/a%20b?c=%2f#d";
    QTest::newRow("IPv6") << "http://[2001:db8::1]:80/1"
                          << "http://[2001:db8::1]:80/1";
    QTest::newRow("newline") << "http://h/a\n#EXTINF"
                             << "http://h/a%0A#EXTINF";
    QTest::newRow("space, umlaut") << QStringLiteral("http://h/ä b") << "http://h/%C3%A4%20b";
    QTest::newRow("file") << "file:///etc/passwd"
                          << "";
    QTest::newRow("option") << "--script=x"
                            << "";
    QTest::newRow("leading newline") << "\nhttp://h/"
                                     << "";
    QTest::newRow("no host") << "http:///etc/passwd"
                             << "";
    QTest::newRow("protocol of the player") << "memory://x"
                                            << "";
    QTest::newRow("nothing") << ""
                             << "";
}

void tst_Playlist::urlsThatAPlayerMayGet()
{
    QFETCH(QString, url);
    QFETCH(QString, inPlaylist);
    QCOMPARE(isPlayableUrl(url), !inPlaylist.isEmpty());
    QCOMPARE(playableItems({item(QStringLiteral("t"), url)}).size(), inPlaylist.isEmpty() ? 0 : 1);
    if (!inPlaylist.isEmpty()) {
        QCOMPARE(safeUrl(url), inPlaylist);
    }
}

void tst_Playlist::titlesStayInTheirFields_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("inM3u8");
    QTest::addColumn<QString>("inXspf");
    for (const char *same :
        {"Say \"Hi\" & <you>, 50% $1 ]]>", "back\\slash", "ü 漢字 🎵", "#EXTM3U"}) {
        const QString title = QString::fromUtf8(same);
        QTest::newRow(same) << title << title << title;
    }
    QTest::newRow("newline") << "a\nhttp://x/"
                             << "a http://x/"
                             << "a\nhttp://x/";
    QTest::newRow("carriage return") << "a\rb"
                                     << "a b"
                                     << "a\rb";
    QTest::newRow("nul") << QString::fromUtf8("a\0b", 3) << "a b" << QStringLiteral("a\ufffdb");
    QTest::newRow("escape") << "\x1b[2J"
                            << " [2J" << QStringLiteral("\ufffd[2J");
}

void tst_Playlist::titlesStayInTheirFields()
{
    QFETCH(QString, title);
    const PlayListItems items{item(title, someUrl)};
    const QStringList lines = toM3u8(items).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 4); // the last one is empty
    QFETCH(QString, inM3u8);
    QCOMPARE(lines.at(1), QStringLiteral("#EXTINF:-1,") + inM3u8);
    QCOMPARE(lines.at(2), someUrl);
    QTEST(elements(toXspf(items), QStringLiteral("title")).value(0), "inXspf");
}

void tst_Playlist::m3u8CarriesLengthAndUrl()
{
    OrkaPlayListItem song = item(QStringLiteral("Song"), someUrl);
    song.setArtist(QStringLiteral("Ann"));
    song.setDurationSeconds(245);
    QCOMPARE(toM3u8({song}), QStringLiteral("#EXTM3U\n#EXTINF:245,Ann - Song\n%1\n").arg(someUrl));
    QCOMPARE(elements(toXspf({song}), QStringLiteral("duration")), QStringList{"245000"});
    QCOMPARE(elements(toXspf({song}), QStringLiteral("creator")), QStringList{"Ann"});
    QCOMPARE(elements(toXspf({song}), QStringLiteral("location")), QStringList{someUrl});
}

void tst_Playlist::xspfIsReadByXmllint()
{
    const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
    if (xmllint.isEmpty()) {
        QSKIP("xmllint isn't installed");
    }
    const QString title = QStringLiteral("Say \"Hi\" & <you>\r\n漢字");
    QProcess reader;
    reader.start(xmllint, {"--noout", "--xpath", "string(//*[local-name()='title'])", "-"});
    reader.write(toXspf({item(title, someUrl)}));
    reader.closeWriteChannel();
    QVERIFY(reader.waitForFinished());
    QCOMPARE(QString::fromUtf8(reader.readAllStandardError()), QString());
    QCOMPARE(QString::fromUtf8(reader.readAllStandardOutput()), title + QLatin1Char('\n'));
}

QTEST_GUILESS_MAIN(tst_Playlist)
#include "tst_Playlist.moc"
