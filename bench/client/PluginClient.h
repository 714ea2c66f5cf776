#pragma once

#include "cb_upnp.h"

#include <memory>

/// The plug-in's worker on the fast service, asked as its host asks it: every request goes through
/// the event loop and the answer is what a watcher of the reply hears. Logging is off, as it is in
/// the host program; the device has one wired address, so icons are rewritten.
class PluginClient
{
public:
    using Reply = CMReply<OrkaRowsRoles>;

    /// Returns when `servers` rows are there, at once for 0. Ends the program where they don't
    /// come.
    explicit PluginClient(const QString &busAddress, int servers = 1);
    ~PluginClient();

    /// Rows 0 to `count` - 1 of `container`, such as "rows1000". Ends the program on an error.
    OrkaRowsRoles list(const QString &container, int count, const QStringList &roles);
    OrkaRowsRoles list(const QString &container, int first, int last, const QStringList &roles);
    OrkaRowsRoles list(const CMPath &path, int first, int last, const QStringList &roles);
    /// The same rows requested `requests` times at once; returns when all are answered.
    void listMany(const QString &container, int count, const QStringList &roles, int requests);
    /// The playlist of a container.
    QVariantList queue(const QString &container);
    /// Reads a container's child count `count` times at once, and decodes it.
    void readProperties(const QString &container, int count);

    CMUPnPWorker &worker() { return *static_cast<CMUPnPWorker *>(m_sync->worker()); }
    /// The node path of a container of a server.
    CMPath path(const QString &container, int server = 0) const;

    /// Path, title, type, icon: what a list on a screen shows.
    static QStringList screenRoles();

private:
    void waitFor(const CMVoidReply &reply);

    std::unique_ptr<CMSyncWorker> m_sync;
};

/// The object path of a container of the fast service's server `server`.
QString objectPath(const QString &container, int server = 0);

/// Switches the log off and publishes the device's address; before any worker is made.
void prepareProcess();
