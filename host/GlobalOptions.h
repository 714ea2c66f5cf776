#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Where the media service comes from.
enum class MediaServiceSource {
    /// What is on the bus or can be activated there, else our bridge.
    Auto,
    Session,
    Bridge
};

/// The options that every command has.
struct GlobalOptions
{
    /// Empty: the plug-in beside the program.
    QString plugin;
    /// Empty: the bridge beside the program, or the one on PATH.
    QString bridge;
    QString prefix = QStringLiteral("upnp");
    QString serviceId;
    /// "session", "system" or a D-Bus address.
    QString bus = QStringLiteral("session");
    MediaServiceSource mediaService = MediaServiceSource::Auto;
    /// Addresses of media servers.
    QStringList servers;
    /// Whether those that the user keeps are looked at, too.
    bool usesKept = true;
    /// How long a media server may take to show up.
    std::chrono::milliseconds wait = std::chrono::seconds(5);
    /// Whether somebody named that time: then a server may take all of it, else no longer than it
    /// takes to know all servers that are there.
    bool waitIsNamed = false;
    /// How long an answer may take.
    std::chrono::milliseconds timeout = std::chrono::seconds(30);
    /// How long a bridge that was started stays without a client; 0: it ends with the command.
    std::chrono::milliseconds linger = std::chrono::minutes(10);
    /// False: what isn't there isn't started.
    bool mayStartService = true;
    bool json = false;
    /// Empty: `verbosity` decides.
    QString logConfig;
    /// 0 none, 1 INFO, 2 DEBUG, 3 and more TRACE.
    int verbosity = 0;
    /// What isn't as it is by default and where it was set, for people.
    QStringList settings;

    /// Whether a bridge that is started stays for later commands: one that logs to our standard
    /// error, or is on a bus that was named, doesn't.
    bool serviceStays() const
    {
        return linger.count() > 0 && verbosity == 0 && bus == QLatin1String("session");
    }
};

/// Declares the options on the parser; `options` is filled while it parses.
void addGlobalOptions(CLI::App &app, GlobalOptions &options);

/// For options that take one of a few words: what the parser says of another one.
std::function<std::string(const std::string &)> oneOf(const std::vector<std::string> &words);

/// A text of the command line, UTF-8.
QString argument(const std::string &text);

/// The parser takes an argument in square brackets apart as a list of its own. This marks such an
/// argument, so that "[Unknown]" arrives as it is; argument() takes the mark away again.
std::string protectBrackets(const char *text);
