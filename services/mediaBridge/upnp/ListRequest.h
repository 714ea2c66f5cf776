#pragma once

#include "core/Properties.h"

#include <cstdint>
#include <string>

namespace bridge {

/// Which objects of a container a listing gives.
enum class ListKind { All, Containers, Items };

/// What to list: the children of a container, or what is found below it.
struct ListRequest
{
    /// "Browse" or "Search".
    std::string action = "Browse";
    std::string containerId;
    /// Of a search, ready to travel.
    std::string criteria;
    /// Ready to travel; empty for the server's own order.
    std::string sort;
    PropertySet wanted;
    ListKind kind = ListKind::All;
    /// First object to give, from 0.
    uint32_t offset = 0;
    /// How many at most; 0 for all.
    uint32_t max = 0;
    /// Whoever asks is told the server's own count, and sees where fewer came.
    bool tellsTotal = false;

    /// Positions then count what is left of the server's list, which therefore can't begin there.
    bool isFiltered() const { return kind != ListKind::All; }
};

} // namespace bridge
