#pragma once

#include "Log.h"
#include "ServerAddress.h"

#include <string>
#include <vector>

namespace bridge {

/// What the command line asks for.
struct Options
{
    /// "session", "system" or a D-Bus address.
    std::string bus = "session";
    /// Network interfaces to use; empty for all.
    std::vector<std::string> interfaces;
    /// Addresses to look for servers at, besides the search.
    std::vector<ServerAddress> servers;
    /// The file that keeps what was found; empty for none. On the session bus there is one unless
    /// it is refused.
    std::string memory;
    /// Seconds without a client after which the service ends; 0 for never.
    int idleExitSeconds = 0;
    bool replace = false;
    bool showVersion = false;
    LogLevel logLevel = LogLevel::Warning;
    /// What is wrong with the command line; empty where nothing is.
    std::string problem;
};

/// Reads the command line. `--help` prints to standard output and exits with status 0.
Options parseOptions(int argc, char **argv);

} // namespace bridge
