#include "PluginFixture.h"

#include "DBusBarrier.h"
#include "UPnPServerList.h"

#include <QRegularExpression>
#include <QTest>

extern "C" void *worker_create(const char *name, void *config);

namespace {

QtMessageHandler previousHandler = nullptr;

void failOnWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    previousHandler(type, context, message);
    if (type == QtWarningMsg)
        QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}

/// Barriers of playlists: without a parent, they are told when the worker goes.
int playlistBarriers(const CMUPnPWorker &worker)
{
    struct Connections : QObject
    {
        using QObject::receivers;
    };
    return (worker.*&Connections::receivers)(SIGNAL(destroyed(QObject*)));
}

CMPath encoded(const QString &path)
{
    return CMPath::fromEncoded(QStringLiteral("upnp:") + path);
}

} // namespace

PluginFixture::PluginFixture(const QString &busLimits)
    : bus(busLimits)
    , service(bus)
{
    previousHandler = qInstallMessageHandler(failOnWarning);
}

PluginFixture::~PluginFixture()
{
    if (m_sync && !QTest::currentTestFailed()) {
        service.release();
        settle();
        const int work = openWork(worker()) + playlistBarriers(worker());
        QTest::qCompare(work, 0, "work left in the worker", "", __FILE__, __LINE__);
    }
    qInstallMessageHandler(previousHandler);
    // Two answers of one kind to one request: the SDK drops the second and says so.
    for (const QString &line : log.lines(QStringLiteral("WARN CM:")))
        QTest::qFail(qPrintable(line), __FILE__, __LINE__);
    if (!QTest::currentTestFailed())
        return;
    qInfo().noquote() << "The media service saw:\n" + service.callsText();
    qInfo().noquote() << "The log:\n"
            + log.lines().filter(QRegularExpression("^(?!TRACE)")).join('\n');
}

void PluginFixture::start()
{
    QVariantHash config{{CMWorker::Prefix_(), "upnp"}, {OrkaService_Id(), "media"}};
    m_sync.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &config)));
    if (!CMRoot()->mount(m_sync.get()))
        qFatal("The prefix of an earlier test is still there.");
    settle();
}

void PluginFixture::runUntilLogged(const QString &start) const
{
    while (log.lines(start).isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

ReplyProbe<OrkaRowsRoles> PluginFixture::askRows(
    const QString &path, int first, int last, const QStringList &roles)
{
    ReplyProbe<OrkaRowsRoles> probe;
    m_sync->getRows(encoded(path), first, last, -1, roles, probe.reply());
    return probe;
}

ReplyProbe<QVariantList> PluginFixture::askData(const QString &path, const QStringList &roles)
{
    ReplyProbe<QVariantList> probe;
    m_sync->getData(encoded(path), roles, probe.reply());
    return probe;
}

ReplyProbe<QVariant> PluginFixture::askSet(const QString &path, const QVariant &value)
{
    ReplyProbe<QVariant> probe;
    m_sync->setData(encoded(path), value, probe.reply());
    return probe;
}

ReplyProbe<QVariant> PluginFixture::askPrepare(const QStringList &paths)
{
    QVariantList all;
    for (const QString &path : paths)
        all.append(encoded(path).toEncoded());
    return askSet(QStringLiteral("playlist/prepareItems"), all);
}

OrkaRowsRoles PluginFixture::rootRows(const QStringList &roles)
{
    const CMReply<OrkaRowsRoles> reply;
    worker().getRowsRequest({worker().addPrefix(QString()), 0, 99999, -1, roles, reply});
    return reply.value();
}

int openWork(const CMUPnPWorker &worker)
{
    int work = worker.serverList()->findChildren<DBusBarrier *>().size();
    for (const QObject *child : worker.children()) {
        const bool stays = child->inherits("CMNodes") || child->inherits("CMValueItem")
            || child->inherits("UPnPServerList");
        work += stays ? 0 : 1;
    }
    return work;
}

QString rowsText(const OrkaRowsRoles &rows)
{
    return orkaToJson(rows.rows());
}

QString firstColumn(const OrkaRowsRoles &rows)
{
    QStringList texts;
    for (const QVariant &row : rows.rows()) {
        const QVariant first = row.toList().value(0);
        texts.append(first.canConvert<TrString>() ? first.value<TrString>().sourceString()
                                                  : first.toString());
    }
    return texts.join(QLatin1Char(' '));
}

QString itemsText(const QVariant &items, const QString &key)
{
    QStringList texts;
    for (const QVariant &item : items.toList())
        texts.append(OrkaHash::fromVariant(item).value(key).toString());
    return texts.join(QLatin1Char(' '));
}

QVariantList propertyValue(const QVariant &value)
{
    return {QVariant::fromValue(QDBusVariant(value))};
}
