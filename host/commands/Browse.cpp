#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"
#include "commands/Answer.h"
#include "commands/Command.h"
#include "commands/ServerNotes.h"
#include "output/Output.h"
#include "output/TreeOutput.h"
#include "tree/ArrangedRows.h"
#include "tree/ContentWatch.h"
#include "tree/NodeKind.h"
#include "tree/PlaceResolver.h"
#include "tree/RowPages.h"
#include "tree/RowRange.h"
#include "tree/SamplePages.h"
#include "tree/SearchKinds.h"
#include "tree/ServerList.h"
#include "tree/TrackNumbers.h"
#include "tree/TreeWalk.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

constexpr int mostProblems = 10;
constexpr int usualDepth = 3;

class Ls : public Command
{
public:
    explicit Ls(CLI::App &app)
        : Command(app, "ls",
            Text::mark(
                "The children of a media server or folder; the servers\nwhere none is named"),
            Text::mark("orka ls \"My NAS/Music/All Music\" --rows 0-19\n  orka ls -R --depth 2 "
                       "\"My NAS\""))
    {
        addPlace(m_place)->required(false);
        addRows(m_rows, Text::mark("First and last row, counted from 0 (all)"));
        parser()
            .add_option_function<std::string>(
                "--sort", [this](const std::string &text) { m_key = sortKeys().at(text); },
                Text::mark(
                    "Read all, then sort by this; titles as your language\n"
                    "does, what has no date or length last. --rows are those\nof the sorted list"))
            ->type_name("title|artist|album|date|track|length")
            ->check(oneOf({"title", "artist", "album", "date", "track", "length"}));
        parser()
            .add_option("--kind", m_kinds, Text::mark("Only these; more than one with commas"))
            ->type_name("folder|track|video|image|item")
            ->delimiter(',')
            ->allow_extra_args(false)
            ->check(oneOf({"folder", "track", "video", "image", "item"}));
        parser().add_flag("-l,--long", m_isLong,
            Text::mark("Genre, date, format, bit rate and path of each, too"));
        parser().add_flag("-R,--recursive", m_recursive, Text::mark("A tree of what is below"));
        parser()
            .add_option("--depth", m_depth, Text::mark("How many levels of it (3)"))
            ->type_name("N")
            ->check(CLI::Range(1, 100).description(""));
    }

    int run(const GlobalOptions &options) override
    {
        const RowRange range = m_rows.isNull() ? RowRange() : parseRowRange(m_rows);
        if (m_recursive
            && (m_key != SortKey::Given || !m_kinds.empty() || !m_rows.isNull() || m_isLong)) {
            throw wrongUsage(Text::tr("A tree shows everything as the server orders it. Leave "
                                      "--sort, --kind, --rows and --long out, or -R."));
        }
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath path = PlaceResolver(session).resolve(place, PlaceResolver::Folder);
        ServerNotes notes(session, path);
        return m_recursive ? writeTree(session, path, notes)
                           : writeRows(session, path, range, notes);
    }

private:
    static std::map<std::string, SortKey> sortKeys()
    {
        return {{"title", SortKey::Title}, {"artist", SortKey::Artist}, {"album", SortKey::Album},
            {"date", SortKey::Date}, {"track", SortKey::Track}, {"length", SortKey::Length}};
    }

    int writeRows(Session &session, const CMPath &path, RowRange range, ServerNotes &notes) const
    {
        QSet<QString> kinds;
        for (const std::string &kind : m_kinds)
            kinds.insert(QString::fromStdString(kind));
        const RowRange read = m_key == SortKey::Given ? range : RowRange();
        QHash<int, int> tracks;
        if (m_key == SortKey::Track)
            tracks = trackNumbers(session, path, read);
        const ContentWatch watch(session, path);
        RowPages pages(session, path, read, OrkaRoles::all());
        ArrangedRows rows(pages, range, m_key, kinds, [&](int row) { return tracks.value(row); });
        return writeRowsOf(session.options(), path, rows, watch, range.first, 1, m_isLong, &notes);
    }

    int writeTree(Session &session, const CMPath &path, ServerNotes &notes) const
    {
        TreeOutput output(session.options().json, path);
        QStringList problems;
        const ContentWatch watch(session, path);
        TreeWalk tree(
            session, m_depth == 0 ? usualDepth : m_depth,
            [&](const OrkaRoles &row, int depth) { output.add(row, depth); },
            [&](const QString &problem) { problems.append(problem); });
        tree.walk(path);
        const QString change = watch.change();
        if (!change.isEmpty())
            problems.append(change);
        const CMError lacking = notes.lacking();
        output.end(problems.isEmpty() ? lacking : incompleteError(problems));
        if (m_depth == 0 && tree.unopened() > 0) {
            tell(Text::tr(
                "The tree ends at level %1, with %Ln folders that were not opened. --depth "
                "shows more levels.",
                nullptr, tree.unopened())
                     .arg(usualDepth));
        }
        const int status = notes.tell();
        if (problems.isEmpty())
            return status;
        tell(Text::tr("The tree is incomplete:\n  %1")
                 .arg(problems.mid(0, mostProblems).join(QStringLiteral("\n  "))));
        return AnsweredWithError;
    }

    QString m_place = QStringLiteral("/");
    QString m_rows;
    SortKey m_key = SortKey::Given;
    std::vector<std::string> m_kinds;
    bool m_isLong = false;
    bool m_recursive = false;
    int m_depth = 0; // as usual
};

class Info : public Command
{
public:
    explicit Info(CLI::App &app)
        : Command(app, "info", Text::mark("Everything that is known about one node"),
            Text::mark("orka info \"My NAS/Music/Albums/Blue/01 First Song\""))
    {
        addPlace(m_place);
    }

    int run(const GlobalOptions &options) override
    {
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath path = PlaceResolver(session).resolve(place);
        writeAnswer(options, path, session.data(path, OrkaRoles::all()));
        return Answered;
    }

private:
    QString m_place;
};

class Menu : public Command
{
public:
    explicit Menu(CLI::App &app)
        : Command(app, "menu", Text::mark("The search menu of a node, or its context menu"),
            Text::mark("orka menu \"My NAS\"\n  orka menu --context \"My NAS/Music/Albums/Blue\""))
    {
        addPlace(m_place);
        parser().add_flag(
            "--context", m_context, Text::mark("What can be done with the node: play, queue"));
    }

    int run(const GlobalOptions &options) override
    {
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath path = PlaceResolver(session).resolve(place);
        const CMPath menu = m_context ? contextMenu(session, path) : searchMenu(path);
        const Rows rows = readRows(session, menu, {}, OrkaRoles::all());
        ServerNotes notes(session, m_context ? menu : path);
        const QString unknown =
            rows.rows.isEmpty() && !m_context ? searchUnknown(session, path) : QString();
        writeAnswer(options, menu, rows, 0,
            unknown.isEmpty() ? notes.lacking() : incompleteError({unknown}));
        if (unknown.isEmpty())
            return notes.tell();
        tell(unknown);
        return AnsweredWithError;
    }

private:
    static CMPath searchMenu(const CMPath &path)
    {
        return path.withoutParams().addParam(QStringLiteral("search"), QStringLiteral("menu"));
    }

    static CMPath contextMenu(Session &session, const CMPath &path)
    {
        return session.path(QStringLiteral("context"))
            .addParam(QStringLiteral("path"), withKind(session, path).toEncoded());
    }

    QString m_place;
    bool m_context = false;
};

class Sample : public Command
{
public:
    explicit Sample(CLI::App &app)
        : Command(app, "sample", Text::mark("Rows spread over a big folder"),
            Text::mark("orka sample \"My NAS/Music/All Music\" 0,9999,100"))
    {
        addPlace(m_place);
        addText("SAMPLE", m_sample,
            Text::mark("START,END,STEP: first position, last position\n(inclusive), distance of at "
                       "least 1"),
            "")
            ->required();
        addRows(m_rows,
            Text::mark("Rows of the sample, counted from 0; at most B+1 rows are\nanswered"));
    }

    int run(const GlobalOptions &options) override
    {
        const SampleRange sample = parseSampleRange(m_sample);
        const RowRange range =
            m_rows.isNull() ? RowRange{0, sample.positions() - 1} : parseRowRange(m_rows);
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath folder = PlaceResolver(session).resolve(place, PlaceResolver::Folder);
        ServerNotes notes(session, folder);
        // A worker counts the rows of a sample from its start.
        const ContentWatch watch(session, folder);
        SamplePages pages(session, folder, sample, range.isOpen() ? range.last : range.last + 1);
        return writeRowsOf(
            options, pages.path(), pages, watch, sample.start, sample.step, false, &notes);
    }

private:
    QString m_place;
    QString m_sample;
    QString m_rows;
};

} // namespace

CommandPointer makeLs(CLI::App &app)
{
    return std::make_unique<Ls>(app);
}

CommandPointer makeInfo(CLI::App &app)
{
    return std::make_unique<Info>(app);
}

CommandPointer makeMenu(CLI::App &app)
{
    return std::make_unique<Menu>(app);
}

CommandPointer makeSample(CLI::App &app)
{
    return std::make_unique<Sample>(app);
}
