#include "ParserTexts.h"

#include "Text.h"

#include <CLI/CLI.hpp>

namespace {

constexpr const char *helpTexts[] = {Text::mark("Usage"), Text::mark("OPTIONS"),
    Text::mark("Options"), Text::mark("Positionals"), Text::mark("REQUIRED"),
    Text::mark("Print this help message and exit")};

std::string translated(const std::string &text)
{
    return text.empty() ? text : Text::tr(text.c_str()).toStdString();
}

} // namespace

void translateHelp(CLI::App &app)
{
    app.description(translated(app.get_description()));
    for (const char *label : helpTexts)
        app.get_formatter()->label(label, translated(label));
    for (CLI::Option *option : app.get_options()) {
        option->description(translated(option->get_description()));
        option->group(translated(option->get_group()));
    }
    for (CLI::App *command : app.get_subcommands(nullptr))
        translateHelp(*command);
}
