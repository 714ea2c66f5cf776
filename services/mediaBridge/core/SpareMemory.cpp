#include "core/SpareMemory.h"

#include "core/Timer.h"

#include <algorithm>
#include <malloc.h>
#include <utility>

namespace bridge {

namespace {

constexpr unsigned soonMs = 1'000;
constexpr size_t worthIt = size_t{2} << 20;

bool isWanted = false;
size_t lastUsed = 0;

void startSoon();

/// Again and again while memory is being used or freed: answers may wait for the bus for long.
void giveBack()
{
    const auto info = mallinfo2();
    if (info.fordblks > worthIt)
        malloc_trim(0);
    const size_t used = info.uordblks + info.hblkhd;
    const size_t change = std::max(used, lastUsed) - std::min(used, lastUsed);
    lastUsed = used;
    if (std::exchange(isWanted, false) || change > worthIt)
        startSoon();
}

void startSoon()
{
    static Timer soon;
    // Not put off by the next call: there may always be one.
    if (!soon.isRunning())
        soon.start(soonMs, &giveBack);
}

} // namespace

void giveBackSpareMemorySoon()
{
    isWanted = true;
    startSoon();
}

} // namespace bridge
