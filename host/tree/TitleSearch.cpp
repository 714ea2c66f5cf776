#include "tree/TitleSearch.h"

#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "tree/NodeKind.h"
#include "tree/ServerList.h"

#include <QDBusObjectPath>

namespace {

constexpr std::chrono::milliseconds searchLimit(5'000);
/// A server that finds so many doesn't look at what it is asked.
constexpr uint most = 8;

const QString displayName = QStringLiteral("DisplayName");

bool canSearch(const QStringList &capabilities)
{
    return capabilities.contains(QLatin1String("*"))
        || (capabilities.contains(displayName) && capabilities.contains(QLatin1String("Parent")));
}

QString queryFor(QString title, const QString &folder)
{
    title.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QStringLiteral("DisplayName = \"%1\" and Parent = \"%2\"").arg(title, folder);
}

QString pathIn(const QVariantMap &object, const char *key)
{
    return object.value(QLatin1String(key)).value<QDBusObjectPath>().path();
}

} // namespace

CMPath searchByTitle(Session &session, const CMPath &parent, const QString &title, bool onlyFolders)
{
    const ServiceCalls service(searchLimit);
    const QStringList servers = session.mediaService().servers().paths();
    const QString base = ServerList::serverBase(parent);
    const QString server = service.objectOf(base, servers);
    const QString folder = service.objectOf(parent.base(), servers);
    const ServiceAnswer caps = service.property(server, QStringLiteral("SearchCaps"));
    if (folder.isEmpty() || !canSearch(valueOf(caps).toStringList()))
        return CMPath();
    const QList<QVariantMap> objects = childrenOf(service.search(folder, queryFor(title, folder),
        most,
        {displayName, QStringLiteral("Path"), QStringLiteral("Parent"), QStringLiteral("Type")}));
    QStringList found;
    for (const QVariantMap &object : objects) {
        const bool isFolder = object.value(QStringLiteral("Type")) == QLatin1String("container");
        const QString path = pathIn(object, "Path");
        if (object.value(displayName) == title && pathIn(object, "Parent") == folder
            && path.startsWith(server + QLatin1Char('/')) && (isFolder || !onlyFolders))
            found.append(path);
    }
    if (found.size() != 1 || uint(objects.size()) == most)
        return CMPath();
    return withKind(session, session.path(base + found.first().mid(server.size())));
}
