#include "cb_upnp.h"

#include "ContainerWalk.h"
#include "DBusBarrier.h"
#include "ObjectProperties.h"
#include "PreparedItems.h"
#include "ReplyContext.h"
#include "dleyna.h"
#include "log.h"

namespace {

using P = ObjectProperties;

/// All sound below a container, whatever its depth; no more than the first of it.
const QString audioCriteria = QStringLiteral("(Type derivedfrom \"audio\")");
constexpr uint maxFound = 100;

enum class ItemKind { Track, Container, Unknown };

ItemKind itemKind(const CMPath &path)
{
    const QString itemType = path.param(QStringLiteral("itemType"));
    if (itemType == QLatin1String("track"))
        return ItemKind::Track;
    if (itemType == QLatin1String("container") || itemType == QLatin1String("server"))
        return ItemKind::Container;
    return ItemKind::Unknown;
}

QDBusPendingCall getAll(const QString &path, const QString &interface)
{
    const OrgFreedesktopDBusPropertiesInterface proxy(
        dleyna::service(), path, orkaDBusConnection());
    return proxy.GetAll(interface);
}

} // namespace

OrkaPlayListItem CMUPnPWorker::fillin_playlistItem(const QVariantMap &props)
{
    ReplyContext context;
    return fillin_playlistItem(ObjectProperties(props), &context);
}

OrkaPlayListItem CMUPnPWorker::fillin_playlistItem(
    const ObjectProperties &properties, ReplyContext *context)
{
    OrkaPlayListItem item;
    item.setServiceId(m_serviceId);
    item.setOrkaRoles(fillin_roles(properties, context).toJsonString());
    if (properties.has(P::Artist))
        item.setArtist(properties.string(P::Artist));
    if (properties.has(P::Album))
        item.setAlbum(properties.string(P::Album));
    if (properties.has(P::AlbumArtURL))
        item.setArtworkUrl(properties.string(P::AlbumArtURL));
    if (properties.has(P::Duration))
        item.setDurationSeconds(properties.integer(P::Duration));
    if (properties.has(P::Genre))
        item.setGenre(properties.string(P::Genre));
    if (properties.has(P::URLs)) {
        const QStringList urls = properties.strings(P::URLs);
        if (urls.isEmpty()) {
            LOG4CPLUS_ERROR(upnpLog(), "Trying to add item without URL to playlist");
            return OrkaPlayListItem();
        }
        item.setUrl(urls.first());
    }
    if (properties.has(P::DisplayName))
        item.setTitle(properties.string(P::DisplayName));
    return item;
}

DBusBarrier *CMUPnPWorker::createPlaylistBarrier(const CMSetDataRequest &request)
{
    auto *barrier = new DBusBarrier(nullptr);
    barrier->keepUserData(std::make_unique<CMSetDataRequest>(request));
    // It has no parent, so that only its handler disposes of it; but it doesn't outlive the worker.
    connect(this, &QObject::destroyed, barrier, [barrier] { delete barrier; });
    return barrier;
}

void CMUPnPWorker::preparePlaylistItems(const QList<CMPath> &paths, CMSetDataRequest request)
{
    TRACE_ENTER_WITH(paths);
    DBusBarrier *barrier = createPlaylistBarrier(request);
    connect(barrier, &DBusBarrier::finished, this, &CMUPnPWorker::on_preparePlaylistItems_finished);

    barrier->hold();
    loopInSlices(
        this, paths.size(),
        [this, paths, request, barrier, track = 1, search = 1](int i) mutable {
            switch (itemKind(paths[i])) {
            case ItemKind::Track:
                prepareTrack(paths[i], track++, barrier);
                break;
            case ItemKind::Container:
                prepareSearch(paths[i], search++, barrier);
                break;
            case ItemKind::Unknown:
                refuseItem(paths[i], request);
                break;
            }
        },
        [barrier] { barrier->proceed(); });
}

void CMUPnPWorker::prepareTrack(const CMPath &path, int number, DBusBarrier *barrier)
{
    LOG4CPLUS_TRACE(upnpLog(), "Preparing direct item: " << path);
    const QString object = UPnPPath::fromOrka(this, m_serverList, path).dbusPath().path();
    barrier->addCall(
        preparation::directItemCall(number), getAll(object, dleyna::mediaItemInterface()));
    barrier->addCall(
        preparation::directObjectCall(number), getAll(object, dleyna::mediaObjectInterface()));
}

void CMUPnPWorker::prepareSearch(const CMPath &path, int number, DBusBarrier *barrier)
{
    LOG4CPLUS_TRACE(upnpLog(), "Preparing search item: " << path);
    const QString object = UPnPPath::fromOrka(this, m_serverList, path).dbusPath().path();
    const OrgGnomeUPnPMediaContainer2Interface container(
        dleyna::service(), object, orkaDBusConnection());
    barrier->addCall(preparation::searchCall(number),
        container.SearchObjectsEx(audioCriteria, 0, maxFound, m_propertyFilter, QString()));
}

void CMUPnPWorker::refuseItem(const CMPath &path, const CMSetDataRequest &request)
{
    LOG4CPLUS_ERROR(upnpLog(), "Unknown item type for adding to Playlist " << path);
    request.setError(CMError(ORKA_TR("Unknown UPnP item type")));
}

void CMUPnPWorker::on_preparePlaylistItems_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    (new PreparedItems(this, barrier))->start();
}

void CMUPnPWorker::browsePlaylistItems(CMSetDataRequest request)
{
    TRACE_ENTER();
    DBusBarrier *barrier = createPlaylistBarrier(request);
    orkaConnect(barrier,
        SIGNAL(finished(DBusBarrier*,void*)), this,
            SLOT(on_browsePlaylistItems_finished(DBusBarrier*,void*)), Qt::AutoConnection);

    const QVariantList encodedPaths = request.value().toList();
    barrier->hold();
    loopInSlices(
        this, encodedPaths.size(),
        [this, encodedPaths, barrier](
            int i) { browseItem(CMPath::fromEncoded(encodedPaths[i].toString()), barrier); },
        [barrier] { barrier->proceed(); });
}

void CMUPnPWorker::browseItem(const CMPath &path, DBusBarrier *barrier)
{
    const ItemKind kind = itemKind(path);
    if (kind == ItemKind::Unknown)
        return;
    const QString object = UPnPPath::fromOrka(this, m_serverList, path).dbusPath().path();
    if (kind == ItemKind::Track) {
        barrier->addCall(walk::trackCall(), getAll(object, QString()));
        return;
    }
    // All containers share one name, so that of several the last is walked.
    const OrgGnomeUPnPMediaContainer2Interface container(
        dleyna::service(), object, orkaDBusConnection());
    barrier->addCall(
        walk::containerCall(), container.ListChildren(0, walk::maxChildren, m_propertyFilter));
}

void CMUPnPWorker::on_browsePlaylistItems_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    (new ContainerWalk(this, barrier))->start();
}
