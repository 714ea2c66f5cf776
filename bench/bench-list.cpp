// bench-list floor|plugin CONTAINER COUNT: lists a container of the fast service on the session bus
// once and ends: the smallest program that does so by libdbus or by the plug-in.

#include "FloorClient.h"
#include "PluginClient.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QByteArray by = argc == 4 ? argv[1] : "";
    const int count = argc == 4 ? QByteArray(argv[3]).toInt() : 0;
    if (count < 1 || (by != "floor" && by != "plugin")) {
        std::fputs("usage: bench-list floor|plugin CONTAINER COUNT\n", stderr);
        return 2;
    }
    const QString bus = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString container = QString::fromLocal8Bit(argv[2]);
    if (by == "floor") {
        FloorClient(bus.toStdString())
            .list(objectPath(container).toStdString(), 0, unsigned(count));
        return 0;
    }
    prepareProcess();
    PluginClient(bus).list(container, count, OrkaRoles::all());
}
