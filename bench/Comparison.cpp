#include "Comparison.h"

#include "Figures.h"

namespace {

double timed(const Comparison::Work &work, int repetitions)
{
    double seconds = 0;
    for (int i = 0; i < repetitions; ++i) {
        const double start = figures::now();
        const QVariant answer = work();
        seconds += figures::now() - start;
    }
    return seconds / repetitions;
}

} // namespace

void Comparison::run() const
{
    QVector<double> ratios;
    QVector<double> bases;
    QVector<double> plugins;
    timed(base, 2);
    timed(plugin, 2);
    const double end = figures::now() + seconds;
    while (figures::now() < end || ratios.size() < 5) {
        bases.append(timed(base, repetitions));
        plugins.append(timed(plugin, repetitions));
        ratios.append(plugins.last() / bases.last());
    }
    const QByteArray prefix = name;
    figures::report(prefix, figures::median(ratios));
    figures::report(prefix + ' ' + baseName + " µs", figures::median(bases) * 1e6);
    figures::report(prefix + " plug-in µs", figures::median(plugins) * 1e6);
}
