#include "chain/Session.h"

#include "Failure.h"
#include "chain/PluginLoader.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <api/core/CMRoot.h>

namespace {

Failure errorAnswer(const CMError &error, const CMPath &path)
{
    QString message = safeText(error.message().toString());
    if (message.endsWith(QLatin1Char('.')))
        message.chop(1);
    return Failure(error,
        QStringLiteral("%1 was answered with an error: %2. \"orka servers\" lists what is there; "
                       "\"orka doctor\" checks every part.")
            .arg(safeText(path.toEncoded()), message));
}

Failure noAnswer(const CMPath &path, std::chrono::milliseconds limit)
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        QStringLiteral("No answer about %1 came in %2 s: the media server or the media service "
                       "hangs, or the work takes longer. Try again with a longer --timeout.")
            .arg(safeText(path.toEncoded()))
            .arg(double(limit.count()) / 1000));
}

} // namespace

Session::Session(const GlobalOptions &options)
    : Session(options, std::make_unique<ServiceOnBus>(options))
{
}

Session::Session(const GlobalOptions &options, std::unique_ptr<ServiceOnBus> mediaService)
    : m_options(options)
    , m_mediaService(std::move(mediaService))
    , m_worker(loadWorker(options))
{
    mount();
}

void Session::mount()
{
    if (!CMRoot()->mount(m_worker.get())) {
        throw missing(QStringLiteral("noPlugin"),
            QStringLiteral(
                "The worker can't be mounted under the prefix %1: another has it. Choose "
                "one with --prefix.")
                .arg(quoted(m_worker->prefix())));
    }
}

void Session::await(const CMVoidReply &reply, const CMPath &path, const QString &doing)
{
    const CMReplyWatcherObject watcher(reply);
    Wait wait(m_options.timeout, doing);
    QObject::connect(&watcher, &CMReplyWatcherObject::finishedSignal, &wait, &Wait::wake);
    QObject::connect(m_mediaService.get(), &ServiceOnBus::gone, &wait, &Wait::wake);
    const bool inTime =
        wait.until([&] { return reply.isFinished() || !m_mediaService->isThere(); });
    m_mediaService->requireThere();
    if (!inTime)
        throw noAnswer(path, m_options.timeout);
    if (reply.error().isError())
        throw errorAnswer(reply.error(), path);
}

OrkaRowsRoles Session::rows(const CMPath &path, int first, int last, const QStringList &roles)
{
    const CMReply<OrkaRowsRoles> reply;
    // Not through getRows(), which makes an error of one row that isn't there.
    CMRoot()->getRowsRequest(CMGetRowsRequest(path, first, last, -1, roles, reply));
    await(reply, path, QStringLiteral("Reading rows from %1").arg(first));
    return reply.value();
}

OrkaRoles Session::data(const CMPath &path, const QStringList &roles)
{
    const CMReply<QVariantList> reply;
    CMRoot()->getDataRequest(CMGetDataRequest(path, roles, reply));
    await(reply, path, QStringLiteral("Reading a node"));
    return recordOf(roles, reply.value());
}

QVariant Session::set(const CMPath &path, const QVariant &value, const QString &doing)
{
    const CMReply<QVariant> reply;
    CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
    await(reply, path, doing);
    return reply.value();
}

OrkaRoles recordOf(const QStringList &roles, const QVariantList &values)
{
    OrkaRoles record;
    for (int i = 0; i < qMin(roles.size(), values.size()); ++i) {
        if (values.at(i).isValid())
            record.setValue(roles.at(i), values.at(i));
    }
    return record;
}
