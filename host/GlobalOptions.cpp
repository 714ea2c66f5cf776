#include "GlobalOptions.h"

#include "Text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <regex>

namespace {

constexpr char bracketMark = '\x01';
constexpr double longest = 86400; // seconds

using Milliseconds = std::chrono::milliseconds;

CLI::Option *addText(
    CLI::App &app, const char *name, QString &target, const char *help, const char *type)
{
    return app
        .add_option_function<std::string>(
            name, [&target](const std::string &text) { target = argument(text); }, help)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

/// What the parser says of a prefix: nothing where it is one.
std::string isPrefix(const std::string &text)
{
    static const std::regex letters("[A-Za-z0-9._-]+");
    return std::regex_match(text, letters)
        ? std::string()
        : Text::tr("is made of letters, digits, \".\", \"_\" and \"-\"").toStdString();
}

void addSeconds(CLI::App &app, const char *name, Milliseconds &target, const char *help,
    bool *isNamed = nullptr)
{
    app.add_option_function<std::string>(
           name,
           [&target, name, isNamed](const std::string &text) {
               bool isNumber = false;
               const double seconds = argument(text).toDouble(&isNumber);
               if (!isNumber || !(seconds >= 0 && seconds <= longest)) { // nan is a number, too
                   throw CLI::ValidationError(
                       name, Text::tr("is a number of seconds from 0 to 86400").toStdString());
               }
               target = Milliseconds(qRound64(seconds * 1000));
               if (isNamed != nullptr)
                   *isNamed = true;
           },
           help)
        ->type_name("SECONDS")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

} // namespace

void addGlobalOptions(CLI::App &app, GlobalOptions &options)
{
    addText(app, "--plugin", options.plugin,
        Text::mark("The worker's library; this installation's where none is\nnamed"), "FILE");
    addText(app, "--prefix", options.prefix,
        Text::mark("First part of the worker's node paths (upnp)"), "NAME")
        ->check(CLI::Validator(isPrefix, "", "prefix"));
    addText(app, "--service-id", options.serviceId,
        Text::mark("Service id that the worker puts into its rows"), "ID");
    addText(app, "--bus", options.bus,
        Text::mark("session (the default), system or a D-Bus address"), "session|system|ADDRESS");
    app.add_option_function<std::string>(
           "--media-service",
           [&options](const std::string &word) {
               options.mediaService = word == "session" ? MediaServiceSource::Session
                   : word == "bridge"                   ? MediaServiceSource::Bridge
                                                        : MediaServiceSource::Auto;
           },
           Text::mark("session: the one on the bus; bridge: a bridge of our own,\n"
                      "on a private bus where there is no session bus;\n"
                      "auto (the default): the first, else the second"))
        ->type_name("auto|session|bridge")
        ->check(oneOf({"auto", "session", "bridge"}))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    addText(app, "--bridge", options.bridge,
        Text::mark("The bridge's program; this installation's where none is\nnamed"), "FILE");
    app.add_option_function<std::vector<std::string>>(
           "--server,--servers",
           [&options](const std::vector<std::string> &texts) {
               for (const std::string &text : texts)
                   options.servers.append(argument(text));
           },
           Text::mark("Where a media server is that doesn't show up by itself:\nhost, host:port or "
                      "the URL of "
                      "its description; may be\ngiven several times"))
        ->type_name("ADDRESS")
        ->allow_extra_args(false);
    addSeconds(app, "--linger", options.linger,
        Text::mark("How long a bridge that was started stays without a client\n"
                   "(600); 0: it ends with the command"));
    addSeconds(app, "--wait", options.wait,
        Text::mark("How long a media server may take to show up (5)"), &options.waitIsNamed);
    addSeconds(app, "--timeout", options.timeout, Text::mark("How long an answer may take (30)"));
    app.add_flag("--json", options.json, Text::mark("Print one JSON document on standard output"));
    addText(
        app, "--log-config", options.logConfig, Text::mark("A log4cplus properties file"), "FILE");
    app.add_flag("-v,--verbose", options.verbosity,
        Text::mark("Log to standard error: -v what happens, -vv details,\n-vvv everything"));
}

std::function<std::string(const std::string &)> oneOf(const std::vector<std::string> &words)
{
    return [words](const std::string &text) {
        const bool isOne = std::find(words.begin(), words.end(), text) != words.end();
        const QString all = QString::fromStdString(CLI::detail::join(words, ", "));
        return isOne ? std::string() : Text::tr("is one of %1").arg(all).toStdString();
    };
}

QString argument(const std::string &text)
{
    const bool marked = !text.empty() && text.front() == bracketMark;
    return QString::fromUtf8(text.data() + (marked ? 1 : 0), int(text.size()) - (marked ? 1 : 0));
}

std::string protectBrackets(const char *text)
{
    const std::string copy = text;
    const bool bracketed = copy.size() > 1 && copy.front() == '[' && copy.back() == ']';
    return bracketed || copy.compare(0, 1, &bracketMark, 1) == 0 ? bracketMark + copy : copy;
}
