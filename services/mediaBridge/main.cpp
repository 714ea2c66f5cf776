#include "Log.h"
#include "LoopWatch.h"
#include "Options.h"
#include "StandardStreams.h"
#include "bus/MediaService.h"
#include "core/Background.h"
#include "core/Limits.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <glib-unix.h>
#include <malloc.h>
#include <net/if.h>

namespace bridge {

namespace {

enum ExitStatus { Ended = 0, WrongUsage = 2, NoService = 3 };

int say(ExitStatus status, const std::string &text)
{
    std::fprintf(stderr, "orka-media-bridge: %s\n", text.c_str());
    return status;
}

gboolean quit(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

/// What a signal does before the loop runs, since the program may wait for a bus that stands still.
void endAtOnce(int)
{
    std::_Exit(Ended);
}

/// Ends the loop when there has been no client for a while.
void watchIdle(BusService &bus, Timer &idle, GMainLoop *loop, int seconds)
{
    if (seconds == 0)
        return;
    const auto wait = [&idle, loop, seconds] {
        idle.start(static_cast<unsigned>(seconds) * 1000U, [loop] {
            logInfo("no client is left, ending");
            g_main_loop_quit(loop);
        });
    };
    bus.onFirstClient = [&idle] {
        idle.stop();
    };
    bus.onLastClientGone = wait;
    wait();
}

/// A name that was mistyped would be waited for without a word.
void warnOfAbsent(const std::vector<std::string> &interfaces)
{
    for (const std::string &name : interfaces) {
        if (if_nametoindex(name.c_str()) == 0)
            logWarning("there is no network interface \"" + name
                + "\" now; servers are looked for on it when it comes");
    }
}

/// Requests that went with their servers end here, and whoever waits for one is told.
void finishRequests()
{
    constexpr int enough = 1000;
    for (int i = 0; i < enough && g_main_context_iteration(nullptr, FALSE) != FALSE; ++i) {
    }
}

int serve(const Options &options, GMainLoop *loop)
{
    int status = Ended;
    Timer idle;
    BusService bus;
    bus.onEnd = [&](const std::string &sentence) {
        status = say(NoService, sentence);
        g_main_loop_quit(loop);
    };
    std::string problem = bus.connect(options.bus);
    if (!problem.empty())
        return say(NoService, problem);
    {
        ServerRegistry registry(options.interfaces, options.memory);
        MediaService service(bus, registry);
        service.onStop = [loop] {
            logInfo("a client ends the service");
            g_main_loop_quit(loop);
        };
        // Whoever sees the name may announce himself at once.
        service.start();
        for (const ServerAddress &address : options.servers)
            registry.addNamed(address);
        problem = bus.ownName(options.replace);
        if (!problem.empty())
            return say(NoService, problem);
        warnOfAbsent(options.interfaces);
        watchIdle(bus, idle, loop, options.idleExitSeconds);
        logInfo("serving " + std::string(mediaService::busName));
        g_unix_signal_add(SIGTERM, quit, loop);
        g_unix_signal_add(SIGINT, quit, loop);
        g_main_loop_run(loop);
        bus.onCall = [](const BusCallPtr &) {
        };
    }
    background::stop();
    finishRequests();
    bus.finishSending(limits::farewellMs);
    return status;
}

/// The thread that reads long documents gets no heap of its own, which would never shrink, and what
/// is long never lies in the heap, where it would leave holes.
void keepHeapSmall()
{
    constexpr int longBytes = 256 << 10;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, longBytes);
}

int run(int argc, char **argv)
{
    const Options options = parseOptions(argc, argv);
    if (!options.problem.empty())
        return say(WrongUsage,
            options.problem + (options.problem.back() == '.' ? "" : ".") + " Try --help.");
    if (options.showVersion) {
        std::printf("orka-media-bridge %s\n", ORKA_VERSION);
        return Ended;
    }
    setLogLevel(options.logLevel);
    captureLibraryLog();
    // Whoever reads the log may end.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGTERM, endAtOnce);
    std::signal(SIGINT, endAtOnce);
    watchLoop();
    keepHeapSmall();
    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    const int status = serve(options, loop);
    g_main_loop_unref(loop);
    return status;
}

} // namespace

} // namespace bridge

int main(int argc, char **argv)
{
    occupyStandardDescriptors();
    return bridge::run(argc, argv);
}
