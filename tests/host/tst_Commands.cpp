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
    void init() { start(PrivateBus::Limits::Session); }
    void cleanup();
    void exitStatuses_data();
    void exitStatuses();
    void unwritableOutputIsAnError();
    void serversThatArriveLateAreListed();
    void watchTellsArrivalsAndDepartures();
    void lsPagesThroughBigFolders();
    void placesAreFoundAndTheirKindsLookedUp();
    void errorAnswersAreDocuments();
    void terminalEscapesAreNotPrinted();
    void requestsTravelAsTheyAre();
    void searchGoesByTheSearchText();
    void queuesGatherEachFileOnce();
    void queuesSayWhatIsMissing();
    void playHandsOverThePlaylistAndItsStatus();
    void playSaysWhichTrackMpvPlays();
    void doctorWarnsOfABusWithTooSmallLimits();

private:
    void start(PrivateBus::Limits limits)
    {
        m_bus = std::make_unique<PrivateBus>(limits);
        QVERIFY(m_bus->open("service").registerService("com.intel.dleyna-server"));
    }
    std::unique_ptr<OrkaRun> run(const QStringList &arguments)
    {
        return std::make_unique<OrkaRun>(m_bus->address(), arguments);
    }
    /// The document that it prints; the status alone where that isn't the wanted one.
    QJsonObject json(const QStringList &arguments, int status = 0)
    {
        const auto orka = run(QStringList{"--json"} + arguments);
        return orka->status() == status ? orka->json() : QJsonObject{{"status", orka->status()}};
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

/// The titles of a document's rows or items.
QStringList titlesOf(const QJsonObject &document, const QString &list = "rows")
{
    QStringList titles;
    for (const QJsonValue row : document.value(list).toArray())
        titles.append(row.toObject().value("title").toString());
    return titles;
}

QString errorName(const QJsonObject &document)
{
    return document.value("error").toObject().value("name").toString();
}

} // namespace

void tst_Commands::cleanup()
{
    PrivateBus::close("service");
    m_bus.reset();
}

void tst_Commands::exitStatuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("said"); // on standard error
    const auto row = [](const QStringList &arguments, int status, const QString &said = "") {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << status << said;
    };
    row({"ls", "Shelf"}, 0);
    row({"--prefix", "other", "ls", "other:/shelf"}, 0);
    row({"ls", "Shelf/Broken"}, 1, "The shelf is broken");
    row({"queue", "upnp:/shelf/none"}, 1, "No such node");
    row({}, 2);
    row({"serverz"}, 2, "Did you mean \"serve\" or \"servers\"");
    row({"ls", "a", "b"}, 2, "\"orka ls\" doesn't take \"b\"");
    row({"ls"}, 2, "PLACE");
    row({"--prefix", "", "ls", "Shelf"}, 2, "--prefix");
    row({"ls", "Shelf", "--rows", "5-4"}, 2, "ends before it begins");
    row({"ls", "Shelf", "--wait", "soon"}, 2, "--wait: is a number of seconds");
    row({"ls", "Shelf", "--wait", "nan"}, 2, "--wait");
    row({"ls", "Shelf", "--media-service", "x"}, 2, "--media-service");
    row({"sample", "Shelf", "0,10,0"}, 2, "step");
    row({"search", "Shelf"}, 2, "--artist");
    row({"search", "Shelf", "--artist", "a", "--title", "b"}, 2, "--artist");
    row({"set", "upnp:/shelf", "{"}, 2, "JSON");
    row({"queue", "Shelf", "--json", "--format", "xspf"}, 2, "contradict");
    row({"search", "/", "--title", "x"}, 1, "can't be searched");
    row({"queue", "Shelf/Broken"}, 1, "The shelf is broken");
    row({"queue", "--quick", "/"}, 1, "can't be played");
    row({"servers", "--log-config", "/nonexistent"}, 2, "/nonexistent");
    row({"--wait", "0.5", "ls", "Shelv"}, 3, "Did you mean \"Shelf\"");
    row({"--wait", "0.5", "queue", "[Shelf]"}, 3, "no media server \"[Shelf]\"");
    row({"ls", "Shelf/Bigg"}, 3, "Did you mean \"Big\"");
    row({"info", "Shelf/Big/Track 3"}, 3, "upnp:/shelf/big1003?itemType=track");
    row({"ls", "Twin"}, 3, "upnp:/twin1?itemType=server");
    row({"--wait", "0.5", "ls", "upnp:/elsewhere"}, 3, "hasn't shown up");
    row({"play", "--player", "/nonexistent", "Shelf"}, 3, "no player");
    row({"--timeout", "0.5", "ls", "Shelf/Silent"}, 4, "No answer");
    row({"--help"}, 0);
    row({"sample", "--help"}, 0);
    row({"--version"}, 0);

    const QString cut = m_folder.filePath("cut.so");
    QFile::copy(TEST_WORKER, cut);
    QVERIFY(QFile::resize(cut, 4000));
    const auto plugin = [&row](const QString &file, const QString &said) {
        row({"--plugin", file, "servers"}, 3, said.arg(file));
    };
    plugin("/none.so", "There is no plug-in \"%1\"");
    plugin("/", "\"%1\" is no file");
    plugin(script("text.so", ""), "\"%1\" can't be loaded");
    plugin(cut, "\"%1\" can't be loaded as a plug-in: the file is cut off");
    plugin(API_LIBRARY, "\"%1\" is a library but no plug-in");
    plugin(NULL_ENTRY, "\"%1\" was loaded, but its worker_create gave no worker");
}

void tst_Commands::exitStatuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, said);
    const auto orka = run(arguments);
    const int status = orka->status();
    QVERIFY2(orka->errors().contains(said.toUtf8()), orka->errors());
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
    // The last one finds room for 512 bytes of the playlist.
    for (const char *arguments : {"ls Shelf >/dev/full", "ls Shelf >&-", "--help >/dev/full",
             "play --player true upnp:/shelf/big"}) {
        const QString command = QStringLiteral("trap '' XFSZ; ulimit -f 1; "
                                               "\"%1\" --bus \"%2\" --plugin \"%3\" %4")
                                    .arg(ORKA, m_bus->address(), TEST_WORKER, arguments);
        QProcess shell;
        shell.start("/bin/sh", {"-c", command});
        QVERIFY(shell.waitForFinished(20000));
        const QByteArray said = shell.readAllStandardError();
        QVERIFY2(shell.exitCode() == 1 && said.contains("be written to"), said);
    }
    const QString cut =
        "set -o pipefail; \"%1\" --bus \"%2\" --plugin \"%3\" ls Shelf/Big | head -n 1";
    QProcess shell;
    shell.start("/bin/bash", {"-c", cut.arg(ORKA, m_bus->address(), TEST_WORKER)});
    QVERIFY(shell.waitForFinished(20000));
    QCOMPARE(shell.readAllStandardError(), QByteArray());
    QCOMPARE(shell.exitCode(), 0);
}

void tst_Commands::serversThatArriveLateAreListed()
{
    const QJsonObject servers = json({"servers"});
    QCOMPARE(titlesOf(servers), (QStringList{"Shelf", "Twin", "Late"}));
    QCOMPARE(servers.value("rowsCount").toInt(), 3);
    QCOMPARE(servers.value("path").toString(), "upnp:");
    QCOMPARE(run({"info", "Late"})->status(), 1); // found; its worker knows nothing about it
}

void tst_Commands::watchTellsArrivalsAndDepartures()
{
    const auto unanswered = run({"ls", "Shelf/Silent"});
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

    // Its reader goes, and there is no sixth event.
    const QString lastSeen = "%1 --plugin %2 --bus %3 --media-service session servers "
                             "--watch | head -n 5";
    QProcess shell;
    shell.start("sh", {"-c", lastSeen.arg(ORKA, TEST_WORKER, m_bus->address())});
    QVERIFY(shell.waitForFinished(10000));

    PrivateBus::close("service");
    QCOMPARE(unanswered->status(), 3);
    QVERIFY(unanswered->errors().contains("media service has left"));
}

void tst_Commands::lsPagesThroughBigFolders()
{
    const QJsonObject all = json({"ls", "Shelf/Big"});
    QCOMPARE(all.value("rowsCount").toInt(), 1200);
    QCOMPARE(all.value("rowsVersion").toInt(), 7);
    QCOMPARE(titlesOf(all).size(), 1200);
    QCOMPARE(titlesOf(all).last(), "Track 1199");
    QCOMPARE(titlesOf(json({"ls", "upnp:/shelf/big", "--rows", "1198-1300"})),
        (QStringList{"Track 1198", "Track 1199"}));
    QCOMPARE(run({"ls", "upnp:/shelf/big", "--rows", "5000-5000"})->output(),
        "None of 1200 rows is in this range.\n");
    const QByteArray table = run({"ls", "Shelf/Big", "--rows", "5-5"})->output().simplified();
    QVERIFY2(table.endsWith("5 track Track 5 Ann Blue 3:05 1 of 1200 rows."), table);
}

/// The queue says what path each place became.
void tst_Commands::placesAreFoundAndTheirKindsLookedUp()
{
    const QVector<QPair<QString, QString>> places = {
        {"Shelf/Big/Track 1100", "upnp:/shelf/big1100?itemType=track"}, // not below the track "Big"
        {"Shelf/AC\\/DC", "upnp:/shelf/slash?itemType=container"},
        {"Shelf/AC\\/DC/back\\slash", "upnp:/shelf/backslash?itemType=track"},
        {"Shelf/AC\\/DC/Cafe\u0301", "upnp:/shelf/composed?itemType=track"},
        {"Shelf/漢字", "upnp:/shelf/cjk?itemType=container"},
        {"upnp:/shelf/hostile", "upnp:/shelf/hostile?itemType=track"},
        {"upnp:/shelf", "upnp:/shelf?itemType=server"},
        {"upnp:/shelf/big", "upnp:/shelf/big?itemType=container"},
        {"upnp:/shelf/big?itemType=odd", "upnp:/shelf/big?itemType=odd"}};
    QStringList arguments{"queue", "--quick"};
    QStringList paths;
    for (const auto &[place, path] : places) {
        arguments << place;
        paths << path;
    }
    QCOMPARE(titlesOf(json(arguments), "items"), paths);
}

void tst_Commands::errorAnswersAreDocuments()
{
    QCOMPARE(json({"rows", "upnp:/shelf/broken"}, 1).value("error").toObject(),
        (QJsonObject{
            {"name", "shelfBroken"}, {"title", "Error"}, {"message", "The shelf is broken"}}));
    QCOMPARE(errorName(json({"--timeout", "0.3", "rows", "upnp:/shelf/silent"}, 4)), "noAnswer");
}

void tst_Commands::terminalEscapesAreNotPrinted()
{
    for (const QStringList &arguments : QVector<QStringList>{{"ls", "Shelf"},
             {"--json", "ls", "Shelf"}, {"info", "upnp:/shelf/hostile"},
             {"queue", "upnp:/shelf/hostile"}, {"ls", "Shelf/red"}}) {
        const auto orka = run(arguments);
        const QByteArray printed = orka->output() + orka->errors();
        QVERIFY(printed.contains("red"));
        QVERIFY2(!printed.contains('\x1b') && !printed.contains("\xc2\x9b"), printed);
    }
}

void tst_Commands::requestsTravelAsTheyAre()
{
    const QJsonObject rows =
        json({"rows", "upnp:/shelf", "--first", "1", "--last", "1", "--roles", "title,icon"});
    QCOMPARE(rows.value("rows").toArray(), (QJsonArray{QJsonObject{{"title", "AC/DC"}}}));
    const QJsonObject big{{"title", "Big"}, {"path", "upnp:/shelf/big?itemType=container"}};
    QCOMPARE(json({"data", "upnp:/shelf/big", "--roles", "title,path"}),
        (QJsonObject{{"path", "upnp:/shelf/big"}, {"roles", big}}));
    const QJsonArray list{1, "b", QJsonObject{{"c", true}}};
    QCOMPARE(json({"set", "upnp:/shelf", R"([1,"b",{"c":true}])"})["value"].toArray(), list);
}

void tst_Commands::searchGoesByTheSearchText()
{
    const QString text = "Say \"Hi\" & back\\slash %1";
    QCOMPARE(titlesOf(json({"search", "Shelf", "--title", text})), QStringList{text});
    QCOMPARE(titlesOf(json({"menu", "Shelf"})), QStringList{"Title"});
    QVERIFY(run({"search", "Shelf", "--artist", "x"})->errors().contains("only by title"));
    QCOMPARE(errorName(json({"search", "upnp:/twin1", "--title", "x"}, 1)), "notSearchable");
}

/// Two folders that hold each other, in the order of their rows; an address that is there twice.
void tst_Commands::queuesGatherEachFileOnce()
{
    const auto m3u8 = run({"queue", "--format", "m3u8", "Shelf/AC\\/DC"});
    QCOMPARE(m3u8->output(),
        QByteArray("#EXTM3U\n#EXTINF:185,Ann - back\\slash\nhttp://192.0.2.1/shelf/backslash.mp3\n"
                   "#EXTINF:185,Ann -  [31mred line 2J\nhttp://192.0.2.1/a%20b%0A.mp3\n"
                   "#EXTINF:185,Ann - Caf\u00e9\nhttp://192.0.2.1/shelf/composed.mp3\n"));
    QVERIFY(m3u8->errors().contains("file:///etc/passwd"));
    QVERIFY(m3u8->errors().contains("--script=evil"));
    const auto table = run({"queue", "upnp:/shelf/big", "upnp:/shelf/slash"});
    QVERIFY2(table->output().contains("\n  1200   Track 1199  Ann     Blue   3:05\n"),
        table->output().right(300));
    QVERIFY(table->output().endsWith("\n1205 items, 61:55:25 in all.\n"));
}

/// What can be read is printed, and said to be incomplete.
void tst_Commands::queuesSayWhatIsMissing()
{
    const auto orka = run({"--timeout", "0.5", "--json", "queue", "/"});
    QVERIFY2(orka->status() == 1, orka->errors());
    const QJsonObject document = orka->json();
    QCOMPARE(document.value("items").toArray().size(), 1207);
    QCOMPARE(errorName(document), "incomplete");
    QVERIFY(orka->errors().contains("The list is incomplete:\n"));
    QVERIFY(orka->errors().contains("The shelf is broken"));
}

void tst_Commands::playHandsOverThePlaylistAndItsStatus()
{
    const QString player = script("player", "echo \"args: $1 $2\"\ncat \"$3\"\nexit 5\n");
    const QString place = "Shelf/AC\\/DC";
    const auto orka = run({"play", "--player", player + " -a \"b c\"", place});
    QCOMPARE(orka->status(), 5);
    QVERIFY(orka->output().startsWith("args: -a b c\n#EXTM3U\n"));
    QVERIFY(orka->errors().contains("Playing 1 of 3: Ann - back\\slash (3:05)"));

    // What the player prints must not get between the document and its reader.
    const QJsonObject document = json({"play", "--player", player, place}, 5);
    QCOMPARE(document.value("items").toArray().size(), 5);
}

/// mpv tells through an inherited socket what plays.
void tst_Commands::playSaysWhichTrackMpvPlays()
{
    const QString mpv = script("mpv", R"(
socket=${2#--input-ipc-client=fd://}
for path in '"http://192.0.2.1/a%20b%0A.mp3"' null '"/tmp/orka-x.m3u8"' \
    '"http://192.0.2.1/shelf/backslash.mp3"'; do
    echo '{"event":"property-change","name":"path","data":'$path'}' >&"$socket"
done
sleep 0.3
)");
    const auto orka = run({"play", "--player", mpv, "Shelf/AC\\/DC"});
    QCOMPARE(orka->status(), 0);
    const int second = orka->errors().indexOf("Playing 2 of 3: Ann - ");
    const int first = orka->errors().indexOf("Playing 1 of 3: Ann - back");
    QVERIFY2(second >= 0 && first > second, orka->errors()); // it shuffles
    QCOMPARE(orka->errors().count("Playing"), 2);
}

void tst_Commands::doctorWarnsOfABusWithTooSmallLimits()
{
    const auto fine = run({"doctor", "--wait", "0.5"});
    QCOMPARE(fine->status(), 0);
    QVERIFY(fine->output().contains("ok       bus limits"));
    QVERIFY(fine->output().contains("\"Shelf\" can be searched by title"));

    cleanup();
    start(PrivateBus::Limits::BuiltIn);
    const auto small = run({"doctor", "--wait", "0.5"});
    QCOMPARE(small->status(), 0);
    QVERIFY2(small->output().contains("takes only 128 unanswered calls"), small->output());

    const QJsonArray checks = json({"doctor", "--plugin", "/nonexistent"}, 3)["checks"].toArray();
    QCOMPARE(checks.last()["status"].toString(), "missing");
    QVERIFY(checks.last()["message"].toString().contains("/nonexistent"));
}

QTEST_GUILESS_MAIN(tst_Commands)
#include "tst_Commands.moc"
