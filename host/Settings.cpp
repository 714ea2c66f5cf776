#include "Settings.h"

#include "ServerAddress.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <sstream>

namespace {

const std::string noFile = "/dev/null";
constexpr std::size_t longestFile = 1'000'000; // bytes
/// A list whose bracket isn't closed takes in all that follows, and so this entry, too.
const std::string lastEntry = "\x01";

QString usersFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/orka/orka.conf");
}

/// "ORKA_MEDIA_SERVICE" for "media-service".
std::string variableOf(std::string name)
{
    for (char &letter : name)
        letter = letter == '-' ? '_' : char(std::toupper(static_cast<unsigned char>(letter)));
    return "ORKA_" + name;
}

bool takesSeveral(const CLI::Option &option)
{
    return option.get_items_expected_max() > 1;
}

/// What the file holds, a little more than `longestFile` at most, without an editor's byte order
/// mark.
std::string textOf(std::istream &file)
{
    std::string text;
    std::array<char, 4096> piece;
    while (text.size() <= longestFile && file) {
        file.read(piece.data(), std::streamsize(piece.size()));
        text.append(piece.data(), std::size_t(file.gcount()));
    }
    return text.compare(0, 3, "\xef\xbb\xbf") == 0 ? text.substr(3) : text;
}

/// One text, or the words of it for an option that takes several.
std::vector<std::string> valuesOf(const CLI::Option &option, const std::string &text)
{
    return takesSeveral(option) ? CLI::detail::split(text, ' ') : std::vector<std::string>{text};
}

} // namespace

Settings::Settings(CLI::App &app)
    : m_app(app)
{
}

std::shared_ptr<const Settings> Settings::install(CLI::App &app)
{
    const std::shared_ptr<Settings> settings(new Settings(app));
    const QFileInfo file(usersFile());
    if (file.exists() && !(file.isFile() && file.isReadable())) {
        settings->m_problem =
            Text::tr("The configuration file %1 can't be read. Give yourself the right to "
                     "read it, or remove it.")
                .arg(quoted(file.filePath()));
    }
    app.config_formatter(settings);
    // The environment is asked where there is no file, too.
    app.set_config("--config", file.isFile() ? file.filePath().toStdString() : noFile,
           Text::mark("Global options, one a line; orka/orka.conf in\n$XDG_CONFIG_HOME where none "
                      "is named"))
        ->type_name("FILE");
    return settings;
}

bool Settings::take(const CLI::ConfigItem &item, const QString &place) const
{
    const QString value = QString::fromStdString(CLI::detail::join(item.inputs, " "));
    return m_app.get_option("--" + item.name)->count() == 0
        && m_origins.emplace(item.name, Origin{value, place}).second;
}

void Settings::addEnvironment(std::vector<CLI::ConfigItem> &entries) const
{
    const CLI::App &app = m_app;
    for (const CLI::Option *option : app.get_options()) {
        if (option->get_lnames().empty() || !option->get_configurable())
            continue;
        for (const std::string &name : option->get_lnames()) {
            const std::string variable = variableOf(name);
            const QByteArray text = qgetenv(variable.c_str());
            const CLI::ConfigItem item{
                {}, option->get_lnames().front(), valuesOf(*option, text.toStdString())};
            if (!text.isEmpty() && take(item, QString::fromStdString(variable)))
                entries.push_back(item);
        }
    }
}

/// Why an entry (%1) of the file (%2) can't be taken; empty where it can.
QString Settings::problemOf(const CLI::ConfigItem &item) const
{
    const CLI::Option *const option =
        item.parents.empty() ? m_app.get_option_no_throw("--" + item.name) : nullptr;
    if (option == nullptr || !option->get_configurable()) {
        return Text::tr(
            "The entry %1 in %2 is no global option; \"orka --help\" lists them, and they stand "
            "there without --.");
    }
    if (item.inputs.empty())
        return Text::tr("The entry %1 in %2 has no value.");
    if (item.inputs.size() > 1 && !takesSeveral(*option))
        return Text::tr(
            "The entry %1 in %2 has several values; put a text with spaces into double quotes.");
    return {};
}

/// What stands in the file; where that can't be told, nothing, and there is a problem.
std::vector<CLI::ConfigItem> Settings::entriesOf(std::istream &file, const QString &fileName) const
{
    const std::string text = textOf(file);
    if (text.size() > longestFile) {
        m_problem = Text::tr("The configuration file %1 takes more than 1 MB, which is more than "
                             "is read. Shorten it.")
                        .arg(quoted(fileName));
        return {};
    }
    std::istringstream lines(text + '\n' + lastEntry + " = 1\n");
    std::vector<CLI::ConfigItem> entries = CLI::ConfigBase::from_config(lines);
    const auto last = std::find_if(entries.begin(), entries.end(),
        [](const CLI::ConfigItem &item) { return item.name == lastEntry; });
    if (last == entries.end()) {
        m_problem =
            Text::tr("A list in the configuration file %1 has no end. Close it with a bracket.")
                .arg(quoted(fileName));
        return {};
    }
    entries.erase(last);
    return entries;
}

std::vector<CLI::ConfigItem> Settings::from_config(std::istream &file) const
{
    CLI::Option *const fileOption = m_app.get_config_ptr();
    const QString fileName = QString::fromStdString(fileOption->as<std::string>());
    fileOption->default_str(""); // help would show it
    std::vector<CLI::ConfigItem> entries;
    addEnvironment(entries);
    for (CLI::ConfigItem &item : entriesOf(file, fileName)) {
        if (item.name == "++" || item.name == "--")
            continue; // where a section begins and ends
        const QString problem = problemOf(item);
        if (problem.isEmpty()) // one name for an option that has several
            item.name = m_app.get_option("--" + item.name)->get_lnames().front();
        if (!problem.isEmpty()) {
            m_problem =
                problem.arg(quoted(QString::fromStdString(item.fullname())), quoted(fileName));
        } else if (take(item, fileName)) {
            entries.push_back(item);
        }
    }
    return entries;
}

QString Settings::originOf(const std::string &complaint) const
{
    for (const auto &[name, origin] : m_origins) {
        if (complaint.find("--" + name) != std::string::npos)
            return Text::tr(" (set by %1)").arg(origin.place);
    }
    return {};
}

QStringList Settings::list() const
{
    QStringList list;
    const CLI::App &app = m_app;
    for (const CLI::Option *option : app.get_options()) {
        if (option->count() == 0 || !option->get_configurable())
            continue;
        const std::string name = option->get_single_name();
        const auto origin = m_origins.find(name);
        const QString text = QString::fromStdString(name);
        list.append(origin == m_origins.end()
                ? Text::tr("%1 (command line)").arg(text)
                : QStringLiteral("%1 %2 (%3)")
                      .arg(text,
                          QString::fromStdString(
                              bridge::withoutPassword(origin->second.value.toStdString())),
                          origin->second.place));
    }
    return list;
}
