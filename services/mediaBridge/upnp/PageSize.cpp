#include "upnp/PageSize.h"

#include "core/Limits.h"

#include <algorithm>

namespace bridge {

namespace {

constexpr uint32_t smallestPage = 20;
constexpr auto pageGoal = std::chrono::seconds(1);

} // namespace

/// Big pages are the fastest, but some servers take 10 ms an object, and go on with a page that
/// nobody waits for any more before they look at the next call.
void PageSize::follow(uint32_t objects, size_t bytes, std::chrono::steady_clock::duration took)
{
    if (objects < smallestPage)
        return;
    const size_t bytesOfRow = bytes / objects + 1;
    const auto fitting = objects * pageGoal / std::max(took, decltype(took)(1));
    // Escaped on its way, a row may be twice as long, and the next ones may be longer.
    const size_t allowed = limits::answerBytes(m_most) / 4 / bytesOfRow + smallestPage;
    const int64_t largest =
        std::min<int64_t>(std::min(2 * m_objects, m_most), static_cast<int64_t>(allowed));
    m_objects = static_cast<uint32_t>(std::clamp<int64_t>(fitting, smallestPage, largest));
}

bool PageSize::shrink()
{
    if (m_objects <= smallestPage)
        return false;
    m_objects = m_most = std::max(m_objects / 5, smallestPage);
    return true;
}

} // namespace bridge
