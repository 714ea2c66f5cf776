// Does one piece of work under callgrind, which counts the instructions of that piece alone:
//   bench-instructions floor|rows|screen-rows|mapping|screen-mapping COUNT
// Everything before and after runs uncounted; all threads of this process are counted.

#include "FloorClient.h"
#include "ObjectMapping.h"
#include "PluginClient.h"
#include "Processes.h"
#include "PropertyMaps.h"

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <valgrind/callgrind.h>

namespace {

/// Without what it takes to throw the result away.
void counted(const std::function<QVariant()> &work)
{
    work();
    CALLGRIND_START_INSTRUMENTATION;
    const QVariant result = work();
    CALLGRIND_STOP_INSTRUMENTATION;
}

void countMapping(PluginClient &plugin, int count, const QStringList &roles)
{
    const QVector<ObjectProperties> objects =
        asProperties(readPropertyMaps(QStringLiteral("rows%1").arg(count), count));
    counted([&] {
        ObjectMapping mapping = plugin.worker().mapping();
        mapping.setRoles(roles);
        QVariantList rows;
        rows.reserve(count);
        for (const ObjectProperties &object : objects)
            rows.append(QVariant(mapping.row(object)));
        return rows;
    });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString what = QString::fromLocal8Bit(argc == 3 ? argv[1] : "");
    const int count = argc == 3 ? QByteArray(argv[2]).toInt() : 0;
    if (count < 1) {
        std::fputs(
            "usage: bench-instructions floor|rows|screen-rows|mapping|screen-mapping COUNT\n",
            stderr);
        return 2;
    }
    const FastBus bus;
    prepareProcess();
    const QString container = QStringLiteral("rows%1").arg(count);
    if (what == QLatin1String("floor")) {
        FloorClient floor(bus.address().toStdString());
        const std::string object = objectPath(container).toStdString();
        counted([&] {
            floor.list(object, 0, unsigned(count));
            return QVariant();
        });
        return 0;
    }
    PluginClient plugin(bus.address());
    const bool screen = what.startsWith(QLatin1String("screen"));
    const QStringList roles = screen ? PluginClient::screenRoles() : OrkaRoles::all();
    if (what.endsWith(QLatin1String("mapping")))
        countMapping(plugin, count, roles);
    else
        counted([&] { return plugin.list(container, count, roles).toVariant(); });
}
