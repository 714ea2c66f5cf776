#include "tree/RowsReader.h"

#include "chain/Session.h"
#include "tree/RowPages.h"

Rows rowsOf(const OrkaRowsRoles &answer, const QStringList &roles)
{
    Rows rows;
    rows.rowsCount = answer.rowsCount();
    rows.rowsVersion = answer.rowsVersion();
    rows.roles = answer.roles();
    const QVariantList list = answer.rows();
    rows.rows.reserve(list.size());
    for (const QVariant &row : list)
        rows.rows.append(recordOf(roles, row.toList()));
    return rows;
}

bool mayFollow(int rowsCount, int next, bool isPageFull)
{
    return rowsCount > 0 && next <= rowsCount ? next < rowsCount : isPageFull;
}

Rows readRowsAtOnce(Session &session, const CMPath &path, RowRange range, const QStringList &roles)
{
    return rowsOf(session.rows(path, range.first, range.last, roles), roles);
}

Rows readRows(Session &session, const CMPath &path, RowRange range, const QStringList &roles)
{
    RowPages pages(session, path, range, roles);
    Rows all;
    Rows page;
    while (pages.next(&page)) {
        all.rows += page.rows;
        all.rowsCount = page.rowsCount;
        all.rowsVersion = page.rowsVersion;
        all.roles = page.roles;
    }
    return all;
}
