// bm_chain ADDRESS PORT CONTROL-PATH CONTAINER: rows of a real media server through the whole chain
// on the session bus, beside one raw request to the same server with the same filter. CONTAINER is
// the UPnP id of a folder of 1,000 tracks or more.

#include "Comparison.h"
#include "FloorClient.h"
#include "PluginClient.h"
#include "RawBrowse.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 5) {
        std::fputs("usage: bm_chain ADDRESS PORT CONTROL-PATH CONTAINER\n", stderr);
        return 2;
    }
    const std::string container = argv[4];
    const RawBrowse raw(argv[1], QByteArray(argv[2]).toInt(), argv[3]);
    prepareProcess();
    PluginClient plugin(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    const OrkaRowsRoles server =
        plugin.list(plugin.worker().addPrefix(QString()), 0, 0, {OrkaRoles::Path()});
    const auto serverPath = server.rows().first().toList().first().value<CMPath>();
    const CMPath folder = plugin.worker().addPrefix(serverPath.base() + QLatin1Char('/')
        + QString::fromLatin1(QByteArray::fromStdString(container).toHex()));

    FloorClient floor(qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString());
    const std::string object =
        UPnPPath::fromOrka(&plugin.worker(), plugin.worker().serverList(), folder)
            .dbusPath()
            .path()
            .toStdString();
    const auto compareService = [&](const char *name, int rows) {
        const auto directly = [&] {
            raw.list(container, 0, rows);
            return QVariant();
        };
        const auto byFloor = [&] {
            floor.list(object, 0, unsigned(rows));
            return QVariant();
        };
        Comparison{name, 1, 4, directly, "raw Browse", byFloor}.run();
    };
    const auto compare = [&](const char *name, int rows, bool reads, double seconds) {
        const auto directly = [&] {
            if (reads)
                return QVariant(int(raw.read(container, 0, rows)));
            raw.list(container, 0, rows);
            return QVariant();
        };
        const auto byPlugin = [&] {
            return plugin.list(folder, 0, rows - 1, OrkaRoles::all()).toVariant();
        };
        Comparison{name, rows < 100 ? 3 : 1, seconds, directly, "raw Browse", byPlugin}.run();
    };
    compare("chain 20", 20, false, 6);
    compare("chain 1000", 1000, false, 8);
    compare("chain 20, read", 20, true, 4);
    compare("chain 1000, read", 1000, true, 6);
    // The media service alone, its replies not decoded.
    compareService("chain without plug-in 20", 20);
    compareService("chain without plug-in 1000", 1000);
    constexpr int many = 10'000;
    if (plugin.list(folder, 0, 0, {OrkaRoles::Path()}).rowsCount() < many)
        return 0;
    const auto walk = [&] {
        for (int first = 0; first < many; first += 1000)
            raw.list(container, first, 1000);
        return QVariant();
    };
    const auto listAll = [&] {
        floor.list(object, 0, many);
        return QVariant();
    };
    const auto readingWalk = [&] {
        std::size_t objects = 0;
        for (int first = 0; first < many; first += 1000)
            objects += raw.read(container, first, 1000);
        return QVariant(int(objects));
    };
    Comparison{"chain without plug-in 10000", 1, 10, walk, "raw walk", listAll}.run();
    Comparison{"chain without plug-in 10000, read", 1, 10, readingWalk, "raw walk", listAll}.run();
    return 0;
}
