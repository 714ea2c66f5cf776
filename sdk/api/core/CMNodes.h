// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMRequest.h>

#include <QObject>
#include <QVector>

#include <memory>
#include <set>
#include <vector>

class CMListRowsNode;

/// The nodes that a worker keeps ready. Each operation returns whether a node took the request; a
/// request that none took is untouched. On the worker's thread.
class ORKA_API_EXPORT CMNodes : public QObject
{
    Q_OBJECT

public:
    explicit CMNodes(QObject *parent = nullptr);
    ~CMNodes() override;

    bool getRowsRequest(const CMGetRowsRequest &request);
    bool getDataRequest(const CMGetDataRequest &request);
    bool setDataRequest(const CMSetDataRequest &request);

signals:
    void rowsChanged(const CMPath &path, int rowsVersion);

private:
    friend class CMListRowsNode;
    CMListRowsNode *find(const CMPath &path) const;

    std::vector<std::unique_ptr<CMListRowsNode>> m_nodes;
};

/// A node whose children are a list of rows kept in memory. Answers rows and data requests for its
/// own path, parameters aside, and declines every other, its rows' paths included.
class ORKA_API_EXPORT CMListRowsNode
{
public:
    /// Makes the node at `path`; the node set owns it. A path that has a node already keeps it:
    /// that node is returned.
    static CMListRowsNode *create(CMNodes *nodes, const CMPath &path);

    const CMPath &path() const { return m_path; }
    void setTitle(const TrString &title) { m_title = title; }

    int rowsCount() const { return m_rows.size(); }
    const OrkaRoles &row(int index) const { return m_rows.at(index); }
    /// From 0; grows by one with every change.
    int rowsVersion() const { return m_rowsVersion; }
    void rowsAppend(const OrkaRoles &row);
    /// Removes the rows at or below `path`: same prefix; the base equal, or starting with the given
    /// base at a "/" boundary (a given base that itself ends in "/" takes everything below it); and
    /// every parameter of `path` present in the row's. Returns how many; none leaves the version
    /// as it is.
    int rowsRemoveStartingWithPath(const CMPath &path);

private:
    friend class CMNodes;
    CMListRowsNode(CMNodes *nodes, const CMPath &path);
    bool mayHaveRowsAtOrBelow(const QString &base) const;
    void answerRows(const CMGetRowsRequest &request) const;
    void answerData(const CMGetDataRequest &request) const;
    OrkaRoles ownRoles() const;
    void changed();

    CMNodes *m_nodes;
    CMPath m_path;
    TrString m_title;
    QVector<OrkaRoles> m_rows;
    /// The bases of all rows' paths, so that a removal that finds nothing needn't look at each row.
    std::multiset<QString> m_bases;
    int m_rowsVersion = 0;
};
