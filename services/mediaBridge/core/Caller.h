#pragma once

#include "core/Glib.h"

#include <string>

namespace bridge {

/// For whom something is asked of a server.
struct Caller
{
    /// Unique name on the bus; empty for the bridge itself.
    std::string name;
    /// Cancelled when nobody waits for it any more; may be null.
    Ref<GCancellable> cancellable;
};

} // namespace bridge
