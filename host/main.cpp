#include "Failure.h"
#include "GlobalOptions.h"
#include "Interrupt.h"
#include "Language.h"
#include "ParserTexts.h"
#include "Settings.h"
#include "StandardStreams.h"
#include "Text.h"
#include "Version.h"
#include "chain/StuckBus.h"
#include "commands/Command.h"
#include "output/JsonOutput.h"
#include "output/Logging.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "output/SafeText.h"
#include "tree/NearestTitles.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTextCodec>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <pwd.h>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char *description =
    Text::mark("Browses, searches and plays UPnP media servers through a media device's worker.");

constexpr const char *exitStatuses =
    Text::mark("Exit status: 0 answered; 1 answered with an error; 2 wrong usage; 3 no media\n"
               "service, no such place or no plug-in; 4 no answer in time; 130 interrupted.\n"
               "\"orka COMMAND --help\" tells more.\n\n"
               "Example:\n  orka ls \"My NAS/Music/Albums\"");

/// What the parser can't place, "orka COMMAND" being what was understood.
QString unknownArgument(const CLI::App &app, const QString &text)
{
    const std::vector<CLI::App *> chosen = app.get_subcommands();
    if (!chosen.empty()) {
        return Text::tr("\"orka %1\" doesn't take %2. \"orka %1 --help\" tells what it takes.")
            .arg(QString::fromStdString(chosen.front()->get_name()), quoted(text));
    }
    NearestTitles nearest(text);
    for (const CLI::App *command : app.get_subcommands(nullptr))
        nearest.add(QString::fromStdString(command->get_name()));
    return Text::tr("There is no command or option %1.%2 \"orka --help\" lists them.")
        .arg(quoted(text), nearest.question());
}

/// What the parser has to say: help on standard output, a mistake on standard error.
int reportParsing(CLI::App &app, const Settings &settings, const CLI::ParseError &error)
{
    if (error.get_name() != "CallForVersion")
        translateHelp(app); // which every other start does without
    std::ostringstream help;
    std::ostringstream mistake;
    const int status = app.exit(error, help, mistake);
    if (status == 0) {
        writeText(QByteArray::fromStdString(help.str()));
        return Answered;
    }
    const std::vector<std::string> unknown = app.remaining(true);
    if (!unknown.empty()) {
        tell(unknownArgument(app, argument(unknown.front())));
    } else if (app.get_subcommands().empty() && error.get_name() == "RequiredError") {
        tell(Text::tr("Name a command, like \"orka servers\"; \"orka --help\" lists them."));
    } else {
        tell(Text::tr("%1\nRun with --help for more information.")
                 .arg(translatedMistake(error) + settings.originOf(mistake.str())));
    }
    return WrongUsage;
}

int report(const Failure &failure, bool json)
{
    tell(failure.sentence());
    const bool isAnswer =
        failure.status() != WrongUsage && failure.error().name() != QLatin1String("output");
    if (json && isAnswer)
        writeJson(errorDocument(failure.error()));
    return failure.status();
}

/// What a service that is replaced may need until the next one is on the bus.
constexpr int replacementMilliseconds = 1'000;

/// Again where the media service left before anything was printed: it may have been stopped, have
/// crashed or be replaced at just that moment.
int runWithAnyService(Command &command, const GlobalOptions &options)
{
    std::optional<Failure> first;
    try {
        return command.run(options);
    } catch (const Failure &failure) {
        if (!failure.isServiceLeft() || isAnythingWritten())
            throw;
        first = failure;
    }
    const QDeadlineTimer deadline(replacementMilliseconds);
    for (;;) {
        try {
            return command.run(options);
        } catch (const Failure &second) {
            if (!second.isServiceMissing())
                throw;
            if (deadline.hasExpired())
                throw Failure(*first); // which is why there is none
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

int run(Command &command, const GlobalOptions &options)
{
    try {
        startLogging(options);
        return runWithAnyService(command, options);
    } catch (const StuckBus &failure) {
        std::_Exit(report(failure, options.json));
    } catch (const Failure &failure) {
        return report(failure, options.json);
    } catch (const ReaderGone &) {
        return Answered;
    } catch (const InterruptedBySignal &interrupt) {
        return interrupt.exitStatus();
    }
}

/// Without HOME, as a service may start us, the user's folders would be taken to be those at "/".
void provideHome()
{
    const passwd *user = qEnvironmentVariableIsEmpty("HOME") ? getpwuid(getuid()) : nullptr;
    if (user != nullptr)
        qputenv("HOME", user->pw_dir);
}

/// Throws Failure where an argument isn't text that a place or a search could be made of.
void requireText(const char *argument)
{
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(argument, int(std::strlen(argument)), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        throw wrongUsage(Text::tr("The argument %1 is not in UTF-8, as every text of this "
                                  "program is. Set the terminal or the script to UTF-8.")
                             .arg(quoted(QString::fromUtf8(argument))));
    }
}

/// "--name=": for the value that isn't there, the parser would take the next word.
bool isOptionWithEmptyValue(const std::string &word)
{
    return word.size() > 3 && word.compare(0, 2, "--") == 0 && word.find('=') == word.size() - 1;
}

/// The arguments in reverse, as the parser wants them.
std::vector<std::string> argumentsOf(int argc, char **argv)
{
    const auto isEndOfOptions = [](const char *word) {
        return std::strcmp(word, "--") == 0;
    };
    const auto options = std::find_if(argv + 1, argv + argc, isEndOfOptions) - argv;
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        requireText(argv[i]);
        arguments.push_back(protectBrackets(argv[i]));
        if (i < options && isOptionWithEmptyValue(arguments.back())) {
            arguments.back().pop_back();
            arguments.insert(arguments.end() - 1, std::string());
        }
    }
    return arguments;
}

int runProgram(int argc, char **argv)
{
    occupyStandardDescriptors();
    provideHome();
    // A reader that has gone, and a file that may not grow, are seen where something is written.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    int applicationArgc = 1; // all others are the parser's
    const QCoreApplication application(applicationArgc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orka"));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    Language::choose();
    Progress::startClock();
    const Interrupt interrupt;

    GlobalOptions options;
    CLI::App app(description, "orka");
    app.footer(Text::tr(exitStatuses).toStdString());
    shapeHelp(app);
    app.set_version_flag(
        "--version", [&options] { return versionText(options.plugin); },
        Text::mark("What this program is and runs with"));
    app.require_subcommand(1);
    addGlobalOptions(app, options);
    const std::shared_ptr<const Settings> settings = Settings::install(app);
    const std::vector<CommandPointer> commands = makeCommands(app);
    try {
        app.parse(argumentsOf(argc, argv));
    } catch (const CLI::ParseError &error) {
        return reportParsing(app, *settings, error);
    }
    if (!settings->problem().isEmpty())
        throw wrongUsage(settings->problem());
    if (options.json)
        Language::becomeEnglish();
    options.settings = settings->list();
    for (const CommandPointer &command : commands) {
        if (command->isChosen())
            return run(*command, options);
    }
    return WrongUsage;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return runProgram(argc, argv);
    } catch (const Failure &failure) {
        return report(failure, false);
    } catch (const ReaderGone &) {
        return Answered;
    } catch (const std::exception &error) { // no memory left, say
        std::fprintf(stderr, "orka: The program can't go on: %s.\n", error.what());
        return AnsweredWithError;
    }
}
