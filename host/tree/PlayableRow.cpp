#include "tree/PlayableRow.h"

#include <QRegularExpression>

namespace {

/// The address of a picture that the row names by way of the device's own proxy.
QString originalArtwork(const QString &icon)
{
    static const QRegularExpression proxied(
        QStringLiteral("\\Ahttps://[^/]*/proxy/([A-Za-z0-9+/]+=*)\\z"));
    const QRegularExpressionMatch match = proxied.match(icon);
    if (!match.hasMatch())
        return icon;
    const QByteArray original = QByteArray::fromBase64(match.captured(1).toLatin1());
    return original.startsWith("http://") ? QString::fromUtf8(original) : icon;
}

/// Copies a value that the row has; a property that is absent stays absent.
void copy(const OrkaHash &from, const QString &role, OrkaHash *to, const QString &key)
{
    if (const QVariant *value = from.find(role))
        to->setValue(key, *value);
}

} // namespace

PlayableKind playableKind(const OrkaRoles &row)
{
    if (row.path().param(QStringLiteral("itemType")) == QLatin1String("track"))
        return PlayableKind::Audio;
    switch (row.type()) {
    case OrkaRolesType::Audio:
        return PlayableKind::Audio;
    case OrkaRolesType::Video:
        return PlayableKind::Video;
    case OrkaRolesType::Image:
        return PlayableKind::Image;
    default:
        return PlayableKind::Other;
    }
}

OrkaPlayListItem itemOfRow(const OrkaRoles &row)
{
    const OrkaMediaData media = row.mediaData();
    const OrkaList<OrkaResource> resources = media.resources();
    const QString title = row.title().toString();
    if (resources.isEmpty() || resources.first().uri().isEmpty() || title.isEmpty())
        return OrkaPlayListItem();
    const OrkaResource resource = resources.first();
    if (resource.duration() % 1000 != 0)
        return OrkaPlayListItem();

    const OrkaMetaData metaData = media.metaData();
    OrkaPlayListItem item;
    copy(metaData, OrkaMetaData::ServiceID(), &item, OrkaPlayListItem::ServiceId());
    item.setOrkaRoles(row.toJsonString());
    copy(metaData, OrkaMetaData::Artist(), &item, OrkaPlayListItem::Artist());
    copy(metaData, OrkaMetaData::Album(), &item, OrkaPlayListItem::Album());
    if (row.contains(OrkaRoles::Icon()))
        item.setArtworkUrl(originalArtwork(row.icon()));
    if (resource.contains(OrkaResource::Duration()))
        item.setDurationSeconds(int(resource.duration() / 1000));
    copy(metaData, OrkaMetaData::Genre(), &item, OrkaPlayListItem::Genre());
    item.setUrl(resource.uri());
    item.setTitle(title);
    return item;
}
