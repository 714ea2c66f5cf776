#pragma once

#include "tree/PageSize.h"
#include "tree/RowPages.h"
#include "tree/RowRange.h"

/// The rows of a sample, the same that the worker answers when it is asked for all of them at once,
/// but some at a time: those of a dense sample are picked out of the rows around them.
class SamplePages : public RowSource
{
public:
    /// At most `most` rows, all from the sample's start on.
    SamplePages(Session &session, const CMPath &folder, const SampleRange &sample, int most);

    bool next(Rows *page) override;
    int lacking() const override { return m_total > 0 ? m_wanted - m_came : 0; }

    /// Of the folder, with the sample in its parameters.
    CMPath path() const { return pathFrom(m_sample.start); }

private:
    CMPath pathFrom(int start) const;
    Rows ask(int rows);
    Rows first();
    int count();
    Rows spread();
    bool pick(Rows *page);

    Session &m_session;
    const CMPath m_folder;
    const SampleRange m_sample;
    PageSize m_size;
    bool m_begun = false;
    /// Known with the first row.
    int m_wanted = 1;
    int m_rowsCount = 0;
    /// Of the folder; 0 or less where its server can't know.
    int m_total = 0;
    int m_came = 0;
    std::unique_ptr<RowPages> m_dense;
};
