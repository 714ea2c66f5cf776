#include "PluginFixture.h"

#include <QTest>

#include <algorithm>

/// Things of a size that no household has, and that a device must live through.
class tst_BigThings : public QObject
{
    Q_OBJECT

private slots:
    void walksAHundredThousandObjects_data();
    void walksAHundredThousandObjects();
    void walksAContainerNestedAThousandDeep();
    void walksAContainerThatContainsItself();
    void listsTenThousandRows();
    void preparesAThousandTimesAtOnce();
    void listsFiveHundredServersAnnouncedAtOnce();
    void aTooSmallBusLosesUrls_data();
    void aTooSmallBusLosesUrls();
};

Q_DECLARE_METATYPE(PrivateBus::Limits)

namespace {

/// A server without search, so that playing it walks its containers.
struct World : PluginFixture
{
    explicit World(PrivateBus::Limits limits = PrivateBus::Limits::Session)
        : PluginFixture(limits)
    {
        log.setLevel(log4cplus::WARN_LOG_LEVEL);
        service.fail({"SearchObjectsEx"});
    }

    QString server = service.tree.addServer("uuid:1", "Music");

    QString container(const QString &parent, const QByteArray &id)
    {
        return service.tree.addContainer(parent, id, "Folder");
    }
    void fill(const QString &parent, const QByteArray &id, int tracks)
    {
        for (int i = 0; i < tracks; ++i)
            service.tree.addTrack(parent, id + '-' + QByteArray::number(i), "Track");
    }
    /// How many items playing the whole server brings.
    int walk()
    {
        start();
        const auto probe = askPrepare({"/uuid:1?itemType=server"});
        // Listings of megabytes are longer on their way than settle() waits.
        while (probe.announcements() == 0 && !QTest::currentTestFailed())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        settle();
        return probe.value().toList().size();
    }
    /// The connection takes calls and brings answers.
    bool isAlive()
    {
        const auto probe = askData("/uuid:1");
        settle();
        return probe.outcome() == "value" && openWork() == 0;
    }
};

} // namespace

void tst_BigThings::walksAHundredThousandObjects_data()
{
    QTest::addColumn<bool>("nested");
    // Side by side, so that twelve listings of ten thousand rows are on their way at once.
    QTest::newRow("flat") << false;
    QTest::newRow("nested") << true;
}

void tst_BigThings::walksAHundredThousandObjects()
{
    QFETCH(bool, nested);
    constexpr int containers = 12;
    constexpr int tracks = 9990;
    World world;
    QString parent = world.server;
    for (int i = 0; i < containers; ++i) {
        const QByteArray id = QByteArray::number(i);
        const QString container = world.container(parent, id);
        world.fill(container, id, tracks);
        if (nested)
            parent = container;
    }
    QCOMPARE(world.walk(), containers * tracks);
    QVERIFY(world.isAlive());
}

void tst_BigThings::walksAContainerNestedAThousandDeep()
{
    World world;
    QString parent = world.server;
    for (int depth = 0; depth < 1000; ++depth)
        parent = world.container(parent, QByteArray::number(depth));
    world.fill(parent, "deep", 3);
    QCOMPARE(world.walk(), 3);
    QVERIFY(world.isAlive());
}

void tst_BigThings::walksAContainerThatContainsItself()
{
    World world;
    const QString container = world.container(world.server, "loop");
    world.fill(container, "loop", 3);
    world.service.tree.addLink(container, container);
    QCOMPARE(world.walk(), 3);
    QVERIFY(world.isAlive());
}

void tst_BigThings::listsTenThousandRows()
{
    World world;
    world.fill(world.server, "row", 10000);
    world.start();
    const auto probe = world.askRows("/uuid:1", 0, 9999, {"title", "path", "mediaData"});
    world.settle();
    QCOMPARE(probe.outcome(), "value");
    QCOMPARE(probe.value().rows().size(), 10000);
    QVERIFY(world.isAlive());
}

void tst_BigThings::preparesAThousandTimesAtOnce()
{
    World world;
    world.fill(world.server, "track", 5);
    world.start();
    QVector<ReplyProbe<QVariant>> probes;
    for (int i = 0; i < 1000; ++i)
        probes.append(world.askPrepare(
            {QStringLiteral("/uuid:1/%1?itemType=track")
                    .arg(QString::fromLatin1(("track-" + QByteArray::number(i % 5)).toHex()))}));
    world.settle();
    for (const auto &probe : probes) {
        QCOMPARE(probe.outcome(), "value");
        QCOMPARE(probe.value().toList().size(), 1);
    }
    QVERIFY(world.isAlive());
}

void tst_BigThings::listsFiveHundredServersAnnouncedAtOnce()
{
    World world;
    world.start();
    for (int i = 0; i < 500; ++i) {
        const QString udn = QStringLiteral("uuid:many-%1").arg(i);
        world.service.announceFound(world.service.tree.addServer(udn, "Server"));
    }
    world.settle();
    QCOMPARE(world.rootRows().rowsCount(), 501);
    QVERIFY(world.isAlive());
}

void tst_BigThings::aTooSmallBusLosesUrls_data()
{
    QTest::addColumn<PrivateBus::Limits>("limits");
    QTest::addColumn<bool>("isLarge");
    QTest::newRow("as on a session bus") << PrivateBus::Limits::Session << true;
    // 128 calls are under way at once: both of 64 tracks, the three of 42 servers.
    QTest::newRow("the daemon's own limits") << PrivateBus::Limits::BuiltIn << false;
}

/// Neither can be told from the answers: this is what the limits in docs/porting-to-a-device.md
/// are for, and what orka doctor looks at.
void tst_BigThings::aTooSmallBusLosesUrls()
{
    QFETCH(PrivateBus::Limits, limits);
    World world(limits);
    world.fill(world.server, "track", 200);
    world.start();
    QStringList paths;
    for (int i = 0; i < 200; ++i)
        paths.append(QStringLiteral("/uuid:1/%1?itemType=track")
                         .arg(QString::fromLatin1(("track-" + QByteArray::number(i)).toHex())));
    const auto probe = world.askPrepare(paths);
    world.settle();
    QCOMPARE(probe.outcome(), "value");
    const QVariantList items = probe.value().toList();
    const auto withUrl = std::count_if(items.begin(), items.end(), [](const QVariant &item) {
        return !OrkaPlayListItem(OrkaHash::fromVariant(item)).url().isEmpty();
    });
    QTEST(withUrl == 200, "isLarge");

    for (int i = 0; i < 100; ++i) {
        const QString udn = QStringLiteral("uuid:many-%1").arg(i);
        world.service.announceFound(world.service.tree.addServer(udn, "Server"));
    }
    world.settle();
    QTEST(world.rootRows().rowsCount() == 101, "isLarge");
}

QTEST_GUILESS_MAIN(tst_BigThings)
#include "tst_BigThings.moc"
