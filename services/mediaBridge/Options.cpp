#include "Options.h"

#include "MediaServiceNames.h"
#include "core/Glib.h"

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace bridge {

namespace {

/// What needs a second look once all is parsed.
struct Given
{
    std::vector<std::string> servers;
    bool noCache = false;
    int verbosity = 0;
};

void declare(CLI::App &app, Options &options, Given &given)
{
    app.footer("Exit status: 0 ended, 2 wrong usage, 3 no bus or the name is taken.");
    app.get_formatter()->column_width(28);
    app.set_help_flag("-h,--help", "Print this");
    app.add_option(
           "--bus", options.bus, "Bus to serve on: session (default), system or a\nD-Bus address")
        ->type_name("BUS");
    app.add_option("--interface", options.interfaces,
           "Network interface to search on; may be given several\ntimes (default: all)")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option("--server", given.servers,
           "Look for a server there, too: a host, HOST:PORT or\nthe URL of its description; may be "
           "given several times")
        ->type_name("ADDRESS")
        ->allow_extra_args(false);
    app.add_option("--cache", options.memory,
           "Remember servers in this file (default:\norka-media-bridge/servers in the user's cache "
           "folder;\nwith another bus than the session's, none)")
        ->type_name("FILE");
    app.add_flag("--no-cache", given.noCache, "Remember no servers");
    app.add_option("--idle-exit", options.idleExitSeconds,
           "End after so many seconds without a client (default:\nnever)")
        ->type_name("SECONDS");
    app.add_flag("--replace", options.replace, "Take the place of a running media bridge");
    app.add_flag("-v,--verbose", given.verbosity,
        "Log what happens to standard error; twice for every\ndetail");
    app.add_flag("--version", options.showVersion, "Print the version");
}

/// On the session bus there is one unless it is refused.
std::string usualMemory()
{
    return takeString(
        g_build_filename(g_get_user_cache_dir(), "orka-media-bridge", "servers", nullptr));
}

/// Gives what is wrong, if anything is.
std::string complete(Options &options, const Given &given)
{
    for (const std::string &text : given.servers) {
        std::string problem;
        const auto address = parseServerAddress(text, &problem);
        if (!address)
            return "--server: " + problem;
        options.servers.push_back(*address);
    }
    if (given.noCache)
        options.memory.clear();
    else if (options.memory.empty() && options.bus == "session")
        options.memory = usualMemory();
    if (given.verbosity > 0)
        options.logLevel = given.verbosity == 1 ? LogLevel::Info : LogLevel::Debug;
    if (options.idleExitSeconds < 0)
        return "--idle-exit takes a number of seconds, 0 for never";
    return options.bus.empty() ? "--bus takes session, system or a D-Bus address" : "";
}

} // namespace

Options parseOptions(int argc, char **argv)
{
    Options options;
    Given given;
    CLI::App app(std::string("Serves the media servers of the local network as ")
            + mediaService::busName + ", where no other\nmedia service does.",
        "orka-media-bridge");
    declare(app, options, given);
    try {
        app.parse(argc, argv);
        options.problem = complete(options, given);
    } catch (const CLI::Success &help) {
        std::exit(app.exit(help));
    } catch (const CLI::ParseError &error) {
        options.problem = error.what();
    }
    return options;
}

} // namespace bridge
