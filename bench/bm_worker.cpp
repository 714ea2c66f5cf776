// A worker's life: how long it takes to make one, when its server shows, how long its longest turn
// of the event loop is while a big answer is made, and how many messages a listing takes.

#include "Figures.h"
#include "PluginClient.h"
#include "Processes.h"
#include "ServiceCounters.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <algorithm>

extern "C" void *worker_create(const char *name, void *config);

namespace {

constexpr int starts = 200;
constexpr int listings = 12;
constexpr int bigListing = 10000;
constexpr int manyTracks = 1000;

using figures::now;

/// Handles events until `isDone`. Returns the processor time of the longest turn, in seconds.
template<typename Condition>
double turnUntil(Condition isDone)
{
    double longest = 0;
    while (!isDone()) {
        const double start = figures::threadTime();
        QAbstractEventDispatcher::instance()->processEvents(
            QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        longest = std::max(longest, figures::threadTime() - start);
    }
    return longest;
}

double longestTurnToIdle()
{
    double longest = 0;
    bool isIdle = false;
    while (!isIdle) {
        const double start = figures::threadTime();
        isIdle = !QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
        longest = std::max(longest, figures::threadTime() - start);
    }
    return longest;
}

struct Start
{
    double created;
    double visible;
};

/// One start of a worker, on a bus whose connection is there.
Start startWorker()
{
    QHash<QString, QVariant> config{{CMWorker::Prefix_(), QStringLiteral("upnp")}};
    const double start = now();
    const std::unique_ptr<CMSyncWorker> sync(
        static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
    const double created = now() - start;

    double shown = 0;
    QObject::connect(sync->worker(), &CMAbstractWorker::rowsChanged, [&shown] { shown = now(); });
    turnUntil([&shown] { return shown > 0; });
    return {created, shown - ServiceCounters::read().lastProperty};
}

void measureStarts()
{
    const double first = startWorker().created;
    QVector<double> created;
    QVector<double> visible;
    for (int i = 0; i < starts; ++i) {
        const Start start = startWorker();
        created.append(start.created * 1e3);
        visible.append(start.visible * 1e3);
    }
    figures::report("start first ms", first * 1e3);
    figures::report("start ms", figures::median(created));
    figures::report("server visible ms", figures::median(visible));
}

void measureTurns(PluginClient &plugin)
{
    QVector<double> longest;
    // Kept, as whoever shows rows keeps them: throwing an answer away is not the worker's turn.
    QVector<CMReply<OrkaRowsRoles>> replies(listings);
    for (const CMReply<OrkaRowsRoles> &reply : qAsConst(replies)) {
        plugin.worker().getRowsRequest({plugin.path(QStringLiteral("rows%1").arg(bigListing)), 0,
            bigListing - 1, -1, OrkaRoles::all(), reply});
        longest.append(turnUntil([&reply] { return reply.isFinished(); }) * 1e3);
    }
    figures::report("longest turn ms", figures::median(longest));
    figures::report("longest turn worst ms", *std::max_element(longest.begin(), longest.end()));
}

/// Of a playlist's preparation, to the end of what it leaves to clean up.
void measurePlaylist(PluginClient &plugin, const char *figure, const QVariantList &paths)
{
    const CMReply<QVariant> reply;
    const CMPath prepare(plugin.path({}).prefix(), OrkaPlayListPrepareItems());
    const double start = figures::threadTime();
    plugin.worker().setDataRequest({prepare, paths, reply});
    const double first = figures::threadTime() - start;
    const double later = turnUntil([&reply] { return reply.isFinished(); });
    figures::report(figure, std::max({first, later, longestTurnToIdle()}) * 1e3);
}

void measurePlaylists(PluginClient &plugin)
{
    QVariantList tracks;
    for (int i = 0; i < manyTracks; ++i) {
        CMPath path = plugin.path(QStringLiteral("track%1").arg(i));
        path.addParam(QStringLiteral("itemType"), QStringLiteral("track"));
        tracks.append(path.toEncoded());
    }
    measurePlaylist(plugin, "longest turn of tracks ms", tracks);
    // A folder with nothing but sub-containers, as many as are read of one.
    measurePlaylist(plugin, "longest turn of a walk ms",
        {plugin.path(QStringLiteral("wide%1").arg(bigListing)).toEncoded()});
}

void countMessages(PluginClient &plugin)
{
    ServiceCounters::read();
    for (int i = 0; i < listings; ++i)
        plugin.list(QStringLiteral("rows20"), 20, OrkaRoles::all());
    figures::report("messages a listing", double(ServiceCounters::read().calls) / listings);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FastBus bus;
    prepareProcess();
    orkaOpenDBusConnection(bus.address());
    measureStarts();
    PluginClient plugin(bus.address());
    measurePlaylists(plugin);
    measureTurns(plugin);
    countMessages(plugin);
}
