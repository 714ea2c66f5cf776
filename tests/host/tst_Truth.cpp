#include "FakeMediaService.h"
#include "NamesOnBus.h"
#include "OrkaRun.h"
#include "PrivateBus.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QJsonArray>
#include <QTemporaryFile>
#include <QtTest>

#include <csignal>
#include <memory>

/// The program and the plug-in before a media service that fails: what people are told, and that it
/// is never an empty answer.
class tst_Truth : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void failuresSayWhatIsTheMatter_data();
    void failuresSayWhatIsTheMatter();
    void noStartMissesAServer();
    void hungServiceIsSaid();
    void watchOutlivesTheService();
    void namesakesAreToldApart();
    void gatheredItemsAreTheWorkersOwn();
    void samplesAreTheWorkersOwn();
    void logLinesAreSafe();

private:
    std::unique_ptr<OrkaRun> run(const QStringList &arguments)
    {
        const QStringList plugin{"--plugin", PLUGIN};
        return std::make_unique<OrkaRun>(
            m_bus->address(), arguments.contains(plugin[0]) ? arguments : plugin + arguments);
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeMediaService> m_service;
};

void tst_Truth::init()
{
    m_bus = std::make_unique<PrivateBus>();
    m_service = std::make_unique<FakeMediaService>(*m_bus);
    const QString server = m_service->tree.addServer("uuid:1", "Den", QStringList{"DisplayName"});
    const QString music = m_service->tree.addContainer(server, "m", "Mu,sic");
    m_service->tree.addTrack(music, "t", "Song");
}

void tst_Truth::cleanup()
{
    m_service.reset();
    m_bus.reset();
}

using Fault = std::function<void(FakeMediaService &)>;
Q_DECLARE_METATYPE(Fault)

void tst_Truth::failuresSayWhatIsTheMatter_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("said"); // on standard error; the output where it is 0
    const auto row = [](const char *name, const Fault &fault, const QString &command, int status,
                         const char *said) {
        QTest::newRow(name) << fault << command.split(' ') << status << QString(said);
    };
    const QString music = FakeTree::objectPath(FakeTree::serverPath("uuid:1"), "m");
    const FakeMatch listing{"ListChildren", music};
    const QString noRows = "Browse operation failed: Empty 'DIDL-Lite' node in the DIDL-Lite XML:\n"
                           "<DIDL-Lite xmlns=\"urn\"></DIDL-Lite>";
    row(
        "refused", [=](auto &s) { s.fail(listing, "Browse operation failed: Bad (701)."); },
        "ls Den/Mu,sic", 1, "\"Den/Mu,sic\" could not be read: Bad (701).\n");
    row(
        "doesn't count",
        [=](auto &s) {
            s.fail({"Get", music, "ChildCount"}, "Not counted.");
        },
        "ls Den/Mu,sic", 1, "\"Den/Mu,sic\" could not be read: Not counted.\n");
    row(
        "hangs",
        [=](auto &s) {
            s.hold(listing);
            s.fail({"ListChildren", music, {}, 1}, "did not answer within 10 seconds");
        },
        "--timeout 2.2 ls Den/Mu,sic", 4,
        "The media server \"Den\" did not answer within 2 seconds.");
    row(
        "empty", [=](auto &s) { s.fail(listing, noRows); }, "ls Den/Mu,sic", 0,
        "There are no rows.\n");
    row(
        "nothing found", [=](auto &s) { s.fail({"SearchObjectsEx"}, noRows); },
        "search Den --title x", 0, "Nothing in \"Den\" has a title with \"x\" in it.\n");
    row(
        "a folder that isn't searched",
        [=](auto &s) {
            s.answer({"SearchObjectsEx", music}, QVariantList{propertyMaps({}), 0U});
        },
        "search Den/Mu,sic --title song", 1,
        "\"Den\" doesn't search below \"Den/Mu,sic\": it doesn't find \"Song\"");
    row(
        "found elsewhere",
        [=](auto &s) { s.tree.addTrack(FakeTree::serverPath("uuid:1"), "x", "Xylo"); },
        "search Den/Mu,sic --title x", 0, "Nothing in \"Den/Mu,sic\" has a title");
    row(
        "behind the last", [=](auto &s) { s.fail(listing, noRows); }, "ls Den/Mu,sic --rows 5-9", 0,
        "None of 1 rows is in this range.\n");
    row(
        "sample of nothing", [=](auto &s) { s.answer(listing, QVariantList{propertyMaps({})}); },
        "sample Den/Mu,sic 0,5,1", 1, "There is no row 0 at \"Den/Mu,sic\".");
    row(
        "search refused",
        [=](auto &s) { s.fail({"SearchObjectsEx"}, "Search operation failed: No"); },
        "search Den --title x", 1, "\"Den\" could not be searched: No.\n");
    row(
        "server left",
        [=](auto &s) {
            s.answer(listing, [&s](const FakeCall &) {
                s.tree.remove(FakeTree::serverPath("uuid:1"));
                return FakeReply::error("com.intel.dleyna.Cancelled", "Operation cancelled.");
            });
        },
        "ls Den/Mu,sic", 3, "The media server \"Den\" is not there any more.");
    row(
        "service replaced",
        [=](auto &s) {
            s.hold(listing);
            auto *look = new QTimer(&s);
            QObject::connect(look, &QTimer::timeout, look, [&s, look] {
                if (s.held() == 0)
                    return;
                look->stop();
                s.vanish();
                s.forgetRules();
                QTimer::singleShot(200, &s, [&s] { s.comeBack(); });
            });
            look->start(1);
        },
        "ls Den/Mu,sic", 0, "Song");
    row(
        "bus ends",
        [=](auto &s) {
            s.hold(listing);
            auto *look = new QTimer(&s);
            QObject::connect(look, &QTimer::timeout, look, [this, &s, look] {
                if (s.held() == 0)
                    return;
                look->stop();
                ::kill(pid_t(m_bus->pid()), SIGKILL);
            });
            look->start(1);
        },
        "ls Den/Mu,sic", 3, "has ended: the bus crashed or was stopped");
    const auto counted = [=](FakeMediaService &s) {
        s.answer({"Get", music, "ChildCount"}, QVariantList{QVariant::fromValue(QDBusVariant(2U))});
    };
    row("fewer than counted", counted, "ls Den/Mu,sic", 1, "1 of 2 rows are missing");
    row("looked up among fewer", counted, "info Den/Mu,sic/Nope", 1, "the list is incomplete");
    row(
        "one row again for another",
        [=](auto &s) {
            counted(s);
            s.answer(listing, [&s](const FakeCall &call) {
                const QVariantList all{0U, 9U, call.arguments().last()};
                return s.tree.answer(call.path(), call.member(), all);
            });
        },
        "ls Den/Mu,sic", 1, "1 of 2 rows are missing");
    row(
        "a device finds nothing",
        [=](auto &s) {
            s.answer({"SearchObjectsEx"}, QVariantList{propertyMaps({}), 0U});
        },
        "queue --quick Den", 1, "A device gets nothing there");
    const QString den = FakeTree::serverPath("uuid:1");
    row(
        "a tree goes on",
        [=](auto &s) {
            const QString deep =
                s.tree.addContainer(s.tree.addContainer(music, "a", "A"), "b", "B");
            s.tree.addContainer(deep, "c", "C");
        },
        "ls -R Den", 0, "The tree ends at level 3, with a folder");
    row(
        "listed and dead",
        [=](auto &s) {
            s.fail({"Get", den, "SystemUpdateID"}, "Could not connect to it: Connection refused");
        },
        "servers", 0, "\"Den\" is listed, but can't be reached: Could not connect to it");
    row(
        "changed while it was read",
        [=](auto &s) {
            for (const uint id : {2U, 1U}) // the newer rule comes first
                s.answer({"Get", den, "SystemUpdateID", id == 1 ? 1 : -1},
                    QVariantList{QVariant::fromValue(QDBusVariant(id))});
        },
        "queue Den", 1, "content has changed while it was read");
    row(
        "numbers of another type",
        [=](auto &s) {
            s.answer(listing, [&s](const FakeCall &call) {
                const bool isWrong = call.arguments().last() == QStringList{"TrackNumber"};
                const QVariantList numbers{QVariant::fromValue(QList<int>{1})};
                return isWrong ? FakeReply{numbers}
                               : s.tree.answer(call.path(), call.member(), call.arguments());
            });
        },
        "ls Den/Mu,sic --sort track", 1, "doesn't tell the numbers of its tracks");
    row(
        "search unknown",
        [=](auto &s) {
            s.fail({"Get", den, "SearchCaps"}, "none", "com.intel.dleyna.UnknownProperty");
        },
        "search Den --title x", 1, "\"Den\" has not said yet what it can search");
    row(
        "a worker of another kind", [](auto &) {}, "--plugin " RADIO " --prefix radio ls radio:", 0,
        "Station One");
    row(
        "no such rows", [](auto &) {}, "rows upnp:/uuid:1 --first 5 --last 2", 2, "no rows from 5");
    row(
        "silent", [=](auto &s) { s.hold(listing); }, "--timeout 0.5 ls Den/Mu,sic", 4,
        "No answer about \"Den/Mu,sic\" came in 0.5 s");
}

void tst_Truth::failuresSayWhatIsTheMatter()
{
    QFETCH(Fault, fault);
    QFETCH(QStringList, arguments);
    QFETCH(QString, said);
    fault(*m_service);
    const auto orka = run(arguments);
    const int status = orka->status();
    const QByteArray text = orka->errors() + (status == 0 ? orka->output() : QByteArray());
    QVERIFY2(text.contains(said.toUtf8()), orka->errors() + orka->output());
    QTEST(status, "status");
}

/// The real service answers an empty list when it has just been started, and announces soon after.
void tst_Truth::noStartMissesAServer()
{
    for (int delay = 0; delay <= 60; ++delay) {
        m_service.reset();
        m_service = std::make_unique<FakeMediaService>(*m_bus);
        m_service->answer({"GetServers", {}, {}, 1}, [=](const FakeCall &) {
            QTimer::singleShot(delay, m_service.get(), [this] {
                for (const char *udn : {"uuid:1", "uuid:2"})
                    m_service->announceFound(m_service->tree.addServer(udn, udn));
            });
            return FakeReply{{QVariant::fromValue(QList<QDBusObjectPath>())}};
        });
        const auto orka = run({"servers"});
        QCOMPARE(orka->status(), 0);
        QVERIFY2(orka->output().count("uuid") == 4, QByteArray::number(delay) + orka->output());
    }
}

void tst_Truth::hungServiceIsSaid()
{
    m_service->hold({"GetServers"});
    for (const char *command : {"servers", "ls Den", "rows upnp:/uuid:1"}) {
        const auto orka = run(QStringList{"--timeout", "1"} + QString(command).split(' '));
        QCOMPARE(orka->status(), 4);
        QVERIFY(orka->errors().contains("The media service does not answer: tst_Truth (process "));
    }
    QCOMPARE(run({"--timeout", "1", "doctor"})->status(), 3);
}

void tst_Truth::watchOutlivesTheService()
{
    const auto orka = run({"--json", "servers", "--watch"});
    QVERIFY(orka->waitForLines(1).contains("arrived"));
    m_service->vanish();
    QVERIFY(orka->waitForLines(3).contains("\"service left\""));
    m_service->tree.setProperty(FakeTree::serverPath("uuid:1"), "FriendlyName", "Attic");
    m_service->comeBack();
    QVERIFY2(orka->waitForLines(5).contains("Attic"), orka->waitForLines(5));
    QCOMPARE(orka->process().state(), QProcess::Running);
}

void tst_Truth::namesakesAreToldApart()
{
    FakeTree &tree = m_service->tree;
    const QString twin = tree.addServer("uuid:2", "Den");
    tree.addContainer(twin, "v", "Videos");
    tree.setProperty(FakeTree::serverPath("uuid:1"), "Location", "http://192.0.2.1:80/d.xml");
    tree.setProperty(twin, "Location", "http://192.0.2.2:80/d.xml");
    tree.setProperty(twin, "ModelName", "Box");
    const auto both = run({"ls", "Den"});
    QCOMPARE(both->status(), 3);
    QVERIFY2(both->errors().contains("\"Den (192.0.2.2)\", Box, upnp:/uuid:2"), both->errors());
    QVERIFY(run({"ls", "Den (192.0.2.2)"})->output().contains("Videos"));

    QElapsedTimer clock; // nothing more can come
    clock.start();
    QCOMPARE(run({"ls", "Den (192.0.2.3)"})->status(), 3);
    QVERIFY2(clock.elapsed() < 2500, QByteArray::number(clock.elapsed()));
}

/// A row tells all that the worker makes an item of, or the worker is asked.
void tst_Truth::gatheredItemsAreTheWorkersOwn()
{
    const QString odd = m_service->tree.addContainer(FakeTree::serverPath("uuid:1"), "o", "Odd");
    const QString art = "http://192.0.2.1/a?b=c d&ü";
    const QVector<QVariantMap> tracks = {
        {{"Artist", "Ann"}, {"Album", ""}, {"Genre", "Jazz"}, {"Creator", "C"}, {"Date", "2005-06"},
            {"Duration", 245}, {"AlbumArtURL", art}},
        {{"DisplayName", ""}}, {{"Duration", 2200000}}, {{"Duration", -5}},
        {{"AlbumArtURL", "https://192.0.2.1/proxy/aHR0"}}, {{"AlbumArtURL", ""}},
        {{"MIMEType", "application/ogg"}}, {{"Type", "audio"}}};
    for (int i = 0; i < tracks.size(); ++i) {
        QVariantMap track = tracks.at(i);
        track.insert("URLs", QStringList{QString("http://192.0.2.1/%1").arg(i), "http://x/"});
        m_service->tree.addTrack(odd, QByteArray::number(i), "Song", track);
    }
    m_service->tree.addTrack(odd, "none", "No address", {{"URLs", QStringList()}});
    const auto gathered = run({"--json", "queue", "Den/Odd"});
    QVERIFY2(gathered->status() == 1 && gathered->errors().contains("play it: \"No address\"."),
        gathered->errors());
    const auto quick = run({"--json", "queue", "--quick", "Den/Odd"});
    QCOMPARE(gathered->json().value("items").toArray().size(), tracks.size());
    QCOMPARE(gathered->json().value("items"), quick->json().value("items"));
}

/// However they are fetched.
void tst_Truth::samplesAreTheWorkersOwn()
{
    const QString server = FakeTree::serverPath("uuid:1");
    const QString many = m_service->tree.addContainer(server, "n", "Many");
    for (int i = 0; i < 130; ++i)
        m_service->tree.addTrack(many, QByteArray::number(i), QString::number(i));
    for (const QString sample : {"0,129,1", "3,999,1", "3,90,7", "0,500,20", "129,129,1", "4,9,100",
             "100,200,1", "60,180,40"}) {
        const QString path = "upnp:/uuid:1/6e?sample=" + QString(sample).replace(',', "%2C");
        const auto all = run({"--json", "rows", path, "--last", "200"});
        const auto own = run({"--json", "sample", "upnp:/uuid:1/6e", sample});
        QVERIFY2(own->status() == 0 && all->status() == 0, own->errors() + all->errors());
        QCOMPARE(own->json(), all->json());
        const auto five = run({"--json", "sample", "Den/Many", sample, "--rows", "2-4"});
        QCOMPARE(
            five->json()["rows"].toArray().size(), qMin(5, own->json()["rows"].toArray().size()));
    }
    const auto beyond = run({"sample", "Den/Many", "130,140,1"});
    QCOMPARE(beyond->status(), 1);
}

/// Whichever appender writes them.
void tst_Truth::logLinesAreSafe()
{
    m_service->fail({"ListChildren"}, "bad\norka: forged \u009b2J\u202e");
    QTemporaryFile configuration;
    QVERIFY(configuration.open());
    configuration.write(
        "log4cplus.rootLogger=INFO, E\nlog4cplus.appender.E=log4cplus::ConsoleAppender\n"
        "log4cplus.appender.E.logToStdErr=true\n");
    configuration.close();
    for (const QStringList &options :
        {QStringList{"-v"}, QStringList{"--log-config", configuration.fileName()}}) {
        const QByteArray said = run(options + QStringList{"ls", "Den"})->errors();
        QVERIFY2(said.contains("listChildren: bad\u240aorka: forged"), said);
        QVERIFY2(!said.contains("\u009b") && !said.contains("\u202e"), said);
    }
}

QTEST_GUILESS_MAIN(tst_Truth)
#include "tst_Truth.moc"
