#pragma once

#include "tree/PageSize.h"
#include "tree/RowSource.h"

#include <api/core/CMPath.h>

#include <QVector>

#include <memory>

class Failure;

/// The rows of one node, page by page; the next page is on its way while one is looked at.
///
/// Ends when the range is complete, the node's count is reached, or a page brings nothing new. A
/// page shorter than asked for is gone on from; where it left a row out on the way, the next begins
/// with rows that were there already, which are given once. A count that the rows disprove is not
/// believed, 0 among them. A page that fails is asked for again in smaller pieces where the node
/// gives one row.
class RowPages : public RowSource
{
public:
    /// `size` is shared by the nodes of one media server; null for one of its own. `quiet`: a
    /// terminal shows nothing of it.
    RowPages(Session &session, const CMPath &path, RowRange range, const QStringList &roles,
        std::shared_ptr<PageSize> size = nullptr, bool quiet = false);
    ~RowPages() override;
    RowPages(const RowPages &) = delete;
    RowPages &operator=(const RowPages &) = delete;

    bool next(Rows *page) override;
    /// Position of the row after the last that came.
    int position() const { return m_next; }
    int lacking() const override;

private:
    struct Request;

    void ask();
    Rows take();
    int lastOfPage() const;
    Failure named(const Failure &failure) const;
    bool shrinkAfter(const Failure &failure);
    void leaveOutKnown(Rows *page);

    Session &m_session;
    const CMPath m_path;
    const RowRange m_range;
    const QStringList m_roles;
    const std::shared_ptr<PageSize> m_size;
    const bool m_quiet;
    int m_next;
    int m_count = 0;
    int m_given = 0;
    /// Of the last page.
    QVector<CMPath> m_pathsBefore;
    std::unique_ptr<Request> m_request;
};
