#pragma once

// The worker for UPnP media servers: one class over several files.
//
//   cb_upnp.cpp           entry, construction, request routing, errors
//   cb_upnp_browse.cpp    listing a container, data of one object
//   cb_upnp_metadata.cpp  what objects become (ObjectMapping does it), the device's addresses
//   cb_upnp_search.cpp    capabilities, menu, results
//   cb_upnp_playlist.cpp  playlist items, preparation, recursive browse

#include "sdk.h"
#include "util.h"

#include <QHash>
#include <QStringList>
#include <QVariantMap>

#include <optional>

class DBusBarrier;
class ObjectMapping;
class UPnPServerList;

/// Serves the media servers of the local network below its prefix: "/UDN" is a server, "/UDN/id" an
/// object on it, the query values "search", "query" and "sample" choose what of it is asked for.
///
/// Lives on one thread and never waits: each request starts calls to the media service, and a
/// slot answers it, exactly once, when they have come back. A worker destroyed first leaves the
/// requests in flight unanswered.
class CMUPnPWorker : public CMNodesWorker
{
    Q_OBJECT

public:
    explicit CMUPnPWorker(const QHash<QString, QVariant> &config);

    // cb_upnp.cpp
    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;
    /// The error for a node that can't be served; logs which.
    CMError createStandardError(const CMPath &path);

    // cb_upnp_browse.cpp
    /// Rows from `first` to `last`, inclusive, go to the media service as they are.
    void handleListRowsRequest(
        const CMGetRowsRequest &request, const UPnPPath &path, int first, int last);
    void handleListDataRequest(const CMGetDataRequest &request, const UPnPPath &path);

    // cb_upnp_metadata.cpp
    OrkaRoles fillin_roles(const QVariantMap &properties);
    /// One row: the values of `roles`, in their order.
    QVariantList fillin_childRoles(const QVariantMap &properties, const QStringList &roles);
    /// An object whose list of URLs is empty gives an empty item.
    OrkaPlayListItem fillin_playlistItem(const QVariantMap &props);
    /// The same for the objects of a reply.
    ObjectMapping mapping();
    /// A plain HTTP URL as one on the device's own HTTPS proxy; any other as it is.
    QString handleAlbumArtUrl(const QString &url);

    // cb_upnp_search.cpp
    void setSearchCaps(const QString &udn, const QStringList &caps);
    bool hasSearchCaps(const QString &udn) const;
    bool checkSearchCap(const QString &udn, const QString &cap) const;
    /// The search-menu node that belongs to `path`.
    OrkaRoles getSearchMenuRoles(const UPnPPath &path) const;
    void handleSearchMenuRowsRequest(const CMGetRowsRequest &request, const UPnPPath &path,
        const QString &search, const QString &query, int first, int last) const;
    void handleSearchDataRequest(const CMGetDataRequest &request, const UPnPPath &path,
        const QString &search, const QString &query) const;
    void handleSearchRowsRequest(const CMGetRowsRequest &request, const UPnPPath &path,
        const QString &search, const QString &query, int first, int last);

    // cb_upnp_playlist.cpp
    void preparePlaylistItems(const QList<CMPath> &paths, CMSetDataRequest request);
    void browsePlaylistItems(CMSetDataRequest request);

    UPnPServerList *serverList() const { return m_serverList; }
    const QStringList &propertyFilter() const { return m_propertyFilter; }

private Q_SLOTS:
    // cb_upnp_browse.cpp
    void on_handleListRows_finished(DBusBarrier *barrier, void *userdata);
    void on_handleListData_finished(DBusBarrier *barrier, void *userdata);
    // cb_upnp_search.cpp
    void on_handleSearchRows_finished(DBusBarrier *barrier, void *userdata);
    // cb_upnp.cpp
    void on_sample_getRowsRequest(const CMGetRowsRequest &request, const OrkaRowsRoles &roles);
    // cb_upnp_metadata.cpp
    void on_networkInfo_changed(const OrkaValue &newValue);
    // cb_upnp_playlist.cpp
    void on_preparePlaylistItems_finished(DBusBarrier *barrier, void *userdata);
    void on_browsePlaylistItems_finished(DBusBarrier *barrier, void *userdata);

private:
    // cb_upnp.cpp
    void answerContextMenu(const CMGetRowsRequest &request);
    void sampleRows(const CMGetRowsRequest &request, const UPnPPath &path, const QString &sample);
    void answerSearchText(
        const CMSetDataRequest &request, const UPnPPath &path, const OrkaValue &value);

    // cb_upnp_search.cpp
    OrkaRoles searchMenu(const UPnPPath &node, const std::optional<TrString> &title) const;

    // cb_upnp_playlist.cpp
    DBusBarrier *createPlaylistBarrier(const CMSetDataRequest &request);
    QString serviceObject(const CMPath &path);
    static void refuseItem(const CMPath &path, const CMSetDataRequest &request);

    QString m_serviceId;
    QStringList m_propertyFilter;
    UPnPServerList *m_serverList = nullptr;
    QHash<QString, QStringList> m_searchCaps;
    QStringList m_localAddresses;
};
