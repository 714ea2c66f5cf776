#include "cb_upnp.h"

#include "AlbumArt.h"
#include "ObjectMapping.h"
#include "log.h"

ObjectMapping CMUPnPWorker::mapping()
{
    return {this, m_serverList, m_serviceId, m_localAddresses};
}

OrkaRoles CMUPnPWorker::fillin_roles(const QVariantMap &properties)
{
    return mapping().roles(ObjectProperties(properties));
}

QVariantList CMUPnPWorker::fillin_childRoles(
    const QVariantMap &properties, const QStringList &roles)
{
    ObjectMapping mapping = this->mapping();
    mapping.setRoles(roles);
    return mapping.row(ObjectProperties(properties));
}

OrkaPlayListItem CMUPnPWorker::fillin_playlistItem(const QVariantMap &props)
{
    return mapping().playListItem(ObjectProperties(props));
}

QString CMUPnPWorker::handleAlbumArtUrl(const QString &url)
{
    return albumArtUrl(url, m_localAddresses.value(0));
}

void CMUPnPWorker::on_networkInfo_changed(const OrkaValue &newValue)
{
    TRACE_ENTER();
    LOG4CPLUS_INFO(upnpLog(), logText(sdk::jsonOf(newValue)));
    // Dropped ahead of the comparison, so every notification with an address writes the line.
    m_localAddresses.clear();
    const QStringList addresses = sdk::addressesIn(newValue);
    if (addresses != m_localAddresses) {
        m_localAddresses = addresses;
        LOG4CPLUS_INFO(upnpLog(), "Updating IP addr list: " << logText(m_localAddresses));
    }
}
