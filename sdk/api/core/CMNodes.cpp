#include "CMNodes.h"

#include <api/core/CMGlobal.h>

#include <algorithm>

CMNodes::CMNodes(QObject *parent)
    : QObject(parent)
{
}

CMNodes::~CMNodes() = default;

CMListRowsNode *CMNodes::find(const CMPath &path) const
{
    const auto isAtPath = [&path](const std::unique_ptr<CMListRowsNode> &node) {
        return node->m_path.base() == path.base() && node->m_path.prefix() == path.prefix();
    };
    const auto found = std::find_if(m_nodes.begin(), m_nodes.end(), isAtPath);
    return found == m_nodes.end() ? nullptr : found->get();
}

bool CMNodes::getRowsRequest(const CMGetRowsRequest &request)
{
    const CMListRowsNode *const node = find(request.path());
    if (node)
        node->answerRows(request);
    return node;
}

bool CMNodes::getDataRequest(const CMGetDataRequest &request)
{
    const CMListRowsNode *const node = find(request.path());
    if (node)
        node->answerData(request);
    return node;
}

bool CMNodes::setDataRequest(const CMSetDataRequest &)
{
    // A list node has nothing that could be set.
    return false;
}

CMListRowsNode::CMListRowsNode(CMNodes *nodes, const CMPath &path)
    : m_nodes(nodes)
    , m_path(path.withoutParams())
{
}

CMListRowsNode *CMListRowsNode::create(CMNodes *nodes, const CMPath &path)
{
    if (CMListRowsNode *const existing = nodes->find(path))
        return existing;
    nodes->m_nodes.emplace_back(new CMListRowsNode(nodes, path));
    return nodes->m_nodes.back().get();
}

void CMListRowsNode::rowsAppend(const OrkaRoles &row)
{
    m_rows.append(row);
    m_bases.insert(row.path().base());
    changed();
}

namespace {
/// What the bases below `top` start with.
QString startBelow(const QString &top)
{
    return top.endsWith(QLatin1Char('/')) ? top : top + QLatin1Char('/');
}

bool hasParams(const CMPath &path, const QMap<QString, QString> &wanted)
{
    const QMap<QString, QString> params = path.params();
    for (auto it = wanted.begin(); it != wanted.end(); ++it) {
        const auto found = params.find(it.key());
        if (found == params.end() || *found != *it)
            return false;
    }
    return true;
}
} // namespace

bool CMListRowsNode::mayHaveRowsAtOrBelow(const QString &base) const
{
    const QString start = startBelow(base);
    const auto below = m_bases.lower_bound(start);
    return m_bases.find(base) != m_bases.end()
        || (below != m_bases.end() && below->startsWith(start));
}

int CMListRowsNode::rowsRemoveStartingWithPath(const CMPath &path)
{
    const QString base = path.base();
    if (!mayHaveRowsAtOrBelow(base))
        return 0;
    const auto stays = [&path, &base, start = startBelow(base), params = path.params()](
                           const OrkaRoles &row) {
        const CMPath rowPath = row.path();
        const bool isAtOrBelow = rowPath.base() == base || rowPath.base().startsWith(start);
        return !isAtOrBelow || rowPath.prefix() != path.prefix() || !hasParams(rowPath, params);
    };
    const auto firstRemoved = std::stable_partition(m_rows.begin(), m_rows.end(), stays);
    const int removed = int(m_rows.end() - firstRemoved);
    for (auto row = firstRemoved; row != m_rows.end(); ++row)
        m_bases.erase(m_bases.find(row->path().base()));
    m_rows.erase(firstRemoved, m_rows.end());
    if (removed > 0)
        changed();
    return removed;
}

void CMListRowsNode::answerRows(const CMGetRowsRequest &request) const
{
    QVariantList rows;
    const int last = std::min(request.lastRow(), m_rows.size() - 1);
    for (int i = std::max(request.firstRow(), 0); i <= last; ++i)
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roles(), m_rows.at(i))));

    OrkaRowsRoles answer;
    answer.setRoles(ownRoles());
    answer.setRowsVersion(m_rowsVersion);
    answer.setRows(rows);
    answer.setRowsCount(m_rows.size());
    request.reply().setValue(answer);
}

void CMListRowsNode::answerData(const CMGetDataRequest &request) const
{
    CMGetDataRequest::Reply(request.reply())
        .setValue(CMGlobal::itemRolesToList(request.roles(), ownRoles()));
}

OrkaRoles CMListRowsNode::ownRoles() const
{
    OrkaRoles roles;
    roles.setPath(m_path);
    roles.setType(OrkaRolesType::Container);
    roles.setTitle(m_title);
    return roles;
}

void CMListRowsNode::changed()
{
    ++m_rowsVersion;
    emit m_nodes->rowsChanged(m_path, m_rowsVersion);
}
