#include "cb_upnp.h"

#include "ContainerSampler.h"
#include "DBusBarrier.h"
#include "UPnPServerList.h"
#include "dleyna.h"
#include "log.h"

extern "C" Q_DECL_EXPORT void *worker_create(const char *name, void *config)
{
    TRACE_ENTER_WITH(name);
    auto *worker = new CMUPnPWorker(*static_cast<QHash<QString, QVariant> *>(config));
    return new CMSyncWorker(worker);
}

CMUPnPWorker::CMUPnPWorker(const QHash<QString, QVariant> &config)
    : CMNodesWorker(config, QStringLiteral("CMUPnPWorker"))
    , m_serviceId(config.value(OrkaService_Id()).toString())
{
    dleyna::registerTypes();
    qRegisterMetaType<DBusBarrier *>();
    qRegisterMetaType<CMGetRowsRequest>();
    qRegisterMetaType<OrkaRowsRoles>();
    qRegisterMetaType<OrkaValue>();

    m_serverList = UPnPServerList::create(this, addPrefix(QString()));
    orkaConnect(new CMValueItem(this, OrkaNetworkInfoPath()),
        SIGNAL(changed(OrkaValue, OrkaValue)), this, SLOT(on_networkInfo_changed(OrkaValue)));
    m_propertyFilter = QStringList{QStringLiteral("Type"), QStringLiteral("TypeEx"),
        QStringLiteral("MIMEType"), QStringLiteral("DisplayName"), QStringLiteral("Artist"),
        QStringLiteral("Album"), QStringLiteral("AlbumArtURL"), QStringLiteral("URLs"),
        QStringLiteral("Creator"), QStringLiteral("Genre"), QStringLiteral("Path"),
        QStringLiteral("Date"), QStringLiteral("TrackNumber"), QStringLiteral("Duration"),
        QStringLiteral("Bitrate"), QStringLiteral("SampleRate"), QStringLiteral("BitsPerSample")};
}

void CMUPnPWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    TRACE_ENTER();
    if (nodes()->getRowsRequest(request))
        return;
    if (request.path().base().startsWith(QLatin1String("context"))) {
        answerContextMenu(request);
        return;
    }

    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, request.path());
    if (!m_serverList->containsUdn(upath.udn())) {
        request.setError(CMError(ORKA_TR("Server not found")));
        return;
    }
    if (upath.dbusPath().path().isEmpty()) {
        request.setError(createStandardError(request.path()));
        return;
    }

    const int first = request.firstRow();
    const int last = request.lastRow();
    const QString sample = upath.queryValue(QStringLiteral("sample"));
    const QString search = upath.queryValue(QStringLiteral("search"));
    const QString query = upath.queryValue(QStringLiteral("query"));
    if (!sample.isNull())
        sampleRows(request, upath, sample);
    else if (search.isNull())
        handleListRowsRequest(request, upath, first, last);
    else if (search == QLatin1String("menu"))
        handleSearchMenuRowsRequest(request, upath, search, query, first, last);
    else
        handleSearchRowsRequest(request, upath, search, query, first, last);
}

void CMUPnPWorker::answerContextMenu(const CMGetRowsRequest &request)
{
    LOG4CPLUS_TRACE(upnpLog(), "Context request path: " << request.path());
    const QVariantList rows = PlayListHelper::playListRows(request);
    if (rows.isEmpty()) {
        request.setError(CMError(ORKA_TR("Invalid context menu request")));
        return;
    }
    OrkaRoles menu;
    menu.setTitle(ORKA_TR("UPnP Context Menu"));
    OrkaRowsRoles answer;
    answer.setRowsCount(rows.size());
    answer.setRows(rows);
    answer.setRoles(menu);
    request.reply().setValue(answer);
    LOG4CPLUS_TRACE(upnpLog(), "sent reply with " << rows.size() << " lines");
}

void CMUPnPWorker::sampleRows(
    const CMGetRowsRequest &request, const UPnPPath &path, const QString &sample)
{
    const QStringList numbers = sample.split(QLatin1Char(','));
    if (numbers.size() != 3) {
        LOG4CPLUS_ERROR(upnpLog(), "Expected 3 arguments for 'sample', got " << numbers.size());
        request.setError(createStandardError(request.path()));
        return;
    }
    const CMPath container = path.withoutQuery(QStringLiteral("sample")).orkaPath();
    new ContainerSampler(this, request, container, uint(numbers[0].toInt()),
        uint(numbers[1].toInt()), uint(numbers[2].toInt()), request.firstRow(), request.lastRow());
}

void CMUPnPWorker::on_sample_getRowsRequest(
    const CMGetRowsRequest &request, const OrkaRowsRoles &roles)
{
    TRACE_ENTER_WITH(request.isValid());
    request.reply().setValue(roles);
}

void CMUPnPWorker::getDataRequest(const CMGetDataRequest &request)
{
    TRACE_ENTER();
    if (request.roles().size() == 1 && request.roles().first() == OrkaRoles::Permission()) {
        request.reply().setValue({OrkaPermission::Default_()});
        return;
    }

    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, request.path());
    const QString search = upath.queryValue(QStringLiteral("search"));
    if (search.isEmpty() && nodes()->getDataRequest(request))
        return;
    if (upath.dbusPath().path().isEmpty()) {
        request.setError(createStandardError(request.path()));
        return;
    }
    if (search.isNull())
        handleListDataRequest(request, upath);
    else
        handleSearchDataRequest(request, upath, search, upath.queryValue(QStringLiteral("query")));
}

void CMUPnPWorker::setDataRequest(const CMSetDataRequest &request)
{
    TRACE_ENTER_WITH(request.value() << ", path: " << request.path());
    if (nodes()->setDataRequest(request))
        return;

    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, request.path());
    const OrkaValue value = OrkaHash(request.value().toHash());
    if (!upath.queryValue(QStringLiteral("search")).isEmpty()
        && value.contains(OrkaValue::String_())) {
        answerSearchText(request, upath, value);
        return;
    }
    if (request.path().base() != OrkaPlayListPrepareItems()) {
        request.setError(createErrorInternal(QStringLiteral("Not implemented")));
        return;
    }

    QList<CMPath> paths;
    const QVariantList encodedPaths = request.value().toList();
    for (const QVariant &encoded : encodedPaths)
        paths.append(CMPath::fromEncoded(encoded.toString()));
    LOG4CPLUS_DEBUG(upnpLog(), "prepare items: " << paths);
    preparePlaylistItems(paths, request);
}

void CMUPnPWorker::answerSearchText(
    const CMSetDataRequest &request, const UPnPPath &path, const OrkaValue &value)
{
    CMPath results = path.orkaPath();
    results.addParam(QStringLiteral("search"), path.queryValue(QStringLiteral("search")));
    results.addParam(QStringLiteral("query"), value.string_());
    request.reply().setValue(results.toEncoded());
}

CMError CMUPnPWorker::createStandardError(const CMPath &path)
{
    // The log names the node; the user sees only that it could not be had.
    LOG4CPLUS_ERROR(
        upnpLog(), QStringLiteral("Node at path '%1' does not exist").arg(path.toEncoded()));
    return CMError(
        CMError::DefaultName(), CMError::DefaultTitle(), ORKA_TR("Failed to retrieve content"));
}
