#pragma once

// UPnPPath, the two names of a media object, and getPropertyAsync(). The file's name is fixed: the
// log calls it "CB_UPnP_util".

#include "sdk.h"

#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QList>
#include <QPair>
#include <QString>

class CMUPnPWorker;
class ServerLookUp;
class UPnPServerList;

/// Names one object of a media server, as a node path of the SDK and as an object path of the media
/// service, and translates between the two.
///
/// Nothing here fails: a text that is neither of the two grammars gives empty fields, and a server
/// that isn't known an empty UDN. Keeps pointers to the worker and its server list. A plain value;
/// the worker's thread.
class UPnPPath
{
public:
    using Query = QList<QPair<QString, QString>>;

    UPnPPath() = default;

    /// From an object path of the media service.
    static UPnPPath fromDleyna(CMUPnPWorker *worker, UPnPServerList *serverList,
        const QDBusObjectPath &path, const Query &query);
    static UPnPPath fromDleyna(CMUPnPWorker *worker, ServerLookUp *servers,
        const QDBusObjectPath &path, const Query &query);
    /// From a node path below the worker's prefix, "/UDN" or "/UDN/object-id"; its parameters
    /// become the query, in ascending order of their keys.
    static UPnPPath fromOrka(CMUPnPWorker *worker, UPnPServerList *serverList, const CMPath &path);

    const QString &udn() const { return m_udn; }
    /// The value of the first pair with this key; a null text if there is none.
    QString queryValue(const QString &key) const;
    CMPath orkaPath() const;
    CMPath orkaPathWithoutParams() const;
    /// Asking for the path of a server that isn't known leaves an empty record of it in the list.
    QDBusObjectPath dbusPath() const;
    /// A copy without any pair of this key.
    UPnPPath withoutQuery(const QString &key) const;

private:
    CMUPnPWorker *m_worker = nullptr;
    UPnPServerList *m_serverList = nullptr;
    QString m_udn;

public:
    /// Without a leading "/"; empty for the server itself, which is its root container.
    QString objectId;
    /// Keys may repeat; order is kept.
    Query query;
};

/// Reads a property without waiting; a bad name or path comes back as an error of the reply.
QDBusPendingCall getPropertyAsync(
    const QString &service, const QString &path, const QString &interface, const QString &property);
QDBusPendingCall getPropertyAsync(const QString &service, const QDBusObjectPath &path,
    const QString &interface, const QString &property);
