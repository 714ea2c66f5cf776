#include "ParserTexts.h"

#include "Text.h"

#include <api/core/TrString.h>

#include <QRegularExpression>

#include <CLI/CLI.hpp>

namespace {

constexpr const char *helpTexts[] = {Text::mark("Usage"), Text::mark("OPTIONS"),
    Text::mark("Options"), Text::mark("Positionals"), Text::mark("REQUIRED"),
    Text::mark("Print this help message and exit")};

constexpr const char *complaints[] = {Text::mark("%1 is required"),
    Text::mark("%1: %2 required %3 missing"), Text::mark("%1: Value %2 not in range %3 to %4"),
    Text::mark("Could not convert: %1 = %2")};

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

QString translatedComplaint(const QString &complaint)
{
    static const QRegularExpression mark(QStringLiteral("\\\\%\\d"));
    for (const char *known : complaints) {
        const QString pattern =
            QRegularExpression::escape(QLatin1String(known)).replace(mark, QStringLiteral("(.*)"));
        const QRegularExpressionMatch match =
            QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(complaint);
        if (match.hasMatch())
            return TrString("Text", known, match.capturedTexts().mid(1)).toString();
    }
    return complaint;
}
