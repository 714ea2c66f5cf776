#pragma once

#include "FakeMediaService.h"
#include "LogProbe.h"
#include "MediaServiceNames.h"
#include "PrivateBus.h"
#include "ReplyProbe.h"
#include "cb_upnp.h"

#include <memory>

/// The plug-in's worker, mounted under "upnp" in the SDK's root, on a bus of its own with a
/// scripted media service. Fill the service's tree, `start()`, ask, `settle()`, look. When the test
/// has failed, the calls that the service saw and the log's lines are printed. A warning of Qt's
/// own fails it, and so does a request that is answered twice.
class PluginFixture
{
public:
    explicit PluginFixture(PrivateBus::Limits limits = PrivateBus::Limits::Session);
    ~PluginFixture();
    PluginFixture(const PluginFixture &) = delete;
    PluginFixture &operator=(const PluginFixture &) = delete;

    PrivateBus bus;
    FakeMediaService service;
    LogProbe log;

    /// Makes the worker and lets it read the tree's servers.
    void start(const QVariantHash &config = {{"serviceId", "media"}});
    /// Destroys it.
    void stop() { m_sync.reset(); }
    CMUPnPWorker &worker() { return *static_cast<CMUPnPWorker *>(m_sync->worker()); }
    void settle();

    /// `path` is an encoded path without its prefix: "/uuid:1/3634?search=menu".
    static CMPath path(const QString &path);
    ReplyProbe<OrkaRowsRoles> askRows(
        const QString &path, int first, int last, const QStringList &roles = {"title"});
    ReplyProbe<QVariantList> askData(const QString &path, const QStringList &roles = {"title"});
    ReplyProbe<QVariant> askSet(const QString &path, const QVariant &value);
    /// A prepare-items request for these paths.
    ReplyProbe<QVariant> askPrepare(const QStringList &paths);

    /// Rows of the worker's root, as they are now.
    OrkaRowsRoles rootRows(const QStringList &roles = {"title"});
    /// Barriers, answers and samplers that the worker still has; 0 when it is idle.
    int openWork();

private:
    std::unique_ptr<CMSyncWorker> m_sync;
};

/// The rows as JSON.
QString rowsText(const OrkaRowsRoles &rows);
/// The value of every row's first role as text, joined by a space.
QString firstColumn(const OrkaRowsRoles &rows);
/// One field of every item of a prepare-items answer, joined by a space.
QString itemsText(const QVariant &items, const QString &key = QStringLiteral("title"));
