#pragma once

#include "dleyna.h"
#include "sdk.h"

#include <QHash>
#include <QPointer>
#include <QStringView>

class CMUPnPWorker;
class DBusBarrier;
class QDBusPendingCallWatcher;

/// The media servers that the media service knows, kept up to date, and the rows of the worker's
/// root node: one a server, in the order in which their properties have been read.
///
/// Asks for the servers once and then follows their coming and going. A server that is announced
/// again is read again and replaces its earlier row. One that is lost while it is being read is
/// listed all the same when its properties arrive. A child of the worker, on its thread; the root
/// node belongs to the worker's node set.
class UPnPServerList : public QObject
{
    Q_OBJECT

public:
    /// `upnpWorker` is not null; `path` is its root.
    static UPnPServerList *create(CMUPnPWorker *upnpWorker, const CMPath &path);
    UPnPServerList(CMUPnPWorker *upnpWorker, const CMPath &path);
    ~UPnPServerList() override;

    bool containsUdn(const QString &udn) const { return m_udns.contains(udn); }

    /// The UDN of the server with this object path; empty when there is none.
    QString udnOfServer(const QString &path) const { return m_udnsByPath.value(path); }
    /// All of them by object path; costs nothing as long as neither is changed.
    QMultiHash<QString, QString> udnsByPath() const { return m_udnsByPath; }
    /// The object path of a server. A UDN that isn't known is recorded, with an empty path.
    QDBusObjectPath serverPath(const QString &udn) { return m_udns[udn].path; }

private Q_SLOTS:
    void on_upnpManager_getServers(QDBusPendingCallWatcher *watcher);
    void on_upnpManager_foundServer(const QDBusObjectPath &path);
    void on_upnpManager_lostServer(const QDBusObjectPath &path);
    void on_addServer(DBusBarrier *barrier, void *data);

private:
    struct UDNInfo
    {
        QDBusObjectPath path;
        QString friendlyName;
    };

    QStringList readSearchCaps(DBusBarrier *barrier, const QString &udn);
    void record(const QString &udn, const UDNInfo &info);
    int forget(const QString &udn);
    void appendRow(const QDBusObjectPath &path, const QString &friendlyName, bool canSearch);

    ComIntelDLeynaServerManagerInterface *m_manager;
    CMUPnPWorker *m_worker;
    CMListRowsNode *m_rootNode;
    QHash<QString, UDNInfo> m_udns;
    /// The same by object path: a row's path is translated far more often than servers change.
    QMultiHash<QString, QString> m_udnsByPath;
    QPointer<QDBusPendingCallWatcher> m_initialList;
};

/// Looks up the servers of rows as the list was at one moment, so that a server's leaving while an
/// answer is made changes nothing in it.
class ServerLookUp
{
public:
    explicit ServerLookUp(UPnPServerList *serverList)
        : m_serverList(serverList)
    {
        look();
    }

    UPnPServerList *serverList() const { return m_serverList; }
    /// The UDN of a server by what its object path ends in; empty when there is none.
    QString udn(QStringView serverId);
    /// From now on as the list is now.
    void look();

private:
    UPnPServerList *m_serverList;
    QMultiHash<QString, QString> m_udnsByPath;
    /// Of the server looked up last.
    QString m_path;
    QString m_udn;
};
