#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"
#include "commands/Answer.h"
#include "commands/Command.h"
#include "commands/ServerNotes.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/TextOutput.h"
#include "tree/Place.h"
#include "tree/RowsReader.h"
#include "tree/ServerList.h"

namespace {

/// The roles that a comma-separated list names; every role where none is named.
QStringList rolesOf(const QString &list)
{
    return list.isNull() ? OrkaRoles::all() : list.split(QLatin1Char(','));
}

/// The paths inside a request, whose media servers it needs: the node's own, one in its parameter
/// "path" and those that the value lists.
QVector<CMPath> pathsOf(const CMPath &path, const QVariant &value = QVariant())
{
    QVector<CMPath> paths{path, CMPath::fromEncoded(path.param(QStringLiteral("path")))};
    for (const QVariant &entry : value.toList())
        paths.append(CMPath::fromEncoded(entry.toString()));
    QVector<CMPath> ofServers;
    for (const CMPath &candidate : qAsConst(paths)) {
        const bool inTree = candidate.base().isEmpty()
            ? !candidate.prefix().isEmpty()
            : candidate.base().startsWith(QLatin1Char('/'));
        if (inTree && candidate.prefix() == path.prefix())
            ofServers.append(candidate);
    }
    return ofServers;
}

/// The request goes out whatever has shown up.
void waitForServers(Session &session, const QVector<CMPath> &paths)
{
    if (paths.isEmpty())
        return;
    try {
        ServerList(session).waitForServersOf(paths);
    } catch (const Failure &) {
        // A worker that lists nothing at its root may answer below it all the same.
    }
}

/// One request to one node, of a path that isn't looked at.
class Request : public Command
{
protected:
    Request(CLI::App &app, const char *name, const char *description, const char *example)
        : Command(app, name, description, example)
    {
        addText("PATH", m_path, Text::mark("A node path, encoded"), "")->required();
    }
    void addRoles(QString &target)
    {
        addText("--roles", target,
            Text::mark("Roles, comma-separated; every role where none is named"), "a,b");
    }
    CMPath path() const { return parsePath(m_path); }

private:
    QString m_path;
};

class RowsRequest : public Request
{
public:
    explicit RowsRequest(CLI::App &app)
        : Request(app, "rows", Text::mark("One rows request as it is"),
            "orka --json rows upnp:/uuid:4d69/64 --first 0 --last 9 --roles path,title")
    {
        parser().add_option("--first", m_first, Text::mark("First row, counted from 0 (0)"));
        parser().add_option("--last", m_last, Text::mark("Last row, inclusive (19)"));
        addRoles(m_roles);
    }

    int run(const GlobalOptions &options) override
    {
        const CMPath path = this->path();
        if (m_first < 0 || m_last < m_first) {
            throw wrongUsage(Text::tr("There are no rows from %1 to %2. Count from 0 and write "
                                      "the smaller number as --first.")
                                 .arg(QString::number(m_first), QString::number(m_last)));
        }
        Session session(options);
        waitForServers(session, pathsOf(path));
        const Rows rows = readRowsAtOnce(session, path, {m_first, m_last}, rolesOf(m_roles));
        ServerNotes notes(session, path);
        writeAnswer(options, path, rows, m_first, notes.lacking());
        return notes.tell();
    }

private:
    int m_first = 0;
    int m_last = 19;
    QString m_roles;
};

class DataRequest : public Request
{
public:
    explicit DataRequest(CLI::App &app)
        : Request(app, "data", Text::mark("One data request as it is"),
            "orka --json data upnp:/uuid:4d69/64 --roles title,mediaData")
    {
        addRoles(m_roles);
    }

    int run(const GlobalOptions &options) override
    {
        const CMPath path = this->path();
        Session session(options);
        waitForServers(session, pathsOf(path));
        writeAnswer(options, path, session.data(path, rolesOf(m_roles)));
        return Answered;
    }

private:
    QString m_roles;
};

class SetRequest : public Request
{
public:
    explicit SetRequest(CLI::App &app)
        : Request(app, "set", Text::mark("One set-data request as it is"),
            "orka set \"upnp:/uuid:4d69?search=artist\" '{\"string_\":\"abba\"}'\n"
            "  orka set upnp:playlist/prepareItems '[\"upnp:/uuid:4d69/64?itemType=track\"]'")
    {
        addText(
            "JSON", m_value, Text::mark("The value: an object becomes a hash, an array a list"), "")
            ->required();
    }

    int run(const GlobalOptions &options) override
    {
        const CMPath path = this->path();
        const QVariant value = valueFromJson(m_value);
        Session session(options);
        waitForServers(session, pathsOf(path, value));
        const QVariant answer = session.set(path, value, Text::tr("Waiting for the answer"));
        if (options.json) {
            writeJson(valueDocument(answer));
        } else {
            writeValue(answer);
        }
        return Answered;
    }

private:
    QString m_value;
};

} // namespace

CommandPointer makeRows(CLI::App &app)
{
    return std::make_unique<RowsRequest>(app);
}

CommandPointer makeData(CLI::App &app)
{
    return std::make_unique<DataRequest>(app);
}

CommandPointer makeSet(CLI::App &app)
{
    return std::make_unique<SetRequest>(app);
}
