#include "Failure.h"
#include "ShellLine.h"
#include "chain/KeptAddresses.h"
#include "chain/Session.h"
#include "chain/StuckBus.h"
#include "commands/Command.h"
#include "output/Output.h"
#include "tree/PlaceCompletion.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstdlib>

namespace {

/// For all that is asked to complete one word.
constexpr std::chrono::milliseconds enough(1'000);
/// For servers that are still looked for: who types waits for those that are there only.
constexpr std::chrono::milliseconds lookingFor(50);

/// The words among "session|system|ADDRESS", as help shows what an option takes, or the addresses
/// that are kept.
QStringList valuesOf(const CLI::Option &option)
{
    if (option.check_lname("forget")) {
        try {
            return KeptAddresses::read();
        } catch (const Failure &) {
            return {};
        }
    }
    static const QRegularExpression word(QStringLiteral("^[a-z0-9]+$"));
    return QString::fromStdString(option.get_type_name()).split(QLatin1Char('|')).filter(word);
}

/// "--kind" of "--kind=folder": the words of a line that name an option.
std::string nameIn(const std::string &word)
{
    return word.substr(0, word.find('='));
}

/// Where the program stands in the line, behind variables that are set for it.
int programIn(const QStringList &words)
{
    static const QRegularExpression variable(QStringLiteral("^[A-Za-z_]\\w*="));
    int i = 0;
    while (i + 1 < words.size() && variable.match(words.at(i)).hasMatch())
        ++i;
    return i;
}

/// Null for a word that is no option of these.
const CLI::Option *optionOf(const CLI::App &app, const std::string &word)
{
    return word.size() > 1 && word.front() == '-' ? app.get_option_no_throw(word) : nullptr;
}

class Complete : public Command
{
public:
    explicit Complete(CLI::App &app)
        : Command(app, "complete", "What may stand at the end of a line, for shells",
            "orka complete bash 4 'orka ls \"My N'")
        , m_app(app)
    {
        parser().group(""); // not for people
        addText("SHELL", m_shell, "bash, zsh or fish", "")->required();
        addText("BYTES", m_replaced, "How much of the line's end bash replaces", "")->required();
        addText("LINE", m_line, "The line, up to the cursor", "")->required();
    }

    /// Says nothing where it has nothing to say: there is a line that somebody writes.
    int run(const GlobalOptions &options) override
    {
        const QByteArray line = m_line.toUtf8();
        const ShellLine parsed = parseShellLine(line);
        QString text;
        for (const QString &candidate : candidates(parsed, options))
            text += written(candidate, parsed, line) + QLatin1Char('\n');
        writeText(text.toUtf8());
        return 0;
    }

private:
    /// As the shell wants it: bash puts it into the line as it is, for the end that it replaces;
    /// the others quote it themselves.
    QString written(const QString &candidate, const ShellLine &parsed, const QByteArray &line) const
    {
        if (m_shell != QLatin1String("bash"))
            return candidate;
        const int kept = std::max(parsed.start, line.size() - m_replaced.toInt());
        const ShellLine before = parseShellLine(line.left(kept));
        const QString there = kept == parsed.start ? QString() : before.words.last();
        const QString rest = quotedForShell(candidate.mid(there.size()), before.quote);
        const bool goesOn = candidate.endsWith(QLatin1Char('/')) || before.quote != 0;
        return goesOn ? rest : rest + QLatin1Char(' ');
    }

    QStringList candidates(const ShellLine &parsed, const GlobalOptions &options) const
    {
        const CLI::App *command = nullptr;
        const CLI::Option *open = nullptr;
        for (int i = programIn(parsed.words) + 1; i + 1 < parsed.words.size(); ++i) {
            const std::string word = parsed.words.at(i).toStdString();
            if (open != nullptr) {
                open = nullptr; // this is its value
            } else if (const CLI::Option *option = find(command, nameIn(word))) {
                const bool hasValue = word.find('=') != std::string::npos;
                open = option->get_items_expected_min() > 0 && !hasValue ? option : nullptr;
            } else if (command == nullptr) {
                command = commandCalled(word);
                if (command == nullptr)
                    return {};
            }
        }
        const QString &text = parsed.words.last();
        const int sign = open == nullptr ? text.indexOf(QLatin1Char('=')) : -1;
        if (sign > 0)
            open = find(command, nameIn(text.toStdString()));
        if (open != nullptr)
            return values(*open, text, sign + 1);
        if (text.startsWith(QLatin1Char('-')))
            return beginningWith(text, optionNames(command));
        if (command == nullptr)
            return beginningWith(text, commandNames());
        return command->get_option_no_throw("PLACE") != nullptr ? places(text, options)
                                                                : QStringList();
    }

    const CLI::Option *find(const CLI::App *command, const std::string &word) const
    {
        const CLI::Option *own = command == nullptr ? nullptr : optionOf(*command, word);
        return own != nullptr ? own : optionOf(m_app, word);
    }

    const CLI::App *commandCalled(const std::string &name) const
    {
        for (const CLI::App *command : m_app.get_subcommands(nullptr)) {
            if (command->get_name() == name)
                return command;
        }
        return nullptr;
    }

    QStringList commandNames() const
    {
        QStringList names;
        for (const CLI::App *command : m_app.get_subcommands(nullptr)) {
            if (!command->get_group().empty())
                names.append(QString::fromStdString(command->get_name()));
        }
        return names;
    }

    QStringList optionNames(const CLI::App *command) const
    {
        QStringList names;
        for (const CLI::App *app : {command, static_cast<const CLI::App *>(&m_app)}) {
            if (app == nullptr)
                continue;
            for (const CLI::Option *option : app->get_options()) {
                for (const std::string &name : option->get_lnames())
                    names.append(QStringLiteral("--") + QString::fromStdString(name));
            }
        }
        names.removeDuplicates();
        return names;
    }

    /// Behind what of the text isn't the value that is being written: "--kind=folder,".
    static QStringList values(const CLI::Option &option, const QString &text, int start)
    {
        const QChar delimiter = QLatin1Char(option.get_delimiter());
        if (!delimiter.isNull())
            start = std::max(start, text.lastIndexOf(delimiter) + 1);
        QStringList all;
        for (const QString &value : valuesOf(option))
            all.append(text.left(start) + value);
        return beginningWith(text, all);
    }

    static QStringList beginningWith(const QString &text, const QStringList &all)
    {
        QStringList some;
        for (const QString &one : all) {
            if (one.startsWith(text))
                some.append(one);
        }
        return some;
    }

    static QStringList places(const QString &text, GlobalOptions options)
    {
        options.mayStartService = false;
        options.timeout = std::min(options.timeout, enough);
        options.wait = std::min(options.wait, lookingFor);
        try {
            Session session(options);
            return completePlace(session, text);
        } catch (const StuckBus &) {
            std::_Exit(0); // a thread is left in it
        } catch (const Failure &) {
            return {};
        }
    }

    CLI::App &m_app;
    QString m_shell;
    QString m_replaced;
    QString m_line;
};

} // namespace

CommandPointer makeComplete(CLI::App &app)
{
    return std::make_unique<Complete>(app);
}
