#pragma once

#include "GlobalOptions.h"

/// Ends the bridge on the bus that the options name and, where that is the session bus, the one on
/// this user's private bus, by force where they are frozen. Returns whether there was any. Throws
/// Failure where one doesn't end, or the media service isn't a bridge.
bool endRunningServices(const GlobalOptions &options);
