#include "tree/SearchKinds.h"

#include "Text.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "tree/RowsReader.h"
#include "tree/ServerList.h"

QStringList searchKinds(Session &session, const CMPath &path)
{
    const QString key = QStringLiteral("search");
    CMPath menu = path.withoutParams();
    menu.addParam(key, QStringLiteral("menu"));
    QStringList kinds;
    const Rows rows = readRows(session, menu, {}, {OrkaRoles::Path()});
    for (const OrkaRoles &row : rows.rows) {
        if (row.path().hasParam(key))
            kinds.append(row.path().param(key));
    }
    return kinds;
}

QStringList kindNames(const QStringList &kinds)
{
    QStringList names;
    for (const QString &kind : kinds)
        names.append(Text::tr(kind.toLatin1().constData()));
    return names;
}

QString searchUnknown(const Session &session, const CMPath &path)
{
    const ServiceCalls service(std::chrono::seconds(1));
    const QString server =
        service.objectOf(ServerList::serverBase(path), session.mediaService().servers().paths());
    const ServiceAnswer caps = service.property(server, QStringLiteral("SearchCaps"));
    return caps.errorName.endsWith(QLatin1String(".UnknownProperty"))
        ? Text::tr("%1 has not said yet what it can search.").arg(session.serverNameOf(path))
        : QString();
}
