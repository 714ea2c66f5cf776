#pragma once

#include "GlobalOptions.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <vector>

/// One command of the command line: declares its own options on the parser and does its work when
/// it was the one chosen.
class Command
{
public:
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    bool isChosen() const { return m_parser->parsed(); }
    /// Returns the status that the program ends with; throws Failure or InterruptedBySignal.
    virtual int run(const GlobalOptions &options) = 0;

protected:
    /// `example` is shown below the help text.
    Command(CLI::App &app, const char *name, const char *description, const char *example);

    CLI::App &parser() { return *m_parser; }
    CLI::Option *addText(const char *name, QString &target, const char *help, const char *type);
    CLI::Option *addPlace(QString &target);
    void addPlaces(QStringList &target);
    void addRows(QString &target, const char *help);

private:
    CLI::App *m_parser;
};

using CommandPointer = std::unique_ptr<Command>;

CommandPointer makeServers(CLI::App &app);
CommandPointer makeLs(CLI::App &app);
CommandPointer makeInfo(CLI::App &app);
CommandPointer makeMenu(CLI::App &app);
CommandPointer makeSearch(CLI::App &app);
CommandPointer makeSample(CLI::App &app);
CommandPointer makeQueue(CLI::App &app);
CommandPointer makePlay(CLI::App &app);
CommandPointer makeServe(CLI::App &app);
CommandPointer makeRows(CLI::App &app);
CommandPointer makeData(CLI::App &app);
CommandPointer makeSet(CLI::App &app);
CommandPointer makeDoctor(CLI::App &app);
CommandPointer makeStop(CLI::App &app);
CommandPointer makeComplete(CLI::App &app);

/// All of them, in the order in which help lists them.
std::vector<CommandPointer> makeCommands(CLI::App &app);
