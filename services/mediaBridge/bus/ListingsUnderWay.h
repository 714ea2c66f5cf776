#pragma once

#include "upnp/Listing.h"

#include <map>

namespace bridge {

/// Listings that will know how many children their container has: clients ask for rows and count at
/// once, and the second question needn't go to the server.
class ListingsUnderWay
{
public:
    /// `path` is the container's.
    void add(const std::string &path, const std::shared_ptr<Listing> &listing);
    /// Null where none is under way.
    std::shared_ptr<Listing> find(const std::string &path) const;

private:
    void forgetEnded();

    std::map<std::string, std::weak_ptr<Listing>> m_byPath;
    size_t m_forgetAt = 64;
};

} // namespace bridge
