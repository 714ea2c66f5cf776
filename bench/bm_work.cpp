// The plug-in's own work without the bus: mapping, playlist items, path translation; and what it
// takes to issue a call. On real property maps, a hundred servers known.

#include "DBusBarrier.h"
#include "ObjectMapping.h"
#include "PluginClient.h"
#include "Processes.h"
#include "PropertyMaps.h"
#include "UPnPServerList.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <benchmark/benchmark.h>
#include <memory>

namespace {

constexpr int servers = 100;
constexpr int issuedAtOnce = 100;
std::unique_ptr<PluginClient> plugin;
PropertyMaps maps;

/// Of objects as the rows path reads them; with `fromMaps`, of maps as GetAll brings them.
void mapRows(benchmark::State &state, const QStringList &roles, bool fromMaps = false)
{
    const QVector<ObjectProperties> objects = asProperties(maps);
    for (auto _ : state) {
        ObjectMapping mapping = plugin->worker().mapping();
        mapping.setRoles(roles);
        for (int i = 0; i < maps.size(); ++i)
            benchmark::DoNotOptimize(
                mapping.row(fromMaps ? ObjectProperties(maps.at(i)) : objects.at(i)));
    }
    state.SetItemsProcessed(state.iterations() * maps.size());
}

void mappingAllRoles(benchmark::State &state)
{
    mapRows(state, OrkaRoles::all());
}

void mappingScreenRoles(benchmark::State &state)
{
    mapRows(state, PluginClient::screenRoles());
}

void mappingFromMaps(benchmark::State &state)
{
    mapRows(state, OrkaRoles::all(), true);
}

void playlistItem(benchmark::State &state)
{
    const QVector<ObjectProperties> objects = asProperties(maps);
    for (auto _ : state) {
        ObjectMapping mapping = plugin->worker().mapping();
        for (const ObjectProperties &object : objects)
            benchmark::DoNotOptimize(mapping.playListItem(object));
    }
    state.SetItemsProcessed(state.iterations() * maps.size());
}

/// Another server every time, so that each is looked up.
void pathFromService(benchmark::State &state)
{
    QVector<QDBusObjectPath> paths;
    for (int i = 0; i < servers; ++i)
        paths.append(QDBusObjectPath(objectPath(QStringLiteral("64$1$2F$1234"), i)));
    for (auto _ : state) {
        for (const QDBusObjectPath &path : qAsConst(paths))
            benchmark::DoNotOptimize(
                UPnPPath::fromDleyna(&plugin->worker(), plugin->worker().serverList(), path, {}));
    }
    state.SetItemsProcessed(state.iterations() * servers);
}

void pathToService(benchmark::State &state)
{
    QVector<UPnPPath> paths;
    for (int i = 0; i < servers; ++i)
        paths.append(UPnPPath::fromOrka(&plugin->worker(), plugin->worker().serverList(),
            plugin->path(QStringLiteral("64$1$2F$1234"), i)));
    for (auto _ : state) {
        for (const UPnPPath &path : qAsConst(paths))
            benchmark::DoNotOptimize(path.dbusPath());
    }
    state.SetItemsProcessed(state.iterations() * servers);
}

void waitForAll(const QVector<QDBusPendingCall> &calls)
{
    DBusBarrier barrier(nullptr);
    for (const QDBusPendingCall &call : calls)
        barrier.addCall(QStringLiteral("call"), call);
    QEventLoop loop;
    QObject::connect(&barrier, &DBusBarrier::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

QDBusPendingCall listChildren(const QDBusObjectPath &container)
{
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), container.path(), orkaDBusConnection());
    return proxy.ListChildren(0, 20, plugin->worker().propertyFilter());
}

QDBusPendingCall getChildCount(const QDBusObjectPath &container)
{
    return getPropertyAsync(
        dleyna::service(), container, dleyna::mediaObjectInterface(), QStringLiteral("ChildCount"));
}

/// As a listing issues them, a call of every one of `issues` in turn. The replies are waited
/// for outside the measured stretch.
template<typename... Issue>
void issueCalls(benchmark::State &state, Issue... issues)
{
    const QDBusObjectPath container(objectPath(QStringLiteral("rows1")));
    QVector<QDBusPendingCall> calls;
    calls.reserve(issuedAtOnce);
    for (auto _ : state) {
        while (calls.size() < issuedAtOnce)
            (calls.append(issues(container)), ...);
        state.PauseTiming();
        waitForAll(calls);
        calls.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * issuedAtOnce);
}

/// A listing's two calls.
void issueCall(benchmark::State &state)
{
    issueCalls(state, listChildren, getChildCount);
}

void issueListChildren(benchmark::State &state)
{
    issueCalls(state, listChildren);
}

void issueGet(benchmark::State &state)
{
    issueCalls(state, getChildCount);
}

} // namespace

BENCHMARK(mappingAllRoles);
BENCHMARK(mappingScreenRoles);
BENCHMARK(mappingFromMaps);
BENCHMARK(playlistItem);
BENCHMARK(pathFromService);
BENCHMARK(pathToService);
BENCHMARK(issueCall);
BENCHMARK(issueListChildren);
BENCHMARK(issueGet);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    const QCoreApplication application(argc, argv);
    const FastBus bus(servers);
    prepareProcess();
    plugin = std::make_unique<PluginClient>(bus.address(), servers);
    maps = readPropertyMaps(QStringLiteral("rows100"), 100);
    benchmark::RunSpecifiedBenchmarks();
    plugin.reset();
}
