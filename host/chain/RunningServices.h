#pragma once

#include "GlobalOptions.h"

/// Ends the bridge on the bus that the options name and, where that is the session bus, the one on
/// this user's private bus. Returns whether there was any. Throws Failure where one doesn't end, or
/// the media service isn't a bridge.
bool endRunningServices(const GlobalOptions &options);
