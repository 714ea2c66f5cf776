#include "tree/PageSize.h"

#include <algorithm>

namespace {

constexpr int smallest = 5;
constexpr long long wantedMilliseconds = 4000;
constexpr long long fastestGrowth = 8;

} // namespace

void PageSize::took(int rows, long long milliseconds)
{
    if (rows < m_rows)
        return; // the last page, which says nothing of a whole one
    const long long inTime = rows * wantedMilliseconds / std::max(milliseconds, 1LL);
    const long long next = std::min(inTime, rows * fastestGrowth);
    m_rows = int(std::clamp<long long>(next, smallest, m_limit));
}

bool PageSize::shrink()
{
    if (m_rows == smallest)
        return false;
    m_limit = std::max(m_rows / 4, smallest);
    m_rows = smallest;
    return true;
}
