#include "cb_upnp.h"

#include "ContainerWalk.h"
#include "DBusBarrier.h"
#include "PreparedItems.h"
#include "dleyna.h"
#include "log.h"

#include <QVector>

namespace {

/// All sound below a container, whatever its depth; no more than the first of it.
const QString audioCriteria = QStringLiteral("(Type derivedfrom \"audio\")");
constexpr uint maxFound = 100;

enum class ItemKind { Track, Container, Unknown };

ItemKind itemKind(const CMPath &path)
{
    const QString itemType = sdk::paramsOf(path).value(QStringLiteral("itemType"));
    if (itemType == QLatin1String("track"))
        return ItemKind::Track;
    if (itemType == QLatin1String("container") || itemType == QLatin1String("server"))
        return ItemKind::Container;
    return ItemKind::Unknown;
}

/// A node of a request and its object path in the media service.
///
/// Translated for all nodes when the request comes: only sending the calls takes several turns, so
/// that a server which leaves or moves meanwhile changes nothing.
struct PlayedNode
{
    ItemKind kind = ItemKind::Unknown;
    QString object;
};

QDBusPendingCall getAll(const QString &object, const QString &interface)
{
    const OrgFreedesktopDBusPropertiesInterface proxy(
        dleyna::service(), object, orkaDBusConnection());
    return proxy.GetAll(interface);
}

QDBusPendingCall searchAudio(const QString &object, const QStringList &filter)
{
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), object, orkaDBusConnection());
    return proxy.SearchObjectsEx(audioCriteria, 0, maxFound, filter, QString());
}

QDBusPendingCall listChildren(const QString &object, const QStringList &filter)
{
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), object, orkaDBusConnection());
    return proxy.ListChildren(0, walk::maxChildren, filter);
}

/// Sends the calls of a preparation, node by node, and numbers them.
class PreparationCalls
{
public:
    PreparationCalls(DBusBarrier *barrier, const QStringList &filter)
        : m_barrier(barrier)
        , m_filter(filter)
    {
    }

    void send(const PlayedNode &node)
    {
        if (node.kind == ItemKind::Container) {
            m_barrier->addCall(
                preparation::searchCall(m_search++), searchAudio(node.object, m_filter));
            return;
        }
        m_barrier->addCall(preparation::directItemCall(m_track),
            getAll(node.object, dleyna::mediaItemInterface()));
        m_barrier->addCall(preparation::directObjectCall(m_track),
            getAll(node.object, dleyna::mediaObjectInterface()));
        ++m_track;
    }

private:
    DBusBarrier *m_barrier;
    QStringList m_filter;
    int m_track = 1;
    int m_search = 1;
};

/// All containers share one name, and so do all tracks: of several the last is walked.
void sendWalkCall(const PlayedNode &node, DBusBarrier *barrier, const QStringList &filter)
{
    if (node.kind == ItemKind::Track)
        barrier->addCall(walk::trackCall(), getAll(node.object, QString()));
    else
        barrier->addCall(walk::containerCall(), listChildren(node.object, filter));
}

} // namespace

DBusBarrier *CMUPnPWorker::createPlaylistBarrier(const CMSetDataRequest &request)
{
    auto *barrier = new DBusBarrier(nullptr);
    barrier->keepUserData(std::make_unique<CMSetDataRequest>(request));
    // It has no parent, so that only its handler disposes of it; but it doesn't outlive the worker.
    connect(this, &QObject::destroyed, barrier, [barrier] { delete barrier; });
    return barrier;
}

QString CMUPnPWorker::serviceObject(const CMPath &path)
{
    return UPnPPath::fromOrka(this, m_serverList, path).dbusPath().path();
}

void CMUPnPWorker::preparePlaylistItems(const QList<CMPath> &paths, CMSetDataRequest request)
{
    TRACE_ENTER_WITH(logText(paths));
    DBusBarrier *barrier = createPlaylistBarrier(request);
    new PreparedItems(barrier, mapping(),
        [this](const CMSetDataRequest &refused) { browsePlaylistItems(refused); });
    connect(barrier, &DBusBarrier::finished, this, &CMUPnPWorker::on_preparePlaylistItems_finished);

    QVector<PlayedNode> nodes;
    for (const CMPath &path : paths) {
        const ItemKind kind = itemKind(path);
        if (kind == ItemKind::Unknown) {
            refuseItem(path, request);
            continue;
        }
        LOG4CPLUS_TRACE(upnpLog(),
            (kind == ItemKind::Track ? "Preparing direct item: " : "Preparing search item: ")
                << sdk::logged(path));
        nodes.append({kind, serviceObject(path)});
    }
    barrier->hold();
    loopInSlices(
        this, nodes.size(),
        [nodes, calls = PreparationCalls(barrier, m_propertyFilter)](
            int i) mutable { calls.send(nodes[i]); },
        [barrier] { barrier->proceed(); });
}

void CMUPnPWorker::refuseItem(const CMPath &path, const CMSetDataRequest &request)
{
    LOG4CPLUS_ERROR(upnpLog(), "Unknown item type for adding to Playlist " << sdk::logged(path));
    sdk::refuse(request, sdk::errorFor(SDK_TR("Unknown UPnP item type")));
}

void CMUPnPWorker::on_preparePlaylistItems_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    barrier->findChild<PreparedItems *>()->start();
}

void CMUPnPWorker::browsePlaylistItems(CMSetDataRequest request)
{
    TRACE_ENTER();
    DBusBarrier *barrier = createPlaylistBarrier(request);
    new ContainerWalk(barrier, mapping(), m_propertyFilter);
    sdk::connectChecked(barrier,
        SIGNAL(finished(DBusBarrier*,void*)), this,
            SLOT(on_browsePlaylistItems_finished(DBusBarrier*,void*)));

    QVector<PlayedNode> nodes;
    const QVariantList encodedPaths = sdk::valueOf(request).toList();
    for (const QVariant &encoded : encodedPaths) {
        const CMPath path = CMPath::fromEncoded(encoded.toString());
        const ItemKind kind = itemKind(path);
        if (kind != ItemKind::Unknown)
            nodes.append({kind, serviceObject(path)});
    }
    barrier->hold();
    loopInSlices(
        this, nodes.size(),
        [this, nodes, barrier](int i) { sendWalkCall(nodes[i], barrier, m_propertyFilter); },
        [barrier] { barrier->proceed(); });
}

void CMUPnPWorker::on_browsePlaylistItems_finished(DBusBarrier *barrier, void *)
{
    TRACE_ENTER();
    barrier->findChild<ContainerWalk *>()->start();
}
