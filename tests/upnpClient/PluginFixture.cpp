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

} // namespace

PluginFixture::PluginFixture(PrivateBus::Limits limits)
    : bus(limits)
    , service(bus)
{
    previousHandler = qInstallMessageHandler(failOnWarning);
}

PluginFixture::~PluginFixture()
{
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

void PluginFixture::start(const QVariantHash &config)
{
    QVariantHash full = config;
    full.insert(CMWorker::Prefix_(), QStringLiteral("upnp"));
    m_sync.reset(static_cast<CMSyncWorker *>(worker_create("upnpClient", &full)));
    if (!CMRoot()->mount(m_sync.get()))
        qFatal("The prefix of an earlier test is still there.");
    settle();
}

void PluginFixture::settle()
{
    PrivateBus::settle(service.connection(), [this] { return service.activity(); });
}

CMPath PluginFixture::path(const QString &path)
{
    return CMPath::fromEncoded(QStringLiteral("upnp:") + path);
}

ReplyProbe<OrkaRowsRoles> PluginFixture::askRows(
    const QString &at, int first, int last, const QStringList &roles)
{
    ReplyProbe<OrkaRowsRoles> probe;
    m_sync->getRows(path(at), first, last, -1, roles, probe.reply());
    return probe;
}

ReplyProbe<QVariantList> PluginFixture::askData(const QString &at, const QStringList &roles)
{
    ReplyProbe<QVariantList> probe;
    m_sync->getData(path(at), roles, probe.reply());
    return probe;
}

ReplyProbe<QVariant> PluginFixture::askSet(const QString &at, const QVariant &value)
{
    ReplyProbe<QVariant> probe;
    m_sync->setData(path(at), value, probe.reply());
    return probe;
}

ReplyProbe<QVariant> PluginFixture::askPrepare(const QStringList &paths)
{
    QVariantList encoded;
    for (const QString &at : paths)
        encoded.append(path(at).toEncoded());
    return askSet(QStringLiteral("playlist/prepareItems"), encoded);
}

OrkaRowsRoles PluginFixture::rootRows(const QStringList &roles)
{
    const CMReply<OrkaRowsRoles> reply;
    worker().getRowsRequest({worker().addPrefix(QString()), 0, 99999, -1, roles, reply});
    return reply.value();
}

int PluginFixture::openWork()
{
    int work = 0;
    for (const QObject *child : worker().children())
        work += child->inherits("CMNodes") || child->inherits("CMValueItem")
                || child->inherits("UPnPServerList")
            ? 0
            : 1;
    return work + worker().serverList()->findChildren<DBusBarrier *>().size();
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
