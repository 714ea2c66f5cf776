#pragma once

#include <QString>
#include <QStringList>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

/// Where global options that the command line leaves open get their value: from the environment
/// (ORKA_WAIT for --wait), else from a file of lines like "wait = 10".
class Settings : public CLI::ConfigBase
{
public:
    /// Reads $XDG_CONFIG_HOME/orka/orka.conf while the parser works, or the file that --config
    /// names. All global options have to be declared before.
    static std::shared_ptr<const Settings> install(CLI::App &app);

    std::vector<CLI::ConfigItem> from_config(std::istream &file) const override;

    /// What is wrong with the file as a whole; empty where nothing is.
    QString problem() const { return m_problem; }
    /// Where the option was set that the parser complains of, in brackets; empty where that is the
    /// command line.
    QString originOf(const std::string &complaint) const;
    /// "wait 10 (ORKA_WAIT)" or "wait (command line)", one for each option that isn't as it is by
    /// default.
    QStringList list() const;

private:
    struct Origin
    {
        QString value;
        /// A variable or a file.
        QString place;
    };

    explicit Settings(CLI::App &app);
    std::vector<CLI::ConfigItem> entriesOf(std::istream &file, const QString &fileName) const;
    void addEnvironment(std::vector<CLI::ConfigItem> &entries) const;
    /// Whether the option was left open until now.
    bool take(const CLI::ConfigItem &item, const QString &place) const;
    QString problemOf(const CLI::ConfigItem &item) const;

    CLI::App &m_app;
    // The parser calls from_config(), a const function, once.
    mutable std::map<std::string, Origin> m_origins;
    mutable QString m_problem;
};
