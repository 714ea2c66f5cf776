#include "PluginClient.h"

#include "DBusBarrier.h"
#include "NetworkInfo.h"
#include "Target.h"
#include "core/ObjectAddress.h"
#include "dleyna.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <log4cplus/initializer.h>
#include <log4cplus/nullappender.h>

#include <cstdio>
#include <cstdlib>

extern "C" void *worker_create(const char *name, void *config);

namespace {

constexpr int patienceMilliseconds = 60000;

[[noreturn]] void fail(const QString &what)
{
    std::fprintf(stderr, "The plug-in can't be measured: %s.\n", qPrintable(what));
    std::exit(3);
}

int serverRows(CMUPnPWorker &worker)
{
    const CMReply<OrkaRowsRoles> reply;
    worker.getRowsRequest({worker.addPrefix(QString()), 0, 0, -1, {OrkaRoles::Title()}, reply});
    return reply.value().rowsCount();
}

} // namespace

void prepareProcess()
{
    static const log4cplus::Initializer initializer;
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    root.setLogLevel(log4cplus::OFF_LOG_LEVEL);

    publishNetwork({QStringLiteral("192.168.178.31")});
}

QString objectPath(const QString &container, int server)
{
    return QString::fromStdString(
        bridge::objectPath(serverPath(unsigned(server)), container.toStdString()));
}

PluginClient::PluginClient(const QString &busAddress, int servers)
{
    if (!orkaOpenDBusConnection(busAddress))
        fail(QStringLiteral("no connection to the bus"));
    QHash<QString, QVariant> config{
        {CMWorker::Prefix_(), QStringLiteral("upnp")}, {OrkaService_Id(), QStringLiteral("media")}};
    m_sync.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
    QElapsedTimer waited;
    waited.start();
    while (serverRows(worker()) < servers) {
        if (waited.elapsed() > patienceMilliseconds)
            fail(QStringLiteral("the servers did not show up"));
        QEventLoop().processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    while (QEventLoop().processEvents()) {
    }
}

PluginClient::~PluginClient() = default;

QStringList PluginClient::screenRoles()
{
    return {OrkaRoles::Path(), OrkaRoles::Title(), OrkaRoles::Type(), OrkaRoles::Icon()};
}

CMPath PluginClient::path(const QString &container, int server) const
{
    const QString id = objectPath(container, server).section(QLatin1Char('/'), -1);
    CMPath path(m_sync->prefix(),
        QLatin1Char('/') + QString::fromStdString(udnOf(unsigned(server))) + QLatin1Char('/') + id);
    path.addParam(QStringLiteral("itemType"), QStringLiteral("container"));
    return path;
}

void PluginClient::waitFor(const CMVoidReply &reply)
{
    QEventLoop loop;
    CMReplyWatcherObject watcher(reply);
    QObject::connect(&watcher, &CMReplyWatcherObject::finishedSignal, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply.error().value(CMError::Name()).toString().isEmpty())
        fail(reply.error().value(CMError::Message()).toString());
}

OrkaRowsRoles PluginClient::list(const QString &container, int count, const QStringList &roles)
{
    return list(container, 0, count - 1, roles);
}

OrkaRowsRoles PluginClient::list(
    const QString &container, int first, int last, const QStringList &roles)
{
    return list(path(container), first, last, roles);
}

OrkaRowsRoles PluginClient::list(const CMPath &path, int first, int last, const QStringList &roles)
{
    const Reply reply;
    m_sync->getRows(path, first, last, -1, roles, reply);
    waitFor(reply);
    const OrkaRowsRoles answer = reply.value();
    if (answer.rows().size() != last - first + 1)
        fail(QStringLiteral("%1 rows came instead of %2")
                 .arg(answer.rows().size())
                 .arg(last - first + 1));
    return answer;
}

void PluginClient::listMany(
    const QString &container, int count, const QStringList &roles, int requests)
{
    QVector<Reply> replies(requests);
    for (const Reply &reply : qAsConst(replies))
        m_sync->getRows(path(container), 0, count - 1, -1, roles, reply);
    for (const Reply &reply : qAsConst(replies))
        waitFor(reply);
}

QVariantList PluginClient::queue(const QString &container)
{
    const CMReply<QVariant> reply;
    m_sync->setData(CMPath(m_sync->prefix(), OrkaPlayListPrepareItems()),
        QVariantList{path(container).toEncoded()}, reply);
    waitFor(reply);
    return reply.value().toList();
}

void PluginClient::readProperties(const QString &container, int count)
{
    const QString object = objectPath(container);
    DBusBarrier barrier(nullptr);
    for (int i = 0; i < count; ++i)
        barrier.addCall(QString::number(i),
            getPropertyAsync(dleyna::service(), object, dleyna::mediaObjectInterface(),
                QStringLiteral("ChildCount")));
    QEventLoop loop;
    QObject::connect(&barrier, &DBusBarrier::finished, &loop, &QEventLoop::quit);
    loop.exec();
    for (int i = 0; i < count; ++i) {
        const QDBusPendingReply<QDBusVariant> reply = barrier.getCall(QString::number(i));
        if (reply.isError() || reply.value().variant().toInt() <= 0)
            fail(QStringLiteral("a property could not be read"));
    }
}
