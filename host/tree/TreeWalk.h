#pragma once

#include "tree/RowsReader.h"

class Failure;
class Session;

/// Goes down from a node, folder by folder in the server's order, to a depth.
class TreeWalk
{
public:
    /// Told of each row with its depth, from 0, before what is below it.
    using Take = std::function<void(const OrkaRoles &row, int depth)>;
    /// Told of a folder that couldn't be read whole.
    using Fail = std::function<void(const QString &sentence)>;

    TreeWalk(Session &session, int depth, Take take, Fail fail);
    /// Throws Failure where nothing of the node itself can be read.
    void walk(const CMPath &path);
    /// Folders of the last level, which weren't opened.
    int unopened() const { return m_unopened; }

private:
    void walk(const CMPath &path, int depth);
    void fail(const CMPath &path, const Failure &failure);

    Session &m_session;
    const int m_depth;
    const Take m_take;
    const Fail m_fail;
    bool m_isSilent = false;
    int m_unopened = 0;
    /// Of the folders on the way down: one that holds itself would have no end.
    QStringList m_way;
};
