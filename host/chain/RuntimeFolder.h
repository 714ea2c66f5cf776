#pragma once

#include <QString>

/// Where what outlives a command is found by the next one: $XDG_RUNTIME_DIR/orka, or
/// /tmp/orka-UID where there is no such directory.
namespace RuntimeFolder {

/// Its path; the folder is made where it isn't there. Throws Failure (missing) where it is somebody
/// else's, or others may use it.
QString make();

} // namespace RuntimeFolder
