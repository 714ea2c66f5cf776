#include "tree/SamplePages.h"

#include "chain/Session.h"

#include <QElapsedTimer>

#include <algorithm>

namespace {

/// Up to this distance a server lists all rows sooner than one by one.
constexpr int denseStep = 16;
constexpr int firstRowsApart = 5;

} // namespace

SamplePages::SamplePages(
    Session &session, const CMPath &folder, const SampleRange &sample, int most)
    : m_session(session)
    , m_folder(folder)
    , m_sample(sample)
    , m_size(firstRowsApart)
    , m_wanted(std::min(most, sample.positions()))
{
}

CMPath SamplePages::pathFrom(int start) const
{
    const SampleRange rest{start, m_sample.end, m_sample.step};
    return CMPath(m_folder).addParam(QStringLiteral("sample"), rest.toString());
}

bool SamplePages::next(Rows *page)
{
    const bool begins = !m_begun;
    if (begins) {
        *page = first();
    } else if (m_came >= m_wanted) {
        return false;
    } else if (m_dense) {
        if (!pick(page))
            return false;
    } else {
        *page = spread();
    }
    m_begun = true;
    m_came += page->rows.size();
    page->rowsCount = m_rowsCount;
    return begins || m_dense || !page->rows.isEmpty();
}

/// From where the sample goes on.
Rows SamplePages::ask(int rows)
{
    const CMPath path = pathFrom(m_sample.start + m_came * m_sample.step);
    return readRowsAtOnce(m_session, path, {0, rows - 1}, OrkaRoles::all());
}

/// How many rows the folder has; 0 where it can't say, or counts fewer than it gives.
int SamplePages::count()
{
    const auto rowAt = [this](int row) {
        return readRowsAtOnce(m_session, m_folder, {row, row}, {OrkaRoles::Path()});
    };
    const int counted = rowAt(m_sample.start).rowsCount;
    const bool endsBefore = counted > 0 && counted <= m_sample.end;
    return endsBefore && !rowAt(counted).rows.isEmpty() ? 0 : counted;
}

/// How many rows a sample has, the worker says without regard to where the folder ends.
Rows SamplePages::first()
{
    Rows page = ask(1);
    m_rowsCount = page.rowsCount;
    m_total = count();
    const int last = m_total > 0 ? std::min(m_total - 1, m_sample.end) : m_sample.end;
    const int positions = (last - m_sample.start) / m_sample.step + 1;
    m_wanted = page.rows.isEmpty() ? 0 : std::clamp(positions, 1, m_wanted);
    if (m_wanted > 1 && m_sample.step <= denseStep) {
        const RowRange rest{
            m_sample.start + m_sample.step, m_sample.start + (m_wanted - 1) * m_sample.step};
        m_dense = std::make_unique<RowPages>(m_session, m_folder, rest, OrkaRoles::all());
    }
    return page;
}

Rows SamplePages::spread()
{
    QElapsedTimer clock;
    clock.start();
    Rows page = ask(std::min(m_size.rows(), m_wanted - m_came));
    m_size.took(page.rows.size(), clock.elapsed());
    return page;
}

bool SamplePages::pick(Rows *page)
{
    Rows all;
    if (!m_dense->next(&all))
        return false;
    const int first = m_dense->position() - all.rows.size();
    *page = Rows();
    for (int i = 0; i < all.rows.size(); ++i) {
        if ((first + i - m_sample.start) % m_sample.step == 0)
            page->rows.append(all.rows.at(i));
    }
    return true;
}
