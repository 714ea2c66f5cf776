#pragma once

namespace bridge {

/// A long list takes many times what the service needs between calls, and the allocator would keep
/// it. It goes back to the system within a second of this. Main thread only.
void giveBackSpareMemorySoon();

} // namespace bridge
