#include "commands/Command.h"

#include "Text.h"

#include <QStringList>

Command::Command(CLI::App &app, const char *name, const char *description, const char *example)
    : m_parser(app.add_subcommand(name, description))
{
    m_parser->fallthrough(); // global options may follow the command
    m_parser->group(Text::tr("Commands").toStdString());
    m_parser->footer(
        Text::tr("Example:\n  %1\n\n\"orka --help\" lists the options that every command has.")
            .arg(Text::tr(example))
            .toStdString());
}

CLI::Option *Command::addText(const char *name, QString &target, const char *help, const char *type)
{
    return parser()
        .add_option_function<std::string>(
            name, [&target](const std::string &text) { target = argument(text); }, help)
        ->type_name(type);
}

CLI::Option *Command::addPlace(QString &target)
{
    return addText("PLACE", target,
        Text::mark("A node path (upnp:/uuid:…/64) or titles joined by /\n"
                   "(\"My NAS/Music\"; \\/ for a slash in a title; / alone is\n"
                   "the list of media servers)"),
        "")
        ->required();
}

void Command::addPlaces(QStringList &target)
{
    parser()
        .add_option_function<std::vector<std::string>>(
            "PLACE",
            [&target](const std::vector<std::string> &texts) {
                for (const std::string &text : texts)
                    target.append(argument(text));
            },
            Text::mark(
                "Node paths (upnp:/uuid:…/64) or titles joined by /\n(\"My NAS/Music/Albums\")"))
        ->type_name("")
        ->required();
}

void Command::addRows(QString &target, const char *help)
{
    addText("--rows", target, help, "A-B");
}

std::vector<CommandPointer> makeCommands(CLI::App &app)
{
    std::vector<CommandPointer> commands;
    for (const auto make :
        {makeServers, makeLs, makeInfo, makeMenu, makeSearch, makeSample, makeQueue, makePlay,
            makeServe, makeRows, makeData, makeSet, makeDoctor, makeStop, makeComplete}) {
        commands.push_back(make(app));
    }
    return commands;
}
