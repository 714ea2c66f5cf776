#include "Options.h"

#include "core/Glib.h"

namespace bridge {

namespace {

gboolean raiseVerbosity(const char *, const char *, gpointer data, GError **)
{
    auto &options = *static_cast<Options *>(data);
    options.logLevel = options.logLevel == LogLevel::Warning ? LogLevel::Info : LogLevel::Debug;
    return TRUE;
}

/// The parser's results, before they are checked.
struct RawOptions
{
    char *bus = nullptr;
    char **interfaces = nullptr;
    char **servers = nullptr;
    char *cache = nullptr;
    gboolean noCache = FALSE;
    int idleExit = 0;
    gboolean replace = FALSE;
    gboolean version = FALSE;
};

std::string parse(int argc, char **argv, RawOptions &raw, Options &options)
{
    const GOptionEntry entries[] = {
        {"bus", 0, 0, G_OPTION_ARG_STRING, &raw.bus,
            "Bus to serve on: session (default), system or a D-Bus address", "BUS"},
        {"interface", 0, 0, G_OPTION_ARG_STRING_ARRAY, &raw.interfaces,
            "Network interface to search on; may be given several times (default: all)", "NAME"},
        {"server", 0, 0, G_OPTION_ARG_STRING_ARRAY, &raw.servers,
            "Look for a server there, too: a host, HOST:PORT or the URL of its description; may be "
            "given several times",
            "ADDRESS"},
        {"cache", 0, 0, G_OPTION_ARG_FILENAME, &raw.cache,
            "Remember servers in this file (default: orka-media-bridge/servers in the user's cache "
            "folder; with another bus than the session's, none)",
            "FILE"},
        {"no-cache", 0, 0, G_OPTION_ARG_NONE, &raw.noCache, "Remember no servers", nullptr},
        {"idle-exit", 0, 0, G_OPTION_ARG_INT, &raw.idleExit,
            "End after so many seconds without a client (default: never)", "SECONDS"},
        {"replace", 0, 0, G_OPTION_ARG_NONE, &raw.replace,
            "Take the place of a running media bridge", nullptr},
        {"verbose", 'v', G_OPTION_FLAG_NO_ARG, G_OPTION_ARG_CALLBACK,
            reinterpret_cast<void *>(raiseVerbosity),
            "Log what happens to standard error; twice for every detail", nullptr},
        {"version", 0, 0, G_OPTION_ARG_NONE, &raw.version, "Print the version", nullptr}, {}};
    GOptionContext *context = g_option_context_new("- UPnP media servers on D-Bus");
    g_option_context_set_summary(context,
        "Serves the media servers of the local network as com.intel.dleyna-server, where no other\n"
        "media service does. Exit status: 0 ended, 2 wrong usage, 3 no bus or the name is taken.");
    GOptionGroup *group = g_option_group_new("", "", "", &options, nullptr);
    g_option_group_add_entries(group, entries);
    g_option_context_set_main_group(context, group);
    GError *error = nullptr;
    g_option_context_parse(context, &argc, &argv, &error);
    g_option_context_free(context);
    if (!error && argc > 1)
        return std::string("unexpected argument \"") + argv[1] + "\"";
    return takeMessage(error);
}

std::string memoryOf(RawOptions &raw, const std::string &bus)
{
    const std::string named = raw.cache ? takeString(std::exchange(raw.cache, nullptr)) : "";
    if (raw.noCache != FALSE || !named.empty() || bus != "session")
        return raw.noCache != FALSE ? "" : named;
    return takeString(
        g_build_filename(g_get_user_cache_dir(), "orka-media-bridge", "servers", nullptr));
}

} // namespace

Options parseOptions(int argc, char **argv)
{
    Options options;
    RawOptions raw;
    options.problem = parse(argc, argv, raw, options);
    if (raw.bus)
        options.bus = takeString(raw.bus);
    for (char **name = raw.interfaces; name && *name; ++name)
        options.interfaces.emplace_back(*name);
    g_strfreev(raw.interfaces);
    for (char **text = raw.servers; text && *text; ++text) {
        if (const auto address = parseServerAddress(*text))
            options.servers.push_back(*address);
        else if (options.problem.empty())
            options.problem = "--server: " + notAnAddress(*text);
    }
    g_strfreev(raw.servers);
    options.memory = memoryOf(raw, options.bus);
    options.idleExitSeconds = raw.idleExit;
    options.replace = raw.replace != FALSE;
    options.showVersion = raw.version != FALSE;
    if (options.problem.empty() && raw.idleExit < 0)
        options.problem = "--idle-exit takes a number of seconds, 0 for never";
    if (options.problem.empty() && options.bus.empty())
        options.problem = "--bus takes session, system or a D-Bus address";
    return options;
}

} // namespace bridge
