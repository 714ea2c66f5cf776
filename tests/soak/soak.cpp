// The fault campaign: soak [SECONDS [SEED [ROUND]]]. With a round, that round alone is replayed.

#include "PrivateBus.h"
#include "Round.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMutex>

#include <cstdio>
#include <malloc.h>
#include <random>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

#ifdef __OPTIMIZE__
constexpr bool isOptimised = true;
#else
constexpr bool isOptimised = false;
#endif

/// Milliseconds; code that isn't optimised or that watches itself is several times slower.
constexpr double silenceAllowed = isInstrumented ? 500 : isOptimised ? 50 : 150;
/// Bytes from the second to the last quarter of a campaign. The D-Bus library keeps buffers of the
/// size of the largest message, so some megabytes come and go; a request that leaked, of many
/// thousands, would be more. AddressSanitizer's builds find what leaks less often.
constexpr qint64 growthAllowed = 3 * 1024 * 1024;
constexpr int roundsToSeeGrowth = 40;

QMutex warningsMutex;
QStringList warnings;

/// What Qt warns of is a fault of the program, and comes from any thread. Only that a call names an
/// object that can't be is no more than what was asked for, and that a service is back before it
/// was missed is what the campaign does.
void keepWarning(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (message.startsWith(QLatin1String("QDBusConnection: error: could not send message to"))
        || message.contains(QLatin1String("' but we thought it was '")))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    const QMutexLocker lock(&warningsMutex);
    warnings.append(message);
}

/// Rounds with neighbouring numbers have nothing in common.
quint64 seedOfRound(quint64 seed, int round)
{
    std::seed_seq sequence{quint32(seed), quint32(seed >> 32), quint32(round)};
    quint32 words[2];
    sequence.generate(words, words + 2);
    return quint64(words[0]) << 32 | words[1];
}

struct Campaign
{
    const PrivateBus bus;
    FakeMediaService service{bus};
    WorkerThread worker;
    PulsedThread idle{PulsedThread::Counted};
    Tally tally;

    double silenceOfRound(quint64 seed);
    void runRound(quint64 seed);
    bool isGood(quint64 seed, int lastRound) const;
};

/// Runs a round and returns how long its event loop was silent. A machine that has more to do than
/// processors also stops threads that hold a lock; so where a thread that does nothing had to wait
/// too, nothing is known, and the round runs again.
double Campaign::silenceOfRound(quint64 seed)
{
    for (int again = 0; again < 5; ++again) {
        idle.takeLongestSilence();
        Round(seed, service, worker, tally).run();
        const double silence = worker.takeLongestSilence();
        if (silence < silenceAllowed || idle.takeLongestSilence() < silenceAllowed / 2)
            return silence;
        ++tally.silencesUnknown;
    }
    return 0;
}

void Campaign::runRound(quint64 seed)
{
    const double silence = silenceOfRound(seed);
    tally.longestSilence = qMax(tally.longestSilence, silence);
    if (silence > silenceAllowed)
        tally.failures.append(QString("The event loop did nothing else for %1 ms.").arg(silence));
    const QMutexLocker lock(&warningsMutex);
    tally.failures += std::exchange(warnings, {});
    tally.heap.append(qint64(mallinfo2().uordblks));
}

/// Says what was found and how to see it again.
bool Campaign::isGood(quint64 seed, int lastRound) const
{
    std::printf("\n%s\n", qPrintable(tally.table()));
    for (const QString &failure : tally.failures)
        std::printf("FAILED: %s\n", qPrintable(failure));
    if (!tally.failures.isEmpty()) {
        std::printf(
            "Replay it: soak 0 %llu %d\n", static_cast<unsigned long long>(seed), lastRound);
        return false;
    }
    if (isInstrumented || tally.rounds < roundsToSeeGrowth || tally.growth() <= growthAllowed)
        return true;
    std::printf("FAILED: the heap has grown from round to round; KiB after each:");
    for (const qint64 bytes : tally.heap)
        std::printf(" %lld", static_cast<long long>(bytes / 1024));
    std::printf("\n");
    return false;
}

quint64 argument(const QStringList &arguments, int index, quint64 otherwise)
{
    bool isNumber = true;
    const quint64 value =
        arguments.size() > index ? arguments.at(index).toULongLong(&isNumber) : otherwise;
    if (!isNumber) {
        std::fprintf(stderr, "usage: soak [SECONDS [SEED [ROUND]]], all of them whole numbers\n");
        std::exit(2);
    }
    return value;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const quint64 seconds = argument(arguments, 1, 60);
    const quint64 seed = argument(arguments, 2, std::random_device()());
    const bool isReplay = arguments.size() > 3;
    int round = int(argument(arguments, 3, 0));

    qInstallMessageHandler(keepWarning);
    Campaign campaign;
    QElapsedTimer clock;
    clock.start();
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    do {
        campaign.runRound(seedOfRound(seed, round++));
    } while (
        !isReplay && campaign.tally.failures.isEmpty() && clock.elapsed() < qint64(seconds) * 1000);
    return campaign.isGood(seed, round - 1) ? 0 : 1;
}
