#include "web/LiveChain.h"

#include "Failure.h"
#include "Interrupt.h"
#include "chain/ServiceCalls.h"
#include "web/ErrorReason.h"

#include <api/core/CMRoot.h>
#include <api/core/orka.h>

namespace {

constexpr std::chrono::seconds betweenTries(2);
constexpr std::chrono::milliseconds busEnd(100);

CMError errorOf(const QString &name, const QString &sentence)
{
    return Failure(Missing, name, sentence).error();
}

/// Waits for one reply; ends itself with what it tells.
class PendingReply : public QObject
{
public:
    PendingReply(const CMVoidReply &reply, LiveChain *chain, LiveChain::Done done)
        : QObject(chain)
        , m_watcher(reply)
        , m_done(std::move(done))
    {
        connect(&m_watcher, &CMReplyWatcherObject::finishedSignal, this,
            [this](const CMVoidReply &finished) { finish(finished.error()); });
        connect(chain, &LiveChain::changed, this, [this, chain] {
            if (!chain->isThere())
                finish(errorOf(QStringLiteral("noMediaService"), chain->trouble()));
        });
        connect(&m_limit, &QTimer::timeout, this, [this] {
            finish(errorOf(QStringLiteral("noAnswer"),
                QStringLiteral("No answer came in time: the media server hangs, or the work takes "
                               "longer. Try again.")));
        });
        m_limit.setSingleShot(true);
        m_limit.start(chain->options().timeout);
    }

private:
    void finish(const CMError &error)
    {
        const LiveChain::Done done = std::exchange(m_done, nullptr);
        if (!done)
            return;
        deleteLater();
        done(error);
    }

    CMReplyWatcherObject m_watcher;
    QTimer m_limit;
    LiveChain::Done m_done;
};

} // namespace

LiveChain::LiveChain(const GlobalOptions &options)
    : m_options(options)
{
    connect(&m_again, &QTimer::timeout, this, &LiveChain::tryAgain);
    m_again.setSingleShot(true);
    begin();
}

void LiveChain::begin()
{
    m_session = std::make_unique<Session>(m_options);
    m_isLost = false;
    m_trouble.clear();
    connect(&m_session->mediaService(), &ServiceStarter::gone, this, &LiveChain::lose);
}

void LiveChain::lose()
{
    if (m_isLost)
        return;
    m_isLost = true;
    m_trouble = QStringLiteral("The media service has left the bus: it crashed or was stopped. It "
                               "is being started again.");
    // A bus that ends tells first that its clients leave.
    QTimer::singleShot(busEnd, this, [this] {
        if (!orkaDBusConnection().isConnected()) {
            m_trouble = QStringLiteral("The bus of the media service has ended: it crashed or was "
                                       "stopped. Another is being looked for.");
        }
        emit changed();
        m_again.start(0); // not from inside the session that is to go
    });
}

void LiveChain::tryAgain()
{
    m_session.reset();
    try {
        begin();
    } catch (const Failure &failure) {
        m_session.reset();
        m_trouble = failure.sentence();
        m_again.start(betweenTries);
    } catch (const InterruptedBySignal &) {
        return; // who waits for the end of the program hears of it, too
    }
    emit changed();
}

QStringList LiveChain::serviceObjects() const
{
    return isThere() ? m_session->mediaService().servers().paths() : QStringList();
}

QString LiveChain::serviceObject(const CMPath &path) const
{
    const QString udn = path.base().section(QLatin1Char('/'), 1, 1);
    for (const QString &object : serviceObjects()) {
        if (isPathOf(object, udn))
            return object;
    }
    return QString();
}

void LiveChain::await(const CMVoidReply &reply, Done done)
{
    if (isThere()) {
        new PendingReply(reply, this, std::move(done));
    } else {
        done(errorOf(QStringLiteral("noMediaService"), m_trouble));
    }
}

LiveChain::Done LiveChain::explained(const CMPath &path, int first, int count, Done done)
{
    QElapsedTimer clock;
    clock.start();
    return [=, done = std::move(done)](const CMError &error) {
        if (error.isError() && isThere()) {
            new ErrorReason(error, {path, first, count, std::chrono::milliseconds(clock.elapsed())},
                m_session->mediaService().servers().paths(), m_options.timeout, done, this);
        } else {
            done(error);
        }
    };
}

void LiveChain::rows(const CMPath &path, int first, int last, const QStringList &roles,
    std::function<void(const CMError &, const OrkaRowsRoles &)> done)
{
    const CMReply<OrkaRowsRoles> reply;
    if (isThere())
        CMRoot()->getRowsRequest(CMGetRowsRequest(path, first, last, -1, roles, reply));
    await(reply,
        explained(path, first, last - first + 1,
            [reply, done = std::move(done)](const CMError &error) { done(error, reply.value()); }));
}

void LiveChain::data(const CMPath &path, const QStringList &roles,
    std::function<void(const CMError &, const QVariantList &)> done)
{
    const CMReply<QVariantList> reply;
    if (isThere())
        CMRoot()->getDataRequest(CMGetDataRequest(path, roles, reply));
    await(reply, explained(path, 0, 1, [reply, done = std::move(done)](const CMError &error) {
        done(error, reply.value());
    }));
}

void LiveChain::set(const CMPath &path, const QVariant &value,
    std::function<void(const CMError &, const QVariant &)> done)
{
    const CMReply<QVariant> reply;
    if (isThere())
        CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
    await(reply,
        [reply, done = std::move(done)](const CMError &error) { done(error, reply.value()); });
}
