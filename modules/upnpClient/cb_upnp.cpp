#include "cb_upnp.h"

#include "ContainerSampler.h"
#include "DBusBarrier.h"
#include "ReceiveLimit.h"
#include "UPnPServerList.h"
#include "dleyna.h"
#include "log.h"

extern "C" Q_DECL_EXPORT void *worker_create(const char *name, void *config)
{
    TRACE_ENTER_WITH(name);
    return sdk::adaptorOf(new CMUPnPWorker(*static_cast<const QHash<QString, QVariant> *>(config)));
}

CMUPnPWorker::CMUPnPWorker(const QHash<QString, QVariant> &config)
    : CMNodesWorker(config, sdk::workerName())
    , m_serviceId(config.value(OrkaService_Id()).toString())
{
    dleyna::registerTypes();
    qRegisterMetaType<DBusBarrier *>();
    sdk::registerTypes();
    raiseReceiveLimit(orkaDBusConnection());

    m_serverList = UPnPServerList::create(this, addPrefix(QStringLiteral("")));
    sdk::watchValue(OrkaNetworkInfoPath(), this, SLOT(on_networkInfo_changed(OrkaValue)));
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
    const CMPath path = sdk::pathOf(request);
    if (sdk::baseOf(path).startsWith(QLatin1String("context"))) {
        answerContextMenu(request);
        return;
    }

    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, path);
    if (!m_serverList->containsUdn(upath.udn())) {
        sdk::refuse(request, sdk::errorFor(SDK_TR("Server not found")));
        return;
    }
    if (upath.dbusPath().path().isEmpty()) {
        sdk::refuse(request, createStandardError(path));
        return;
    }

    const int first = sdk::firstRowOf(request);
    const int last = sdk::lastRowOf(request);
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
    LOG4CPLUS_TRACE(upnpLog(), "Context request path: " << sdk::logged(sdk::pathOf(request)));
    const QVariantList rows = PlayListHelper::playListRows(request);
    if (rows.isEmpty()) {
        sdk::refuse(request, sdk::errorFor(SDK_TR("Invalid context menu request")));
        return;
    }
    auto menu = sdk::empty<OrkaRoles>();
    menu.setTitle(SDK_TR("UPnP Context Menu"));
    auto answer = sdk::empty<OrkaRowsRoles>();
    answer.setRowsCount(rows.size());
    answer.setRows(rows);
    answer.setRoles(menu);
    sdk::answer(request, answer);
    LOG4CPLUS_TRACE(upnpLog(), "sent reply with " << rows.size() << " lines");
}

void CMUPnPWorker::sampleRows(
    const CMGetRowsRequest &request, const UPnPPath &path, const QString &sample)
{
    const QStringList numbers = sample.split(QLatin1Char(','));
    if (numbers.size() != 3) {
        LOG4CPLUS_ERROR(upnpLog(), "Expected 3 arguments for 'sample', got " << numbers.size());
        sdk::refuse(request, createStandardError(sdk::pathOf(request)));
        return;
    }
    const CMPath container = path.withoutQuery(QStringLiteral("sample")).orkaPath();
    new ContainerSampler(this, request, container, uint(numbers[0].toInt()),
        uint(numbers[1].toInt()), uint(numbers[2].toInt()), sdk::firstRowOf(request),
        sdk::lastRowOf(request));
}

void CMUPnPWorker::on_sample_getRowsRequest(
    const CMGetRowsRequest &request, const OrkaRowsRoles &roles)
{
    TRACE_ENTER_WITH(sdk::isValid(request));
    sdk::answer(request, roles);
}

void CMUPnPWorker::getDataRequest(const CMGetDataRequest &request)
{
    TRACE_ENTER();
    const QStringList roles = sdk::rolesOf(request);
    if (roles.size() == 1 && roles.first() == OrkaRoles::Permission()) {
        sdk::answer(request, QVariantList{sdk::defaultPermission()});
        return;
    }

    const CMPath path = sdk::pathOf(request);
    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, path);
    const QString search = upath.queryValue(QStringLiteral("search"));
    if (search.isEmpty() && nodes()->getDataRequest(request))
        return;
    if (upath.dbusPath().path().isEmpty()) {
        sdk::refuse(request, createStandardError(path));
        return;
    }
    if (search.isNull())
        handleListDataRequest(request, upath);
    else
        handleSearchDataRequest(request, upath, search, upath.queryValue(QStringLiteral("query")));
}

void CMUPnPWorker::setDataRequest(const CMSetDataRequest &request)
{
    const QVariant value = sdk::valueOf(request);
    const CMPath path = sdk::pathOf(request);
    TRACE_ENTER_WITH(sdk::logged(value) << ", path: " << sdk::logged(path));
    if (nodes()->setDataRequest(request))
        return;

    const UPnPPath upath = UPnPPath::fromOrka(this, m_serverList, path);
    const QVariantHash hash = value.toHash();
    if (!upath.queryValue(QStringLiteral("search")).isEmpty()
        && hash.contains(OrkaValue::String_())) {
        answerSearchText(request, upath, OrkaValue(OrkaHash(hash)));
        return;
    }
    if (sdk::baseOf(path) != OrkaPlayListPrepareItems()) {
        sdk::refuse(request, createErrorInternal(QStringLiteral("Not implemented")));
        return;
    }

    QList<CMPath> paths;
    const QVariantList encodedPaths = value.toList();
    for (const QVariant &encoded : encodedPaths)
        paths.append(CMPath::fromEncoded(encoded.toString()));
    LOG4CPLUS_DEBUG(upnpLog(), "prepare items: " << logText(paths));
    preparePlaylistItems(paths, request);
}

void CMUPnPWorker::answerSearchText(
    const CMSetDataRequest &request, const UPnPPath &path, const OrkaValue &value)
{
    const QString key = QStringLiteral("search");
    const CMPath menu = sdk::withParam(path.orkaPath(), key, path.queryValue(key));
    const CMPath results = sdk::withParam(menu, QStringLiteral("query"), value.string_());
    sdk::answer(request, QVariant(sdk::encoded(results)));
}

CMError CMUPnPWorker::createStandardError(const CMPath &path)
{
    // The log names the node; the user sees only that it could not be had.
    LOG4CPLUS_ERROR(upnpLog(),
        logText(QStringLiteral("Node at path '%1' does not exist").arg(sdk::encoded(path))));
    return sdk::errorFor(SDK_TR("Failed to retrieve content"));
}
