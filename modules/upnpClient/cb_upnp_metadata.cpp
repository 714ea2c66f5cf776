#include "cb_upnp.h"

#include "ObjectProperties.h"
#include "ReplyContext.h"
#include "UPnPServerList.h"
#include "log.h"

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

qint64 milliseconds(const QString &date, ReplyContext *context)
{
    if (context->dateText != date) {
        context->dateText = date;
        context->dateMilliseconds = QDateTime::fromString(date, Qt::ISODate).toMSecsSinceEpoch();
    }
    return context->dateMilliseconds;
}

/// The first URL only: further ones are other formats of the same work.
OrkaList<OrkaResource> resources(const P &properties)
{
    OrkaList<OrkaResource> list;
    const QStringList urls = properties.strings(P::URLs);
    if (urls.isEmpty())
        return list;
    OrkaResource resource;
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
    list.append(resource);
    return list;
}

void appendIps(QStringList *ips, const QList<QVariantHash> &addresses)
{
    for (const QVariantHash &address : addresses)
        ips->append(OrkaNetworkAddress(address).ip());
}

} // namespace

OrkaRoles CMUPnPWorker::fillin_roles(const QVariantMap &properties)
{
    ReplyContext context;
    return fillin_roles(ObjectProperties(properties), &context);
}

QVariantList CMUPnPWorker::fillin_childRoles(
    const QVariantMap &properties, const QStringList &roles)
{
    ReplyContext context;
    context.wanted = WantedRoles(roles);
    return fillin_childRoles(ObjectProperties(properties), roles, &context);
}

QVariantList CMUPnPWorker::fillin_childRoles(
    const ObjectProperties &properties, const QStringList &roles, ReplyContext *context)
{
    return CMGlobal::itemRolesToList(roles, fillin_roles(properties, context));
}

OrkaRoles CMUPnPWorker::fillin_roles(const ObjectProperties &properties, ReplyContext *context)
{
    TRACE_ENTER_WITH(properties.map());
    const QString type = properties.string(P::Type);

    OrkaRoles roles;
    const CMPath path = rowPath(properties, type, context);
    if (context->wanted.path)
        roles.setPath(path);
    roles.setTitle(properties.string(P::DisplayName));
    if (!properties.has(P::Type)) {
        LOG4CPLUS_ERROR(
            upnpLog(), "Cannot find Type property - cannot decide if object is container");
    }
    if (type == QLatin1String("container")) {
        roles.setType(OrkaRolesType::Container);
        roles.setContainerPlayable(true);
    } else {
        roles.setType(CMGlobal::mimeTypeToRolesType(properties.string(P::MIMEType)));
    }
    if (context->wanted.mediaData)
        roles.setMediaData(mediaData(properties, context));
    if (properties.has(P::AlbumArtURL)) {
        if (!context->address)
            context->address = firstAddress();
        // Made even if nobody wants it: its log lines tell what was done with the picture.
        const QString icon =
            handleAlbumArtUrl(properties.string(P::AlbumArtURL), *context->address);
        if (context->wanted.icon)
            roles.setIcon(icon);
    }
    return roles;
}

CMPath CMUPnPWorker::rowPath(
    const ObjectProperties &properties, const QString &type, ReplyContext *context)
{
    const auto path = properties.value(P::Path).value<QDBusObjectPath>();
    const UPnPPath upath =
        UPnPPath::fromDleyna(this, m_serverList, path, itemTypeQuery(type), &context->server);
    return context->wanted.path ? upath.orkaPath() : CMPath();
}

OrkaMediaData CMUPnPWorker::mediaData(
    const ObjectProperties &properties, ReplyContext *context) const
{
    OrkaMetaData metaData;
    if (properties.has(P::Artist))
        metaData.setArtist(properties.string(P::Artist));
    if (properties.has(P::Creator))
        metaData.setComposer(properties.string(P::Creator));
    if (properties.has(P::Album))
        metaData.setAlbum(properties.string(P::Album));
    if (properties.has(P::Genre))
        metaData.setGenre(properties.string(P::Genre));
    if (properties.has(P::Date))
        metaData.setDate(milliseconds(properties.string(P::Date), context));
    metaData.setServiceID(m_serviceId);

    OrkaMediaData data;
    data.setMetaData(metaData);
    data.setResources(resources(properties));
    return data;
}

#define LEAVE "Leave " << dbglog_scopedFunction(Q_FUNC_INFO, "CB_UPnP") << ": "

namespace {

QString proxyUrl(const QString &url, const QString &address)
{
    const QByteArray encoded = url.toUtf8().toBase64();
    QString proxied;
    proxied.reserve(address.size() + encoded.size() + 16);
    proxied.append(QLatin1String("https://")).append(address);
    proxied.append(QLatin1String("/proxy/")).append(QLatin1String(encoded));
    return proxied;
}

} // namespace

QString CMUPnPWorker::handleAlbumArtUrl(const QString &url)
{
    return handleAlbumArtUrl(url, firstAddress());
}

QString CMUPnPWorker::handleAlbumArtUrl(const QString &url, const QString &address)
{
    const bool isRewritable = url.startsWith(QLatin1String("http://"));
    if (isRewritable && !address.isEmpty()) {
        QString proxied = proxyUrl(url, address);
        LOG4CPLUS_DEBUG(upnpLog(),
            LEAVE << "Got HTTP album art URL, using reverse proxy to serve: " << proxied);
        return proxied;
    }
    if (isRewritable) {
        LOG4CPLUS_DEBUG(upnpLog(), LEAVE << "No IP Address, falling back on original URL");
    }
    LOG4CPLUS_INFO(upnpLog(), "CB_UPNP: resource urlout = " << url);
    return url;
}

void CMUPnPWorker::on_networkInfo_changed(const OrkaValue &newValue)
{
    TRACE_ENTER();
    LOG4CPLUS_INFO(upnpLog(), newValue);
    // Dropped ahead of the comparison, so every notification with an address writes the line.
    m_localAddresses.clear();

    const OrkaNetworkInfo info = newValue.networkInfo();
    QStringList addresses;
    appendIps(&addresses, info.wired().addresses());
    appendIps(&addresses, info.wireless().addresses());
    const auto accessPoints = info.softAp().aps();
    for (const OrkaNetworkSoftAp &accessPoint : accessPoints)
        appendIps(&addresses, accessPoint.addresses());

    if (addresses != m_localAddresses) {
        m_localAddresses = addresses;
        LOG4CPLUS_INFO(upnpLog(), "Updating IP addr list: " << m_localAddresses);
    }
}
