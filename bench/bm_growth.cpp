// bm_growth FILE: what a row, a page's row, a server, a level and a request cost when there are
// many of them. The figures go to standard output, the plot of all to FILE.

#include "Figures.h"
#include "Plot.h"
#include "PluginClient.h"
#include "Processes.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <functional>

namespace {

constexpr int pageSize = 1000;
constexpr double secondsForAPoint = 0.4;

/// Median processor time of `work`, in seconds, after once for nothing: that of the plug-in's
/// process, both its threads, which other programs on the machine hardly touch.
double medianSeconds(const std::function<void()> &work)
{
    work();
    QVector<double> times;
    const double end = figures::now() + secondsForAPoint;
    while (times.size() < 3 || (figures::now() < end && times.size() < 300)) {
        const double start = figures::processTime();
        work();
        times.append(figures::processTime() - start);
    }
    return figures::median(times);
}

/// Does `work(count)` for each count; costs are in microseconds.
Curve measure(const QString &title, const QString &unit, const QVector<double> &counts,
    const std::function<void(int)> &work)
{
    Curve curve{title, unit, counts, {}};
    for (const double count : counts) {
        curve.costs.append(medianSeconds([&] { work(int(count)); }) / count * 1e6);
        figures::report(qPrintable(QStringLiteral("%1, %2, %3").arg(title).arg(count).arg(unit)),
            curve.costs.last());
    }
    return curve;
}

void readInPages(PluginClient &plugin, int rows)
{
    const QString container = QStringLiteral("rows%1").arg(rows);
    for (int first = 0; first < rows; first += pageSize)
        plugin.list(
            container, first, qMin(first + pageSize, rows) - 1, PluginClient::screenRoles());
}

QVector<Curve> measureOneServer()
{
    const FastBus bus;
    PluginClient plugin(bus.address());
    const QStringList roles = OrkaRoles::all();
    QVector<Curve> curves;
    curves.append(measure(QStringLiteral("rows in one request"), QStringLiteral("µs a row"),
        {1, 3, 10, 30, 100, 300, 1000, 3000, 10000, 30000, 50000},
        [&](int rows) { plugin.list(QStringLiteral("rows%1").arg(rows), rows, roles); }));
    curves.append(measure(QStringLiteral("rows in pages of 1,000"), QStringLiteral("µs a row"),
        {1000, 3000, 10000, 30000, 100000}, [&](int rows) { readInPages(plugin, rows); }));
    curves.append(measure(QStringLiteral("containers inside each other"),
        QStringLiteral("µs a level"), {1, 3, 10, 30, 100, 300, 1000},
        [&](int depth) { plugin.queue(QStringLiteral("deep%1").arg(depth)); }));
    curves.append(measure(QStringLiteral("requests in flight, 20 rows each"),
        QStringLiteral("µs a request"), {1, 3, 10, 30, 100, 300, 1000},
        [&](int requests) { plugin.listMany(QStringLiteral("rows20"), 20, roles, requests); }));
    return curves;
}

/// Each count has a service of its own. From a worker's start until all rows are there.
Curve measureServers()
{
    Curve curve{QStringLiteral("servers"), QStringLiteral("µs a server"),
        {1, 3, 10, 30, 100, 300, 500}, {}};
    for (const double count : qAsConst(curve.counts)) {
        const int servers = int(count);
        const FastBus bus(servers);
        curve.costs.append(
            medianSeconds([&] { PluginClient(bus.address(), servers); }) / count * 1e6);
        figures::report(
            qPrintable(QStringLiteral("%1, %2, %3").arg(curve.title).arg(count).arg(curve.unit)),
            curve.costs.last());
    }
    return curve;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QFile plot(QString::fromLocal8Bit(argc == 2 ? argv[1] : ""));
    if (!plot.open(QIODevice::WriteOnly)) {
        std::fputs("usage: bm_growth FILE, where the plot may be written to\n", stderr);
        return 2;
    }
    prepareProcess();
    QVector<Curve> curves = measureOneServer();
    curves.append(measureServers());
    plot.write(drawPlots(curves).toUtf8());
}
