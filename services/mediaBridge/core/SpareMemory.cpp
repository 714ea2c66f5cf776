#include "core/SpareMemory.h"

#include "core/Timer.h"

#include <malloc.h>

namespace bridge {

namespace {

constexpr unsigned soonMs = 1'000;
constexpr size_t worthIt = size_t{2} << 20;

} // namespace

void giveBackSpareMemorySoon()
{
    static Timer soon;
    // Not put off by the next call: there may always be one.
    if (soon.isRunning())
        return;
    soon.start(soonMs, [] {
        if (mallinfo2().fordblks > worthIt)
            malloc_trim(0);
    });
}

} // namespace bridge
