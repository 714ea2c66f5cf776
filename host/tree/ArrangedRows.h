#pragma once

#include "tree/RowSource.h"

#include <QSet>

#include <exception>
#include <functional>

class Session;

/// What rows are sorted by; Given leaves them in the server's order.
enum class SortKey { Given, Title, Artist, Album, Date, Track, Length };

/// Rows of certain kinds, or in another order: then all are read before the first is given, and the
/// range is one of the sorted list. Each keeps its number.
class ArrangedRows : public RowSource
{
public:
    /// `source` gives the rows of `range`, or all where they are to be sorted. `kinds` holds names
    /// of kinds, empty for all. `trackOf` gives a row's number on its album, by the row's own
    /// number.
    ArrangedRows(RowSource &source, RowRange range, SortKey key, const QSet<QString> &kinds,
        std::function<int(int)> trackOf);

    bool next(Rows *page) override;
    int lacking() const override { return m_source.lacking(); }
    int ofOtherKinds() const override { return m_ofOtherKinds; }

private:
    bool readPage(Rows *page);
    void sort(Rows *rows) const;

    RowSource &m_source;
    const RowRange m_range;
    int m_number;
    const SortKey m_key;
    const QSet<QString> m_kinds;
    const std::function<int(int)> m_trackOf;
    bool m_isRead = false;
    int m_ofOtherKinds = 0;
    /// Why rows are missing behind the sorted ones.
    std::exception_ptr m_failure;
};
