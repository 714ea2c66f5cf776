#include "Log.h"

#include <atomic>
#include <cstdio>
#include <glib.h>

namespace bridge {

namespace {

std::atomic<LogLevel> highestLevel{LogLevel::Warning};

GLogWriterOutput writeLibraryLine(
    GLogLevelFlags level, const GLogField *fields, gsize count, gpointer)
{
    // A CRITICAL is a fault of this program and is shown whatever the level.
    if ((level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL)) != 0)
        return g_log_writer_standard_streams(level, fields, count, nullptr);
    if (!isLogged(LogLevel::Debug) || (level & (G_LOG_LEVEL_DEBUG | G_LOG_LEVEL_INFO)) != 0)
        return G_LOG_WRITER_HANDLED;
    for (gsize i = 0; i < count; ++i) {
        if (g_str_equal(fields[i].key, "MESSAGE"))
            logDebug(static_cast<const char *>(fields[i].value));
    }
    return G_LOG_WRITER_HANDLED;
}

} // namespace

void setLogLevel(LogLevel level)
{
    highestLevel = level;
}

bool isLogged(LogLevel level)
{
    return level <= highestLevel;
}

void logLine(LogLevel level, const std::string &text)
{
    static constexpr const char *names[] = {"warning", "info", "debug"};
    if (!isLogged(level))
        return;
    const std::string line =
        std::string("orka-media-bridge: ") + names[static_cast<int>(level)] + ": " + text + "\n";
    std::fputs(line.c_str(), stderr);
}

void captureLibraryLog()
{
    g_log_set_writer_func(writeLibraryLine, nullptr, nullptr);
}

} // namespace bridge
