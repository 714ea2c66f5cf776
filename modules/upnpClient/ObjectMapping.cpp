#include "ObjectMapping.h"

#include "AlbumArt.h"
#include "log.h"
#include "util.h"

#include <QDBusObjectPath>
#include <QDateTime>

namespace {

using P = ObjectProperties;

const QString itemTypeKey = QStringLiteral("itemType");

/// Everything that isn't sound is marked a container, pictures and videos too.
const UPnPPath::Query &itemTypeQuery(const QString &type)
{
    static const UPnPPath::Query track = {{itemTypeKey, QStringLiteral("track")}};
    static const UPnPPath::Query container = {{itemTypeKey, QStringLiteral("container")}};
    return type == QLatin1String("music") || type == QLatin1String("audio") ? track : container;
}

/// The first URL only: further ones are other formats of the same work.
OrkaList<OrkaResource> resources(const P &properties)
{
    const QStringList urls = properties.strings(P::URLs);
    if (urls.isEmpty())
        return sdk::resourceList(std::nullopt);
    auto resource = sdk::empty<OrkaResource>();
    resource.setMimeType(properties.string(P::MIMEType));
    resource.setUri(urls.first());
    if (properties.has(P::Duration)) {
        // Wraps beyond 2147483 seconds, as a 32-bit product does.
        resource.setDuration(int(uint(properties.integer(P::Duration)) * 1000U));
    }
    if (properties.has(P::Bitrate))
        resource.setBitRate(properties.integer(P::Bitrate));
    if (properties.has(P::SampleRate))
        resource.setSampleFrequency(properties.integer(P::SampleRate));
    if (properties.has(P::BitsPerSample))
        resource.setBitsPerSample(properties.integer(P::BitsPerSample));
    return sdk::resourceList(resource);
}

} // namespace

ObjectMapping::ObjectMapping(CMUPnPWorker *worker, UPnPServerList *serverList,
    const QString &serviceId, const QStringList &addresses)
    : m_worker(worker)
    , m_servers(serverList)
    , m_serviceId(serviceId)
    , m_addresses(&addresses)
{
}

void ObjectMapping::setRoles(const QStringList &roles)
{
    m_roles = roles;
    m_wanted = WantedRoles(roles);
}

void ObjectMapping::replyArrived()
{
    m_servers.look();
    m_address.reset();
}

QVariantList ObjectMapping::row(const ObjectProperties &properties)
{
    return CMGlobal::itemRolesToList(m_roles, roles(properties));
}

OrkaRoles ObjectMapping::roles(const ObjectProperties &properties)
{
    TRACE_ENTER_AS(
        "OrkaRoles CMUPnPWorker::fillin_roles(const QVariantMap&)", logText(properties.map()));
    const QString type = properties.string(P::Type);

    auto roles = sdk::empty<OrkaRoles>();
    // Translated even if nobody wants it: the log tells of a server that isn't known.
    const UPnPPath path = this->path(properties, type);
    if (m_wanted.path)
        roles.setPath(path.orkaPath());
    roles.setTitle(sdk::plainText(properties.string(P::DisplayName)));
    if (!properties.has(P::Type)) {
        LOG4CPLUS_ERROR(
            upnpLog(), "Cannot find Type property - cannot decide if object is container");
    }
    if (type == QLatin1String("container")) {
        roles.setType(sdk::containerType());
        roles.setContainerPlayable(true);
    } else {
        roles.setType(CMGlobal::mimeTypeToRolesType(properties.string(P::MIMEType)));
    }
    if (m_wanted.mediaData)
        roles.setMediaData(mediaData(properties));
    if (properties.has(P::AlbumArtURL)) {
        // Made even if nobody wants it: its log lines tell what was done with the picture.
        const QString icon = this->icon(properties);
        if (m_wanted.icon)
            roles.setIcon(icon);
    }
    return roles;
}

UPnPPath ObjectMapping::path(const ObjectProperties &properties, const QString &type)
{
    const auto path = properties.value(P::Path).value<QDBusObjectPath>();
    return UPnPPath::fromDleyna(m_worker, &m_servers, path, itemTypeQuery(type));
}

OrkaMediaData ObjectMapping::mediaData(const ObjectProperties &properties)
{
    auto metaData = sdk::empty<OrkaMetaData>();
    if (properties.has(P::Artist))
        metaData.setArtist(properties.string(P::Artist));
    if (properties.has(P::Creator))
        metaData.setComposer(properties.string(P::Creator));
    if (properties.has(P::Album))
        metaData.setAlbum(properties.string(P::Album));
    if (properties.has(P::Genre))
        metaData.setGenre(properties.string(P::Genre));
    if (properties.has(P::Date))
        metaData.setDate(milliseconds(properties.string(P::Date)));
    metaData.setServiceID(m_serviceId);

    auto data = sdk::empty<OrkaMediaData>();
    data.setMetaData(metaData);
    data.setResources(resources(properties));
    return data;
}

QString ObjectMapping::icon(const ObjectProperties &properties)
{
    if (!m_address)
        m_address = m_addresses->value(0);
    return albumArtUrl(properties.string(P::AlbumArtURL), *m_address);
}

qint64 ObjectMapping::milliseconds(const QString &date)
{
    if (m_dateText != date) {
        m_dateText = date;
        m_dateMilliseconds = QDateTime::fromString(date, Qt::ISODate).toMSecsSinceEpoch();
    }
    return m_dateMilliseconds;
}

OrkaPlayListItem ObjectMapping::playListItem(const ObjectProperties &properties)
{
    auto item = sdk::empty<OrkaPlayListItem>();
    item.setServiceId(m_serviceId);
    item.setOrkaRoles(sdk::jsonOf(roles(properties)));
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
            return sdk::empty<OrkaPlayListItem>();
        }
        item.setUrl(urls.first());
    }
    if (properties.has(P::DisplayName))
        item.setTitle(properties.string(P::DisplayName));
    return item;
}
