#include "tree/SearchKinds.h"

#include "chain/Session.h"
#include "tree/RowsReader.h"

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
