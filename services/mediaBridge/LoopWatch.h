#pragma once

namespace bridge {

/// Logs every turn of the main loop that takes more than 20 ms, at Debug: in that time nobody else
/// is served.
void watchLoop();

} // namespace bridge
