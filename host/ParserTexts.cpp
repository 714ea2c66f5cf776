#include "ParserTexts.h"

#include "KnownSentences.h"
#include "Text.h"

#include <QRegularExpression>

#include <CLI/CLI.hpp>
#include <memory>

namespace {

constexpr const char *helpTexts[] = {Text::mark("Usage"), Text::mark("OPTIONS"),
    Text::mark("Options"), Text::mark("Positionals"), Text::mark("REQUIRED"),
    Text::mark("Print this help message and exit")};
/// What help and mistakes name a value.
constexpr const char *placeholders[] = {Text::mark("ADDRESS"), Text::mark("session|system|ADDRESS"),
    Text::mark("COMMAND"), Text::mark("FILE"), Text::mark("ID"), Text::mark("INT"),
    Text::mark("PATH"), Text::mark("PLACE"), Text::mark("SAMPLE"), Text::mark("SECONDS")};

class HelpFormatter : public CLI::Formatter
{
public:
    std::string make_option_name(const CLI::Option *option, bool isPositional) const override
    {
        const std::string name = CLI::Formatter::make_option_name(option, isPositional);
        return isPositional ? get_label(name) : name;
    }
};

std::string translated(const std::string &text)
{
    return text.empty() ? text : Text::tr(text.c_str()).toStdString();
}

} // namespace

void shapeHelp(CLI::App &app)
{
    const auto formatter = std::make_shared<HelpFormatter>();
    formatter->column_width(24);
    formatter->label("SUBCOMMAND", "COMMAND");
    app.formatter(formatter);
}

void translateHelp(CLI::App &app)
{
    app.description(translated(app.get_description()));
    for (const char *label : helpTexts)
        app.get_formatter()->label(label, translated(label));
    for (const char *label : placeholders)
        app.get_formatter()->label(label, translated(label));
    app.get_formatter()->label("SUBCOMMAND", translated("COMMAND"));
    for (CLI::Option *option : app.get_options()) {
        option->description(translated(option->get_description()));
        option->group(translated(option->get_group()));
    }
    for (CLI::App *command : app.get_subcommands(nullptr))
        translateHelp(*command);
}

QString translatedMistake(const CLI::ParseError &error)
{
    QString sentence = translatedSentence(QString::fromStdString(error.what()));
    if (error.get_name() != "RequiredError" && error.get_name() != "ArgumentMismatch")
        return sentence; // it may hold what somebody wrote
    for (const char *placeholder : placeholders) {
        const QRegularExpression word(
            QStringLiteral("\\b%1\\b").arg(QRegularExpression::escape(QLatin1String(placeholder))));
        sentence.replace(word, Text::tr(placeholder));
    }
    return sentence;
}
