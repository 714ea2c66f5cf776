#include "OrkaRun.h"
#include "PrivateBus.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// The program as people and scripts meet it: arguments in, output and exit status out.
class tst_Commands : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void exitStatuses_data();
    void exitStatuses();
    void unwritableOutputIsAnError();
    void serversThatArriveLateAreListed();
    void watchTellsArrivalsAndDepartures();
    void lsPagesThroughBigFolders();
    void placesByTitle_data();
    void placesByTitle();
    void errorAnswersAreDocuments();
    void terminalEscapesAreNotPrinted();
    void requestsTravelAsTheyAre();
    void searchGoesByTheSearchText();
    void queueLooksKindsUp();
    void playlistsLeaveOutForeignUrls();
    void playHandsOverThePlaylistAndItsStatus();
    void playSaysWhichTrackMpvPlays();
    void doctorWarnsOfABusWithTooSmallLimits();

private:
    std::unique_ptr<OrkaRun> run(const QStringList &arguments)
    {
        return std::make_unique<OrkaRun>(m_bus->address(), arguments);
    }

    /// A program of this name that a shell runs.
    QString script(const QString &name, const QByteArray &text)
    {
        QFile file(m_folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write("#!/bin/bash\n" + text);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName();
    }

    std::unique_ptr<PrivateBus> m_bus;
    QTemporaryDir m_folder;
};

namespace {

const QString serviceName = QStringLiteral("com.intel.dleyna-server");

QStringList titlesOf(const QJsonObject &document)
{
    QStringList titles;
    for (const QJsonValue row : document.value("rows").toArray()) {
        titles.append(row.toObject().value("title").toString());
    }
    return titles;
}

} // namespace

void tst_Commands::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->open(QStringLiteral("service")).registerService(serviceName));
}

void tst_Commands::cleanup()
{
    PrivateBus::close(QStringLiteral("service"));
    m_bus.reset();
}

void tst_Commands::exitStatuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("said"); // on standard error
    const auto row = [](const QStringList &arguments, int status, const char *said) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << status << QByteArray(said);
    };
    row({"ls", "Shelf"}, 0, "");
    row({"ls", "upnp:/shelf"}, 0, "");
    row({"ls", "Shelf/Broken"}, 1, "The shelf is broken");
    row({"ls", "upnp:/shelf/broken"}, 1, "The shelf is broken");
    row({"queue", "upnp:/shelf/none"}, 1, "No such node");
    row({}, 2, "");
    row({"nonsense"}, 2, "nonsense");
    row({"ls"}, 2, "PLACE");
    row({"ls", ""}, 2, "empty place");
    row({"--prefix", "", "ls", "Shelf"}, 2, "--prefix");
    row({"ls", "Shelf", "--rows", "5-4"}, 2, "ends before it begins");
    row({"ls", "Shelf", "--wait", "-1"}, 2, "--wait");
    row({"ls", "Shelf", "--wait", "nan"}, 2, "--wait");
    row({"ls", "Shelf", "--media-service", "x"}, 2, "--media-service");
    row({"ls", "upnp:/%zz"}, 2, "no node path");
    row({"sample", "Shelf", "0,10,0"}, 2, "step");
    row({"sample", "Shelf", "5,4,1"}, 2, "ends before it begins");
    row({"search", "Shelf"}, 2, "--artist");
    row({"search", "Shelf", "--artist", "a", "--title", "b"}, 2, "--artist");
    row({"set", "upnp:/shelf", "{"}, 2, "JSON");
    row({"queue", "Shelf", "--json", "--format", "xspf"}, 2, "contradict");
    row({"search", "/", "--title", "x"}, 1, "can't search");
    row({"queue", "/"}, 1, "can't be played");
    row({"servers", "--log-config", "/nonexistent"}, 2, "/nonexistent");
    row({"--wait", "0.5", "ls", "Shelv"}, 3, "Did you mean \"Shelf\"");
    row({"ls", "Shelf/Bigg"}, 3, "Did you mean \"Big\"");
    row({"ls", "Twin"}, 3, "upnp:/twin1?itemType=server");
    row({"--wait", "0.5", "ls", "upnp:/elsewhere"}, 3, "hasn't shown up");
    row({"play", "--player", "/nonexistent", "Shelf"}, 3, "no player");
    row({"--timeout", "0.5", "ls", "Shelf/Silent"}, 4, "No answer");
    row({"--help"}, 0, "");
    row({"sample", "--help"}, 0, "");
    row({"--version"}, 0, "");
}

void tst_Commands::exitStatuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, said);
    const auto orka = run(arguments);
    const int status = orka->status();
    QVERIFY2(orka->errors().contains(said), orka->errors());
    QTEST(status, "status");
    if (status == 0) {
        QCOMPARE(orka->errors(), QByteArray());
        QVERIFY(!orka->output().isEmpty());
    } else {
        QVERIFY(orka->errors().startsWith("orka: "));
        QCOMPARE(orka->output(), QByteArray());
    }
}

/// Nobody who reads the answer may take half of it for the whole.
void tst_Commands::unwritableOutputIsAnError()
{
    for (const char *redirection : {">/dev/full", ">&-"}) {
        const QString command = QStringLiteral("\"%1\" --bus \"%2\" --plugin \"%3\" ls Shelf %4")
                                    .arg(ORKA, m_bus->address(), TEST_WORKER, redirection);
        QProcess shell;
        shell.start("/bin/sh", {"-c", command});
        QVERIFY(shell.waitForFinished(20000));
        QCOMPARE(shell.exitCode(), 1);
        QVERIFY(shell.readAllStandardError().contains("could not be written"));
    }
}

void tst_Commands::serversThatArriveLateAreListed()
{
    const auto orka = run({"--json", "servers"});
    QCOMPARE(titlesOf(orka->json()), (QStringList{"Shelf", "Twin", "Late"}));
    QCOMPARE(orka->json().value("rowsCount").toInt(), 3);
    QCOMPARE(orka->json().value("path").toString(), QStringLiteral("upnp:"));
    const auto place = run({"info", "Late"});
    QCOMPARE(place->status(), 1); // found; its worker knows nothing about it
}

void tst_Commands::watchTellsArrivalsAndDepartures()
{
    const auto orka = run({"--json", "servers", "--watch"});
    const QList<QByteArray> lines = orka->waitForLines(5).split('\n');
    QStringList events;
    for (const QByteArray &line : lines.mid(0, 5)) {
        const QJsonObject event = QJsonDocument::fromJson(line).object();
        events << event.value("event").toString() + ' '
                + event.value("server").toObject().value("title").toString();
    }
    QCOMPARE(events,
        (QStringList{
            "arrived Shelf", "arrived Twin", "arrived Twin", "arrived Late", "departed Twin"}));

    // The service goes: the list would never change again.
    PrivateBus::close(QStringLiteral("service"));
    QCOMPARE(orka->status(), 3);
    QVERIFY(orka->errors().contains("media service has left"));
}

void tst_Commands::lsPagesThroughBigFolders()
{
    const auto all = run({"--json", "ls", "Shelf/Big"});
    QCOMPARE(all->json().value("rowsCount").toInt(), 1200);
    QCOMPARE(titlesOf(all->json()).size(), 1200);
    QCOMPARE(titlesOf(all->json()).last(), QStringLiteral("Track 1199"));
    QCOMPARE(all->json().value("rowsVersion").toInt(), 7);

    const auto some = run({"--json", "ls", "upnp:/shelf/big", "--rows", "1198-1300"});
    QCOMPARE(titlesOf(some->json()), (QStringList{"Track 1198", "Track 1199"}));
    const auto beyond = run({"--json", "ls", "upnp:/shelf/big", "--rows", "5000-5000"});
    QCOMPARE(beyond->status(), 0);
    QVERIFY(titlesOf(beyond->json()).isEmpty());
}

void tst_Commands::placesByTitle_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("path");
    QTest::newRow("late in a big folder") << "Shelf/Big/Track 1100"
                                          << "upnp:/shelf/big1100?itemType=track";
    QTest::newRow("slash") << "Shelf/AC\\/DC"
                           << "upnp:/shelf/slash?itemType=container";
    QTest::newRow("backslash") << "Shelf/AC\\/DC/back\\slash"
                               << "upnp:/shelf/backslash?itemType=track";
    QTest::newRow("accent composed otherwise")
        << QStringLiteral("Shelf/AC\\/DC/Cafe\u0301") << "upnp:/shelf/composed?itemType=track";
    QTest::newRow("CJK") << QStringLiteral("Shelf/漢字") << "upnp:/shelf/cjk?itemType=container";
    QTest::newRow("brackets") << "Shelf/[Unknown]"
                              << "upnp:/shelf/bracket?itemType=container";
}

void tst_Commands::placesByTitle()
{
    QFETCH(QString, place);
    QFETCH(QString, path);
    // The queue says what path each place became; "Big" of the way is the folder, not the track.
    const auto orka = run({"--json", "queue", place});
    const QJsonArray items = orka->json().value("items").toArray();
    QCOMPARE(items.at(0).toObject().value("title").toString(), path);
}

void tst_Commands::errorAnswersAreDocuments()
{
    const auto orka = run({"--json", "rows", "upnp:/shelf/broken"});
    QCOMPARE(orka->status(), 1);
    QCOMPARE(orka->json().value("error").toObject(),
        (QJsonObject{
            {"name", "shelfBroken"}, {"title", "Error"}, {"message", "The shelf is broken"}}));
    const auto late = run({"--json", "--timeout", "0.3", "rows", "upnp:/shelf/silent"});
    QCOMPARE(late->status(), 4);
    QCOMPARE(late->json().value("error").toObject().value("name").toString(),
        QStringLiteral("noAnswer"));
}

void tst_Commands::terminalEscapesAreNotPrinted()
{
    for (const QStringList &arguments :
        QVector<QStringList>{{"ls", "Shelf"}, {"--json", "ls", "Shelf"},
            {"info", "upnp:/shelf/hostile"}, {"queue", "Shelf"}, {"ls", "Shelf/red"}}) {
        const auto orka = run(arguments);
        const QByteArray printed = orka->output() + orka->errors();
        QVERIFY(printed.contains("red"));
        QVERIFY2(!printed.contains('\x1b') && !printed.contains("\xc2\x9b"), printed);
    }
}

void tst_Commands::requestsTravelAsTheyAre()
{
    const auto rows = run(
        {"--json", "rows", "upnp:/shelf", "--first", "1", "--last", "1", "--roles", "title,icon"});
    QCOMPARE(rows->json().value("rows").toArray(), (QJsonArray{QJsonObject{{"title", "AC/DC"}}}));
    const auto data = run({"--json", "data", "upnp:/shelf/big", "--roles", "title,path"});
    QCOMPARE(data->json(),
        (QJsonObject{{"path", "upnp:/shelf/big"},
            {"roles",
                QJsonObject{{"title", "Big"}, {"path", "upnp:/shelf/big?itemType=container"}}}}));
    const auto set = run({"--json", "set", "upnp:/shelf", "{\"a\":[1,\"b\"]}"});
    QCOMPARE(set->json().value("value").toObject(), (QJsonObject{{"a", QJsonArray{1, "b"}}}));
}

void tst_Commands::searchGoesByTheSearchText()
{
    const QString text = QStringLiteral("Say \"Hi\" & back\\slash %1");
    const auto found = run({"--json", "search", "Shelf", "--title", text});
    QCOMPARE(titlesOf(found->json()), QStringList{text});
    const auto byArtist = run({"search", "Shelf", "--artist", "x"});
    QCOMPARE(byArtist->status(), 1);
    QVERIFY(byArtist->errors().contains("only by title"));
    const auto never = run({"--json", "search", "upnp:/twin1", "--title", "x"});
    QCOMPARE(never->status(), 1);
    QVERIFY(never->errors().contains("can't search"));
    QCOMPARE(never->json().value("error").toObject().value("name").toString(),
        QStringLiteral("notSearchable"));
}

void tst_Commands::queueLooksKindsUp()
{
    const auto orka = run({"--json", "queue", "upnp:/shelf/hostile", "upnp:/shelf",
        "upnp:/shelf/big", "upnp:/shelf/big?itemType=odd"});
    QStringList titles;
    for (const QJsonValue item : orka->json().value("items").toArray()) {
        titles.append(item.toObject().value("title").toString());
    }
    QCOMPARE(titles.mid(0, 4),
        (QStringList{"upnp:/shelf/hostile?itemType=track", "upnp:/shelf?itemType=server",
            "upnp:/shelf/big?itemType=container", "upnp:/shelf/big?itemType=odd"}));
}

void tst_Commands::playlistsLeaveOutForeignUrls()
{
    const auto m3u8 = run({"queue", "--format", "m3u8", "upnp:/shelf?itemType=server"});
    QCOMPARE(m3u8->output().split('\n').size(), 6); // the heading, two tracks, the end
    QVERIFY(m3u8->output().contains("\nhttp://192.0.2.1/a%20b%0A.mp3\n"));
    QVERIFY(m3u8->errors().contains("file:///etc/passwd"));
    QVERIFY(m3u8->errors().contains("--script=evil"));
    const auto table = run({"queue", "Shelf"});
    QVERIFY(table->output().contains("4 tracks, 4:04 in all."));
}

void tst_Commands::playHandsOverThePlaylistAndItsStatus()
{
    const QString player =
        script(QStringLiteral("player"), "echo \"args: $1 $2\"\ncat \"$3\"\nexit 5\n");
    const auto orka = run({"play", "--player", player + " -a \"b c\"", "Shelf"});
    QCOMPARE(orka->status(), 5);
    QVERIFY(orka->output().startsWith("args: -a b c\n#EXTM3U\n"));
    QVERIFY(orka->errors().contains("Playing 1 of 2: Ann - upnp:/shelf?itemType=server (1:01)"));

    // What the player prints must not get between the document and its reader.
    const auto json = run({"--json", "play", "--player", player, "Shelf"});
    QCOMPARE(json->json().value("items").toArray().size(), 4);
    QVERIFY(json->errors().contains("args: "));
}

/// mpv tells through an inherited socket which entry plays.
void tst_Commands::playSaysWhichTrackMpvPlays()
{
    const QString mpv = script(QStringLiteral("mpv"), R"(
socket=${1#--input-ipc-client=fd://}
for entry in 0 1 -1 77; do
    echo '{"event":"property-change","name":"playlist-pos","data":'$entry'}' >&"$socket"
done
sleep 0.3
)");
    const auto orka = run({"play", "--player", mpv, "Shelf"});
    QCOMPARE(orka->status(), 0);
    QVERIFY2(orka->errors().contains("Playing 1 of 2: Ann - upnp:/shelf"), orka->errors());
    QVERIFY(orka->errors().contains("Playing 2 of 2: Ann - "));
    QCOMPARE(orka->errors().count("Playing"), 2);
}

void tst_Commands::doctorWarnsOfABusWithTooSmallLimits()
{
    const auto fine = run({"doctor", "--wait", "0.5"});
    QCOMPARE(fine->status(), 0);
    QVERIFY(fine->output().contains("ok       bus limits"));
    QVERIFY(fine->output().contains("\"Shelf\" can be searched by title"));

    cleanup();
    m_bus = std::make_unique<PrivateBus>(PrivateBus::Limits::BuiltIn);
    QVERIFY(m_bus->open(QStringLiteral("service")).registerService(serviceName));
    const auto small = run({"doctor", "--wait", "0.5"});
    QCOMPARE(small->status(), 0);
    QVERIFY2(small->output().contains("takes only 128 unanswered calls"), small->output());

    const auto broken = run({"--json", "doctor", "--plugin", "/nonexistent"});
    QCOMPARE(broken->status(), 3);
    const QJsonObject last = broken->json().value("checks").toArray().last().toObject();
    QCOMPARE(last.value("status").toString(), QStringLiteral("missing"));
    QVERIFY(last.value("message").toString().contains("/nonexistent"));
}

QTEST_GUILESS_MAIN(tst_Commands)
#include "tst_Commands.moc"
