#pragma once

#include "ObjectProperties.h"
#include "UPnPServerList.h"
#include "WantedRoles.h"
#include "util.h"

#include <optional>

/// Turns media objects into rows and playlist items: roles by name, and what the player queues.
///
/// Servers are those that there were when it was made or when the last reply arrived, so that an
/// answer that takes several turns reads as if it had been made in one. A plain value, made by the
/// worker for one piece of work; keeps pointers into the worker.
class ObjectMapping
{
public:
    /// `addresses`: the device's, the first of which album art is served from.
    ObjectMapping(CMUPnPWorker *worker, UPnPServerList *serverList, const QString &serviceId,
        const QStringList &addresses);

    /// Rows have these roles, in this order, from now on.
    void setRoles(const QStringList &roles);
    const WantedRoles &wanted() const { return m_wanted; }
    /// What the objects from now on have in common is found out anew, from how things are now.
    void replyArrived();

    OrkaRoles roles(const ObjectProperties &properties);
    QVariantList row(const ObjectProperties &properties);
    /// An object whose list of URLs is empty gives an empty item.
    OrkaPlayListItem playListItem(const ObjectProperties &properties);

private:
    UPnPPath path(const ObjectProperties &properties, const QString &type);
    OrkaMediaData mediaData(const ObjectProperties &properties);
    QString icon(const ObjectProperties &properties);
    qint64 milliseconds(const QString &date);

    CMUPnPWorker *m_worker;
    ServerLookUp m_servers;
    QString m_serviceId;
    const QStringList *m_addresses;
    QStringList m_roles;
    WantedRoles m_wanted;

    /// The address for album art; empty when the device has none.
    std::optional<QString> m_address;
    /// Tracks of an album have the same date.
    std::optional<QString> m_dateText;
    qint64 m_dateMilliseconds = 0;
};
