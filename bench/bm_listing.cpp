// The plug-in beside the floor: what rows and property reads cost over what the bus itself costs.

#include "Comparison.h"
#include "FloorClient.h"
#include "PluginClient.h"
#include "Processes.h"

#include <QCoreApplication>

namespace {

struct Listing
{
    const char *name;
    int rows;
    int repetitions;
    double seconds;
};

void compare(
    const Listing &listing, FloorClient &floor, PluginClient &plugin, const QStringList &roles)
{
    const QString container = QStringLiteral("rows%1").arg(listing.rows);
    const std::string object = objectPath(container).toStdString();
    const auto byFloor = [&] {
        floor.list(object, 0, unsigned(listing.rows));
        return QVariant();
    };
    const auto byPlugin = [&] {
        return plugin.list(container, listing.rows, roles).toVariant();
    };
    Comparison{listing.name, listing.repetitions, listing.seconds, byFloor, "floor", byPlugin}
        .run();
}

void compareProperties(FloorClient &floor, PluginClient &plugin)
{
    const QString container = QStringLiteral("rows20");
    const std::string object = objectPath(container).toStdString();
    const auto byFloor = [&] {
        floor.readProperties(object, 200);
        return QVariant();
    };
    const auto byPlugin = [&] {
        plugin.readProperties(container, 200);
        return QVariant();
    };
    Comparison{"properties 200", 1, 3, byFloor, "floor", byPlugin}.run();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FastBus bus;
    prepareProcess();
    FloorClient floor(bus.address().toStdString());
    PluginClient plugin(bus.address());

    for (const Listing &listing : {Listing{"rows 1", 1, 10, 4}, {"rows 20", 20, 5, 4},
             {"rows 1000", 1000, 1, 6}, {"rows 10000", 10000, 1, 10}})
        compare(listing, floor, plugin, OrkaRoles::all());
    for (const Listing &listing : {Listing{"rows 1 screen", 1, 10, 3}, {"rows 20 screen", 20, 5, 3},
             {"rows 1000 screen", 1000, 1, 5}, {"rows 10000 screen", 10000, 1, 8}})
        compare(listing, floor, plugin, PluginClient::screenRoles());
    compareProperties(floor, plugin);
}
