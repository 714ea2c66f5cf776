#include "bus/ListingsUnderWay.h"

#include <algorithm>

namespace bridge {

void ListingsUnderWay::add(const std::string &path, const std::shared_ptr<Listing> &listing)
{
    if (m_byPath.size() >= m_forgetAt)
        forgetEnded();
    m_byPath[path] = listing;
}

std::shared_ptr<Listing> ListingsUnderWay::find(const std::string &path) const
{
    const auto known = m_byPath.find(path);
    return known == m_byPath.end() ? nullptr : known->second.lock();
}

void ListingsUnderWay::forgetEnded()
{
    for (auto known = m_byPath.begin(); known != m_byPath.end();)
        known = known->second.expired() ? m_byPath.erase(known) : std::next(known);
    m_forgetAt = std::max<size_t>(64, 2 * m_byPath.size());
}

} // namespace bridge
