#include "ShelfTree.h"

namespace {

OrkaRoles folder(const QString &prefix, const QString &base, const QString &title)
{
    OrkaRoles roles;
    roles.setPath(
        CMPath(prefix, base).addParam(QStringLiteral("itemType"), QStringLiteral("container")));
    roles.setTitle(title);
    roles.setType(OrkaRolesType::Container);
    roles.setContainerPlayable(true);
    return roles;
}

OrkaRoles track(const QString &prefix, const QString &base, const QString &title)
{
    OrkaMetaData metaData;
    metaData.setArtist(QStringLiteral("Ann"));
    metaData.setAlbum(QStringLiteral("Blue"));
    OrkaResource resource;
    resource.setUri(QStringLiteral("http://192.0.2.1/1.mp3"));
    resource.setDuration(185000);
    OrkaList<OrkaResource> resources;
    resources.append(resource);
    OrkaMediaData media;
    media.setMetaData(metaData);
    media.setResources(resources);
    OrkaRoles roles;
    roles.setPath(
        CMPath(prefix, base).addParam(QStringLiteral("itemType"), QStringLiteral("track")));
    roles.setTitle(title);
    roles.setType(OrkaRolesType::Audio);
    roles.setMediaData(media);
    return roles;
}

QVector<OrkaRoles> bigFolder(const QString &prefix)
{
    QVector<OrkaRoles> tracks;
    for (int i = 0; i < ShelfTree::bigFolderSize; ++i) {
        tracks.append(track(
            prefix, QStringLiteral("/shelf/big%1").arg(i), QStringLiteral("Track %1").arg(i)));
    }
    return tracks;
}

} // namespace

QString ShelfTree::hostileTitle()
{
    return QStringLiteral("\x1b[31mred\nline\u009b2J");
}

QVector<OrkaRoles> ShelfTree::children(const QString &prefix, const QString &base)
{
    if (base == QLatin1String("/shelf/big")) {
        return bigFolder(prefix);
    }
    if (base == QLatin1String("/shelf/slash")) {
        return {track(prefix, QStringLiteral("/shelf/backslash"), QStringLiteral("back\\slash")),
            track(prefix, QStringLiteral("/shelf/composed"), QStringLiteral("Caf\u00e9"))};
    }
    if (base != QLatin1String("/shelf")) {
        return {};
    }
    return {folder(prefix, QStringLiteral("/shelf/big"), QStringLiteral("Big")),
        folder(prefix, QStringLiteral("/shelf/slash"), QStringLiteral("AC/DC")),
        folder(prefix, QStringLiteral("/shelf/broken"), QStringLiteral("Broken")),
        folder(prefix, QStringLiteral("/shelf/silent"), QStringLiteral("Silent")),
        track(prefix, QStringLiteral("/shelf/hostile"), hostileTitle()),
        folder(prefix, QStringLiteral("/shelf/cjk"), QStringLiteral("\u6f22\u5b57")),
        track(prefix, QStringLiteral("/shelf/bigtrack"), QStringLiteral("Big")),
        folder(prefix, QStringLiteral("/shelf/bracket"), QStringLiteral("[Unknown]"))};
}

OrkaRoles ShelfTree::server(const QString &prefix, const QString &base, const QString &title)
{
    OrkaRoles roles = folder(prefix, base, title);
    roles.setPath(
        CMPath(prefix, base).addParam(QStringLiteral("itemType"), QStringLiteral("server")));
    return roles;
}

OrkaRoles ShelfTree::node(const QString &prefix, const QString &base)
{
    for (const QString &parent : {QStringLiteral("/shelf"), QStringLiteral("/shelf/slash")}) {
        const QVector<OrkaRoles> nodes = children(prefix, parent);
        for (const OrkaRoles &node : nodes) {
            if (node.path().base() == base) {
                return node;
            }
        }
    }
    return {};
}
