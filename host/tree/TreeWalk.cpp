#include "tree/TreeWalk.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"
#include "tree/RowPages.h"
#include "tree/ServerList.h"

TreeWalk::TreeWalk(Session &session, int depth, Take take, Fail fail)
    : m_session(session)
    , m_depth(depth)
    , m_take(std::move(take))
    , m_fail(std::move(fail))
{
}

void TreeWalk::walk(const CMPath &path)
{
    walk(path, 0);
}

void TreeWalk::walk(const CMPath &path, int depth)
{
    if (m_isSilent)
        return;
    m_way.append(path.base());
    RowPages pages(m_session, path, {}, OrkaRoles::all());
    Rows page;
    try {
        while (pages.next(&page)) {
            for (const OrkaRoles &row : qAsConst(page.rows)) {
                m_take(row, depth);
                const bool isFolder = row.type() == OrkaRolesType::Container;
                m_unopened += isFolder && depth + 1 == m_depth ? 1 : 0;
                if (isFolder && depth + 1 < m_depth && !m_way.contains(row.path().base())) {
                    m_session.setName(row.path(), row.title().toString());
                    walk(row.path(), depth + 1);
                }
            }
        }
        if (pages.lacking() > 0) {
            m_fail(Text::tr(
                "%Ln more rows are counted in %1 than its server gives.", nullptr, pages.lacking())
                       .arg(m_session.nameOf(path)));
        }
    } catch (const Failure &failure) {
        const bool isOver = failure.error().name() == QLatin1String("output");
        if (isOver || (depth == 0 && pages.position() == 0))
            throw;
        if (!m_isSilent)
            fail(path, failure);
    }
    m_way.removeLast();
}

void TreeWalk::fail(const CMPath &path, const Failure &failure)
{
    m_session.renewTime();
    const CMPath server = m_session.path(ServerList::serverBase(path));
    const bool isNodeSilent = failure.status() == NoAnswer && m_session.givesRow(server, 0);
    m_fail((isNodeSilent ? m_session.silenceOf(path) : failure).sentence());
    // Else each folder that is left would be waited for, or said to be gone, too.
    const bool isSilent = failure.status() == NoAnswer || failure.status() == Missing;
    m_isSilent = isSilent && !isNodeSilent;
}
