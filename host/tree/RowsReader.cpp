#include "tree/RowsReader.h"

#include "chain/Session.h"

namespace {

constexpr int pageSize = 500;

/// Whether there may be more rows after `next`, the answer of `asked` rows having been `page`.
bool mayGoOn(const Rows &page, int asked, int next)
{
    if (page.rows.isEmpty())
        return false;
    return page.rowsCount > 0 ? next < page.rowsCount : page.rows.size() == asked;
}

} // namespace

Rows readRowsAtOnce(Session &session, const CMPath &path, RowRange range, const QStringList &roles)
{
    const OrkaRowsRoles answer = session.rows(path, range.first, range.last, roles);
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

Rows readRows(Session &session, const CMPath &path, RowRange range, const QStringList &roles)
{
    Rows all;
    int next = range.first;
    for (bool more = true; more;) {
        const int last = range.last - next < pageSize ? range.last : next + pageSize - 1;
        const Rows page = readRowsAtOnce(session, path, {next, last}, roles);
        all.rowsCount = page.rowsCount;
        all.rowsVersion = page.rowsVersion;
        all.roles = page.roles;
        all.rows += page.rows;
        more = mayGoOn(page, last - next + 1, next + page.rows.size())
            && page.rows.size() <= range.last - next;
        next += page.rows.size();
    }
    return all;
}
