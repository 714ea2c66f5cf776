// A worker's life: when its server shows, how long its longest turn of the event loop is while a
// big answer is made, and how many messages a listing takes. Times are told over others of the same
// run.

#include "Figures.h"
#include "FloorClient.h"
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
constexpr int playlists = 5;
constexpr int slices = 60;
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

/// `what`, in seconds, over what it is compared with.
void reportOver(const char *figure, double what, double base)
{
    figures::report(figure, what / base);
    figures::report((QByteArray(figure) + ", ms").constData(), what * 1e3);
}

/// Of the answer to the worker's last question about its server until the server's row is there.
double timeToShow()
{
    QHash<QString, QVariant> config{{CMWorker::Prefix_(), QStringLiteral("upnp")}};
    const std::unique_ptr<CMSyncWorker> sync(
        static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
    double shown = 0;
    QObject::connect(sync->worker(), &CMAbstractWorker::rowsChanged, [&shown] { shown = now(); });
    turnUntil([&shown] { return shown > 0; });
    return shown - ServiceCounters::read().lastProperty;
}

/// Over one property read by the floor, there and back.
void measureStarts(const FastBus &bus)
{
    FloorClient floor(bus.address().toStdString());
    const std::string object = objectPath(QStringLiteral("rows1")).toStdString();
    QVector<double> shown;
    QVector<double> reads;
    for (int i = 0; i < starts; ++i) {
        shown.append(timeToShow());
        const double start = now();
        floor.readProperties(object, 1);
        reads.append(now() - start);
    }
    reportOver("server visible", figures::median(shown), figures::median(reads));
}

/// Whatever else the machine does only adds.
double least(const QVector<double> &seconds)
{
    return *std::min_element(seconds.begin(), seconds.end());
}

/// What the worker's thread takes to list a hundred rows, in seconds: a slice of every long work is
/// about as much.
double slice(PluginClient &plugin)
{
    QVector<double> times;
    for (int i = 0; i < slices; ++i) {
        const double start = figures::threadTime();
        plugin.list(QStringLiteral("rows100"), 100, OrkaRoles::all());
        times.append(figures::threadTime() - start);
    }
    return least(times);
}

void measureTurns(PluginClient &plugin)
{
    QVector<double> longest;
    // Kept, as whoever shows rows keeps them: throwing an answer away is not the worker's turn.
    QVector<CMReply<OrkaRowsRoles>> replies(listings);
    for (const CMReply<OrkaRowsRoles> &reply : qAsConst(replies)) {
        plugin.worker().getRowsRequest({plugin.path(QStringLiteral("rows%1").arg(bigListing)), 0,
            bigListing - 1, -1, OrkaRoles::all(), reply});
        longest.append(turnUntil([&reply] { return reply.isFinished(); }));
    }
    reportOver("longest turn", least(longest), slice(plugin));
}

/// Of a playlist's preparation, to the end of what it leaves to clean up.
double playlistTurn(PluginClient &plugin, const QVariantList &paths)
{
    const CMReply<QVariant> reply;
    const CMPath prepare(plugin.path({}).prefix(), OrkaPlayListPrepareItems());
    const double start = figures::threadTime();
    plugin.worker().setDataRequest({prepare, paths, reply});
    const double first = figures::threadTime() - start;
    const double later = turnUntil([&reply] { return reply.isFinished(); });
    return std::max({first, later, longestTurnToIdle()});
}

void measurePlaylist(PluginClient &plugin, const char *figure, const QVariantList &paths)
{
    QVector<double> longest;
    for (int i = 0; i < playlists; ++i)
        longest.append(playlistTurn(plugin, paths));
    reportOver(figure, least(longest), slice(plugin));
}

void measurePlaylists(PluginClient &plugin)
{
    QVariantList tracks;
    for (int i = 0; i < manyTracks; ++i) {
        CMPath path = plugin.path(QStringLiteral("track%1").arg(i));
        path.addParam(QStringLiteral("itemType"), QStringLiteral("track"));
        tracks.append(path.toEncoded());
    }
    measurePlaylist(plugin, "longest turn of tracks", tracks);
    // A folder with nothing but sub-containers, as many as are read of one.
    measurePlaylist(plugin, "longest turn of a walk",
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
    measureStarts(bus);
    PluginClient plugin(bus.address());
    measurePlaylists(plugin);
    measureTurns(plugin);
    countMessages(plugin);
}
