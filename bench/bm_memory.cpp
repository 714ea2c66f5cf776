// Peak memory of a process that lists 10,000 rows, over the same process having listed one: the
// difference by rows. A program of its own, since a peak is never taken back.

#include "Figures.h"
#include "PluginClient.h"
#include "Processes.h"

#include <QCoreApplication>
#include <QFile>

namespace {

constexpr int rows = 10000;

/// VmHWM, in kilobytes.
long peakKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).simplified().split(' ').first().toLong();
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FastBus bus;
    prepareProcess();
    PluginClient plugin(bus.address());
    plugin.list(QStringLiteral("rows1"), 1, OrkaRoles::all());
    const long before = peakKilobytes();
    plugin.list(QStringLiteral("rows%1").arg(rows), rows, OrkaRoles::all());
    figures::report("memory KB a row", double(peakKilobytes() - before) / rows);
}
