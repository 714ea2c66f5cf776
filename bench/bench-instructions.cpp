// Does one piece of work under callgrind, which counts the instructions of that piece alone:
//   bench-instructions WORK COUNT
// Everything before and after runs uncounted; all threads of this process are counted.

#include "FloorClient.h"
#include "ObjectMapping.h"
#include "PluginClient.h"
#include "Processes.h"
#include "PropertyMaps.h"
#include "UPnPServerList.h"

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <valgrind/callgrind.h>

extern "C" void *worker_create(const char *name, void *config);

namespace {

constexpr int manyServers = 100;
const QString objectId = QStringLiteral("64$1$2F$1234");

/// What is counted, `count` times.
struct Bench
{
    const FastBus &bus;
    int count;

    QString container() const { return QStringLiteral("rows%1").arg(count); }
};

/// Without what it takes to throw the result away.
template<typename Work>
void countOnce(const Work &work)
{
    CALLGRIND_START_INSTRUMENTATION;
    const auto result = work();
    CALLGRIND_STOP_INSTRUMENTATION;
}

template<typename Work>
void counted(const Work &work)
{
    work();
    countOnce(work);
}

void floorListing(const Bench &bench)
{
    FloorClient floor(bench.bus.address().toStdString());
    const std::string object = objectPath(bench.container()).toStdString();
    counted([&] {
        floor.list(object, 0, unsigned(bench.count));
        return 0;
    });
}

void listing(const Bench &bench, const QStringList &roles)
{
    PluginClient plugin(bench.bus.address());
    counted([&] { return plugin.list(bench.container(), bench.count, roles); });
}

/// `map` makes something of each object of a listing.
template<typename Map>
void mapping(const Bench &bench, const QStringList &roles, const Map &map)
{
    PluginClient plugin(bench.bus.address());
    const PropertyMaps maps = readPropertyMaps(bench.container(), bench.count);
    const QVector<ObjectProperties> objects = asProperties(maps);
    counted([&] {
        ObjectMapping mapping = plugin.worker().mapping();
        mapping.setRoles(roles);
        std::vector<decltype(map(mapping, objects.first(), maps.first()))> made;
        made.reserve(std::size_t(bench.count));
        for (int i = 0; i < bench.count; ++i)
            made.push_back(map(mapping, objects.at(i), maps.at(i)));
        return made;
    });
}

auto row(ObjectMapping &mapping, const ObjectProperties &object, const QVariantMap &)
{
    return mapping.row(object);
}

auto rowOfMap(ObjectMapping &mapping, const ObjectProperties &, const QVariantMap &map)
{
    return mapping.row(ObjectProperties(map));
}

auto playListItem(ObjectMapping &mapping, const ObjectProperties &object, const QVariantMap &)
{
    return mapping.playListItem(object);
}

/// Paths of one object of every server in turn, so that each server is looked up.
void fromService(const Bench &bench)
{
    PluginClient plugin(bench.bus.address(), manyServers);
    CMUPnPWorker &worker = plugin.worker();
    QVector<QDBusObjectPath> paths;
    for (int i = 0; i < manyServers; ++i)
        paths.append(QDBusObjectPath(objectPath(objectId, i)));
    counted([&] {
        for (int i = 0; i < bench.count; ++i)
            UPnPPath::fromDleyna(&worker, worker.serverList(), paths.at(i % manyServers), {});
        return 0;
    });
}

void toService(const Bench &bench)
{
    PluginClient plugin(bench.bus.address(), manyServers);
    CMUPnPWorker &worker = plugin.worker();
    QVector<UPnPPath> paths;
    for (int i = 0; i < manyServers; ++i)
        paths.append(UPnPPath::fromOrka(&worker, worker.serverList(), plugin.path(objectId, i)));
    counted([&] {
        for (int i = 0; i < bench.count; ++i)
            paths.at(i % manyServers).dbusPath();
        return 0;
    });
}

/// A listing's two calls in turn; the service doesn't answer meanwhile, so nothing else is counted.
void calls(const Bench &bench)
{
    PluginClient plugin(bench.bus.address());
    const QDBusObjectPath container(objectPath(QStringLiteral("rows1")));
    bench.bus.setAnswering(false);
    counted([&] {
        QVector<QDBusPendingCall> issued;
        for (int i = 0; i < bench.count; i += 2) {
            const OrgGnomeUPnPMediaContainer2Interface proxy(
                dleyna::service(), container.path(), orkaDBusConnection());
            issued << proxy.ListChildren(0, 20, plugin.worker().propertyFilter())
                   << getPropertyAsync(dleyna::service(), container, dleyna::mediaObjectInterface(),
                          QStringLiteral("ChildCount"));
        }
        return issued;
    });
    bench.bus.setAnswering(true);
}

std::unique_ptr<CMSyncWorker> startWorker()
{
    QHash<QString, QVariant> config{{CMWorker::Prefix_(), QStringLiteral("upnp")}};
    return std::unique_ptr<CMSyncWorker>(
        static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
}

/// The first `count` workers of the process.
void starts(const Bench &bench)
{
    orkaOpenDBusConnection(bench.bus.address());
    bench.bus.setAnswering(false);
    countOnce([&] {
        std::vector<std::unique_ptr<CMSyncWorker>> workers;
        for (int i = 0; i < bench.count; ++i)
            workers.push_back(startWorker());
        return workers;
    });
    bench.bus.setAnswering(true);
}

const QHash<QString, std::function<void(const Bench &)>> &works()
{
    static const QStringList all = OrkaRoles::all();
    static const QStringList screen = PluginClient::screenRoles();
    static const QHash<QString, std::function<void(const Bench &)>> table{
        {"floor", floorListing},
        {"rows",
            [](const Bench &bench) {
                listing(bench, all);
            }},
        {"screen-rows",
            [](const Bench &bench) {
                listing(bench, screen);
            }},
        {"mapping",
            [](const Bench &bench) {
                mapping(bench, all, row);
            }},
        {"screen-mapping",
            [](const Bench &bench) {
                mapping(bench, screen, row);
            }},
        {"map-mapping",
            [](const Bench &bench) {
                mapping(bench, all, rowOfMap);
            }},
        {"items",
            [](const Bench &bench) {
                mapping(bench, all, playListItem);
            }},
        {"from-service", fromService},
        {"to-service", toService},
        {"calls", calls},
        {"starts", starts},
    };
    return table;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const auto work = works().value(QString::fromLocal8Bit(argc == 3 ? argv[1] : ""));
    const int count = argc == 3 ? QByteArray(argv[2]).toInt() : 0;
    if (count < 1 || !work) {
        std::fprintf(stderr, "usage: bench-instructions WORK COUNT\nWORK is one of %s.\n",
            qPrintable(QStringList(works().keys()).join(QStringLiteral(", "))));
        return 2;
    }
    const bool needsServers = QByteArray(argv[1]).endsWith("-service");
    const FastBus bus(needsServers ? manyServers : 1);
    prepareProcess();
    work({bus, count});
}
