#include "Round.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace {

constexpr int steps = 40;
constexpr int senders = 3;
constexpr int patience = 20000; // ms until an answer counts as missing

void join(std::vector<std::thread> &threads)
{
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace

Round::Round(quint64 seed, FakeMediaService &service, WorkerThread &worker, Tally &tally)
    : m_dice(seed)
    , m_service(service)
    , m_worker(worker)
    , m_tally(tally)
    // Most rounds at the level of a device, some with every line that the plug-in can write.
    , m_log(m_dice.chance(12) ? log4cplus::TRACE_LOG_LEVEL : log4cplus::WARN_LOG_LEVEL)
{
    m_tick.start(1);
}

void Round::run()
{
    furnish();
    m_faultRate = int(m_dice.below(4)) * 12;
    takeRules();
    m_worker.start();
    const int end = m_dice.chance(25) ? int(m_dice.below(steps)) : steps;
    for (int step = 0; step < end; ++step) {
        std::vector<std::thread> threads = send(1 + int(m_dice.below(20)));
        join(threads);
        if (m_dice.chance(50))
            disturb();
        handleEvents(m_dice.chance(50));
    }
    if (end < steps) {
        destroyInFlight();
    } else {
        comeToRest();
        m_worker.destroy();
    }
    lookAfterwards();
}

// The tick bounds the wait.
void Round::handleEvents(bool wait)
{
    QCoreApplication::processEvents(
        wait ? QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::vector<std::thread> Round::send(int requests)
{
    std::vector<std::function<void()>> shares[senders];
    for (int i = 0; i < requests; ++i)
        shares[i % senders].push_back(randomRequest());
    std::vector<std::thread> threads;
    for (auto &share : shares) {
        threads.emplace_back([share = std::move(share)] {
            for (const auto &call : share)
                call();
        });
    }
    return threads;
}

void Round::destroyInFlight()
{
    m_tally.inject("worker destroyed with requests in flight");
    // Some arrive before it goes, some while, some after.
    std::vector<std::thread> threads = send(30);
    m_worker.destroy();
    join(threads);
    m_ledger.workerDestroyed();
}

bool Round::isAtRest()
{
    return m_ledger.open() == 0 && m_worker.workLeft() == 0;
}

void Round::comeToRest()
{
    if (m_isGone)
        revive();
    m_isFrozen = false;
    takeRules();
    const QDeadlineTimer deadline(patience);
    do {
        m_service.release();
        handleEvents(true);
        if (!isAtRest())
            continue;
        // Signals that are still on their way start new work.
        m_service.settle();
        m_worker.catchUp();
    } while (!isAtRest() && !deadline.hasExpired());
    if (const int work = m_worker.workLeft()) {
        m_tally.leftovers += work;
        m_tally.failures.append(QString("%1 pieces of work are left in the worker.").arg(work));
    }
    m_ledger.countKept(&m_tally);
}

void Round::lookAfterwards()
{
    m_worker.catchUp();
    // Late announcements, if there are any, have been posted by now.
    handleEvents(false);
    if (m_isGone)
        revive();
    m_service.forgetRules();
    m_service.release();
    m_tally.calls += m_service.calls().size();
    m_service.forgetCalls();
    m_ledger.close(&m_tally);
    m_tally.failures += m_log.lines("WARN CM:").filter("second value");
    ++m_tally.rounds;
}
