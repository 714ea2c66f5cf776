// The fault campaign: soak [SECONDS [SEED [ROUND]]]. With a round, that round alone is replayed.

#include "PrivateBus.h"
#include "Round.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMutex>

#include <algorithm>
#include <cstdio>
#include <malloc.h>

namespace {

/// Bytes from the second to the last quarter of a campaign. The D-Bus library keeps buffers of the
/// size of the largest message, so some megabytes come and go; a request that leaked, of many
/// thousands, would be more.
constexpr qint64 growthAllowed = 3 * 1024 * 1024;
constexpr int roundsToSeeGrowth = 40;

QMutex warningsMutex;
QStringList warnings;

/// What Qt warns of is a fault of the program, and comes from any thread. Only that a call names an
/// object that can't be is no more than what was asked for, and that a service is back before it
/// was missed is what the campaign does.
void keepWarning(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (message.startsWith(QLatin1String("QDBusConnection: error: could not send message to"))
        || message.contains(QLatin1String("' but we thought it was '")))
        return;
    const QMutexLocker lock(&warningsMutex);
    warnings.append(message);
}

/// What is in use at the lowest point of a quarter of the rounds, from 0.
[[maybe_unused]] qint64 base(const QVector<qint64> &heap, int quarter)
{
    const auto begin = heap.begin() + heap.size() / 4 * quarter;
    return *std::min_element(begin, begin + heap.size() / 4);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(keepWarning);
    const QStringList arguments = QCoreApplication::arguments() + QStringList{"", "", ""};
    const qint64 seconds = argc > 1 ? arguments[1].toLongLong() : 60;
    const quint32 seed = argc > 2 ? arguments[2].toUInt() : std::random_device()();
    quint32 round = arguments[3].toUInt();

    const PrivateBus bus;
    FakeMediaService service(bus);
    QVector<qint64> heap;
    QStringList failures;
    int requests = 0;
    QElapsedTimer clock;
    clock.start();
    do {
        std::seed_seq words{seed, round++};
        Round one(std::mt19937_64(words)(), service);
        one.run();
        requests += one.requests();
        failures = one.failures + std::exchange(warnings, {});
        heap.append(qint64(mallinfo2().uordblks));
    } while (argc <= 3 && failures.isEmpty() && clock.elapsed() < seconds * 1000);

    std::printf("%d rounds of seed %u, %d requests\n", heap.size(), seed, requests);
    for (const QString &failure : qAsConst(failures))
        std::printf("FAILED: %s\n", qPrintable(failure));
    if (!failures.isEmpty())
        std::printf("Replay it: soak 0 %u %u\n", seed, round - 1);
#ifndef __SANITIZE_ADDRESS__ // which finds leaks itself
    if (heap.size() >= roundsToSeeGrowth && base(heap, 3) - base(heap, 1) > growthAllowed) {
        std::printf(
            "FAILED: the heap has grown from %lld to %lld bytes.\n", base(heap, 1), base(heap, 3));
        return 1;
    }
#endif
    return failures.isEmpty() ? 0 : 1;
}
