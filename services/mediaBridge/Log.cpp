#include "Log.h"

#include <atomic>
#include <cstdio>
#include <glib.h>
#include <poll.h>
#include <unistd.h>

namespace bridge {

namespace {

std::atomic<LogLevel> highestLevel{LogLevel::Warning};

constexpr size_t longestLine = 1000;
// What a stranger's packets may make the libraries say.
constexpr unsigned libraryWarningsInAMinute = 10;

/// Nothing that a terminal or a reader of the log takes for anything but text of this line: no
/// breaks, no escapes, no change of direction.
bool isPlain(gunichar character)
{
    const GUnicodeType type = g_unichar_type(character);
    return type != G_UNICODE_CONTROL && type != G_UNICODE_FORMAT && type != G_UNICODE_LINE_SEPARATOR
        && type != G_UNICODE_PARAGRAPH_SEPARATOR;
}

std::string plainLine(std::string_view text)
{
    const std::string_view start = text.substr(0, longestLine);
    char *valid = g_utf8_make_valid(start.data(), static_cast<gssize>(start.size()));
    std::string line;
    for (const char *at = valid; *at != '\0'; at = g_utf8_next_char(at)) {
        if (isPlain(g_utf8_get_char(at)))
            line.append(at, static_cast<size_t>(g_utf8_next_char(at) - at));
        else
            line += '?';
    }
    g_free(valid);
    return text.size() > longestLine ? line + "…" : line;
}

/// Whether a line can be written without waiting for whoever reads the log.
bool hasRoom()
{
    pollfd log{STDERR_FILENO, POLLOUT, 0};
    return poll(&log, 1, 0) != 0;
}

/// Warnings of the libraries are shown, some a minute.
LogLevel levelOfLibraryLine(GLogLevelFlags level)
{
    static std::atomic<gint64> minute{0};
    static std::atomic<unsigned> shown{0};
    const gint64 now = g_get_monotonic_time() / (gint64{60} * G_USEC_PER_SEC);
    if (minute.exchange(now) != now)
        shown = 0;
    const bool isWarning = (level & G_LOG_LEVEL_WARNING) != 0;
    return isWarning && shown++ < libraryWarningsInAMinute ? LogLevel::Warning : LogLevel::Debug;
}

GLogWriterOutput writeLibraryLine(
    GLogLevelFlags level, const GLogField *fields, gsize count, gpointer)
{
    // A CRITICAL is a fault of this program and is shown whatever the level.
    if ((level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL)) != 0)
        return g_log_writer_standard_streams(level, fields, count, nullptr);
    if ((level & (G_LOG_LEVEL_DEBUG | G_LOG_LEVEL_INFO)) != 0)
        return G_LOG_WRITER_HANDLED;
    for (gsize i = 0; i < count; ++i) {
        if (g_str_equal(fields[i].key, "MESSAGE"))
            logLine(levelOfLibraryLine(level), static_cast<const char *>(fields[i].value));
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
    if (!isLogged(level) || !hasRoom())
        return;
    const std::string line = std::string("orka-media-bridge: ") + names[static_cast<int>(level)]
        + ": " + plainLine(text) + "\n";
    std::fputs(line.c_str(), stderr);
}

void captureLibraryLog()
{
    g_log_set_writer_func(writeLibraryLine, nullptr, nullptr);
}

} // namespace bridge
