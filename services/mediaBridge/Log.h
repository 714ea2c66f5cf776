#pragma once

#include <string>

namespace bridge {

enum class LogLevel { Warning, Info, Debug };

/// Lines above this level are not written. Warning is what a service says unasked.
void setLogLevel(LogLevel level);
bool isLogged(LogLevel level);

/// One line on standard error, from any thread. Texts from the network may be part of it: what
/// isn't plain text becomes "?", and what is longer than 1,000 bytes is cut.
void logLine(LogLevel level, const std::string &text);
inline void logWarning(const std::string &text)
{
    logLine(LogLevel::Warning, text);
}
inline void logInfo(const std::string &text)
{
    logLine(LogLevel::Info, text);
}
inline void logDebug(const std::string &text)
{
    logLine(LogLevel::Debug, text);
}

/// Shows the libraries' warnings as ours, ten a minute and the others with Debug, so that a
/// careless device doesn't fill the log.
void captureLibraryLog();

} // namespace bridge
