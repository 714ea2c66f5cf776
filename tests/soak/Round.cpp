#include "Round.h"

#include "PluginFixture.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QTimer>

#include <algorithm>

extern "C" void *worker_create(const char *name, void *config);

namespace {

constexpr int steps = 40;
constexpr int senders = 3;
constexpr int patience = 20000; // ms until an answer counts as missing

} // namespace

Round::Round(quint64 seed, FakeMediaService &service)
    : m_dice(seed)
    , m_service(service)
    // Most rounds at the level of a device, some with every line that the plug-in can write.
    , m_log(m_dice.chance(12) ? log4cplus::TRACE_LOG_LEVEL : log4cplus::WARN_LOG_LEVEL)
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
}

Round::~Round()
{
    m_thread.quit();
    m_thread.wait();
}

bool Round::Asked::isSettled() const
{
    const QString is = outcome();
    return wanted.isEmpty() ? is == QLatin1String("value") || is.startsWith(QLatin1String("error "))
                            : is == wanted;
}

void Round::onWorkersThread(const std::function<void()> &work)
{
    QMetaObject::invokeMethod(&m_context, work, Qt::BlockingQueuedConnection);
}

int Round::workLeft()
{
    int work = 0;
    onWorkersThread([&] { work = openWork(*static_cast<CMUPnPWorker *>(m_worker->worker())); });
    return work;
}

void Round::run()
{
    furnish();
    m_faultRate = m_dice.below(4) * 12;
    takeRules();
    onWorkersThread([this] {
        QVariantHash config{{OrkaService_Id(), "media"}, {CMWorker::Prefix_(), "upnp"}};
        m_worker.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
        CMRoot()->mount(m_worker.get());
    });
    const int end = m_dice.chance(25) ? m_dice.below(steps) : steps;
    for (int step = 0; step < end; ++step) {
        for (std::thread &thread : send(1 + m_dice.below(20)))
            thread.join();
        if (m_dice.chance(50))
            disturb();
        handleEvents(m_dice.chance(50));
    }
    // Some arrive before the worker goes, some while, some after.
    std::vector<std::thread> last;
    if (end < steps)
        last = send(30);
    else
        comeToRest();
    onWorkersThread([this] { m_worker.reset(); });
    for (std::thread &thread : last)
        thread.join();
    lookAfterwards();
}

void Round::handleEvents(bool wait)
{
    QTimer bound;
    bound.start(1);
    QCoreApplication::processEvents(
        wait ? QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::vector<std::thread> Round::send(int requests)
{
    std::vector<Send> shares[senders];
    for (int i = 0; i < requests; ++i)
        shares[i % senders].push_back(randomRequest());
    std::vector<std::thread> threads;
    for (auto &share : shares) {
        threads.emplace_back([share = std::move(share)] {
            for (const Send &call : share)
                call();
        });
    }
    return threads;
}

bool Round::isAtRest()
{
    return std::all_of(m_asked.begin(), m_asked.end(), std::mem_fn(&Asked::isSettled))
        && workLeft() == 0;
}

void Round::comeToRest()
{
    if (m_isGone)
        revive();
    takeRules();
    const QDeadlineTimer deadline(patience);
    do {
        m_service.release();
        handleEvents(true);
        // Signals that are still on their way start new work.
        if (isAtRest())
            m_service.settle();
    } while (!isAtRest() && !deadline.hasExpired());
    if (const int work = workLeft())
        failures.append(QString("%1 pieces of work are left in the worker.").arg(work));
    for (const Asked &asked : m_asked) {
        if (!asked.isSettled())
            failures.append(asked.text + ": " + asked.outcome());
    }
}

/// With the worker gone nobody may keep a request, answered or not.
void Round::lookAfterwards()
{
    // Twice, for what the first turn posts: late announcements and deferred deletions.
    for (int turn = 0; turn < 2; ++turn) {
        onWorkersThread([] {});
        handleEvents(false);
    }
    if (m_isGone)
        revive();
    m_service.forgetRules();
    m_service.release();
    m_service.forgetCalls();
    for (Asked &asked : m_asked) {
        asked.wanted.clear();
        if (!asked.isSettled() && asked.outcome() != QLatin1String("dropped"))
            failures.append("The worker is gone. " + asked.text + ": " + asked.outcome());
    }
    failures += m_log.lines("WARN CM:").filter("second value");
}
