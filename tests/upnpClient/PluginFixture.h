#pragma once

#include "FakeMediaService.h"
#include "LogProbe.h"
#include "NamesOnBus.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"
#include "cb_upnp.h"

#include <memory>

/// The plug-in's worker, mounted under "upnp" in the SDK's root, on a bus of its own with a
/// scripted media service. Fill the service's tree, `start()`, ask, `settle()`, look. When the test
/// has failed, the calls that the service saw and the log's lines are printed. A warning of Qt's
/// own fails it, and so does a request that is answered twice or work that is left in a worker
/// whose calls have all come back.
class PluginFixture
{
public:
    explicit PluginFixture(const QString &busLimits = PrivateBus::sessionLimits);
    ~PluginFixture();
    PluginFixture(const PluginFixture &) = delete;
    PluginFixture &operator=(const PluginFixture &) = delete;

    PrivateBus bus;
    FakeMediaService service;
    FakeTree &tree = service.tree;
    LogProbe log;

    /// Makes the worker and lets it read the tree's servers.
    void start();
    /// Destroys it.
    void stop() { m_sync.reset(); }
    CMUPnPWorker &worker() { return *static_cast<CMUPnPWorker *>(m_sync->worker()); }
    void settle() { service.settle(); }
    /// What the service does of the same name, settled.
    void release(const FakeMatch &match = {}) { settled(service.release(match)); }
    void announceFound(const QString &server)
    {
        service.announceFound(server);
        settle();
    }
    void announceLost(const QString &server)
    {
        service.announceLost(server);
        settle();
    }
    /// Runs the event loop one turn at a time until a line of the log starts so, and no further.
    void runUntilLogged(const QString &start) const;

    /// `path` is an encoded path without its prefix: "/uuid:1/3634?search=menu".
    ReplyProbe<OrkaRowsRoles> askRows(
        const QString &path, int first, int last, const QStringList &roles = {"title"});
    ReplyProbe<QVariantList> askData(const QString &path, const QStringList &roles = {"title"});
    ReplyProbe<QVariant> askSet(const QString &path, const QVariant &value);
    /// A prepare-items request for these paths.
    ReplyProbe<QVariant> askPrepare(const QStringList &paths);
    /// The same with everything settled that follows, as in `w.settled(w.askData(path))`.
    template<typename Probe>
    Probe settled(const Probe &probe)
    {
        settle();
        return probe;
    }

    /// Rows of the worker's root, as they are now.
    OrkaRowsRoles rootRows(const QStringList &roles = {"title"});

private:
    std::unique_ptr<CMSyncWorker> m_sync;
};

/// A server "uuid:1" with an empty folder "/uuid:1/31".
struct FolderFixture : PluginFixture
{
    explicit FolderFixture(const QVariant &searchCaps = QStringList())
        : server(tree.addServer("uuid:1", "One", searchCaps))
    {
    }
    /// Tracks "/uuid:1/7430" and on, named by their positions from 0.
    void addTracks(int count, const QVariantMap &more = {})
    {
        for (int i = 0; i < count; ++i)
            tree.addTrack(folder, "t" + QByteArray::number(i), QString::number(i), more);
    }

    QString server;
    QString folder = tree.addContainer(server, "1", "Folder");
};

/// Barriers, answers and samplers that a worker has; 0 when it is idle.
int openWork(const CMUPnPWorker &worker);
/// The rows as JSON.
QString rowsText(const OrkaRowsRoles &rows);
/// The value of every row's first role as text, joined by a space.
QString firstColumn(const OrkaRowsRoles &rows);
/// One field of every item of a prepare-items answer, joined by a space.
QString itemsText(const QVariant &items, const QString &key = QStringLiteral("title"));
/// What a property's `Get` is answered with.
QVariantList propertyValue(const QVariant &value);
