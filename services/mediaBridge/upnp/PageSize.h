#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace bridge {

/// How many objects a listing asks a server for at a time: as many as it can send in about a
/// second. Small at first, so that reading begins early.
class PageSize
{
public:
    uint32_t objects() const { return m_objects; }
    /// Follows a page of so many objects, which took so long.
    void follow(uint32_t objects, size_t bytes, std::chrono::steady_clock::duration took);
    /// After a page that the server couldn't send; false where none is smaller.
    bool shrink();

private:
    uint32_t m_objects = 200;
    uint32_t m_most = 1000;
};

} // namespace bridge
