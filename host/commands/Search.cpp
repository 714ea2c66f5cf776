#include "Failure.h"
#include "Text.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "commands/Answer.h"
#include "commands/Command.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/SearchOutput.h"
#include "tree/ContentWatch.h"
#include "tree/PageSize.h"
#include "tree/PlaceResolver.h"
#include "tree/RowPages.h"
#include "tree/RowRange.h"
#include "tree/SearchKinds.h"
#include "tree/SearchReach.h"

#include <api/core/OrkaValue.h>

#include <QDBusObjectPath>

namespace {

constexpr std::chrono::milliseconds questionLimit(1'000);

Failure notSearchable(const QString &server, const QString &kind, const QStringList &kinds)
{
    return Failure(AnsweredWithError, QStringLiteral("notSearchable"),
        kinds.isEmpty()
            ? Text::tr("%1 can't search. Browse it with \"orka ls\", or take everything "
                       "below a folder with \"orka queue\", which walks through it.")
                  .arg(server)
            : Text::tr("%1 can't search by %2, only by %3. Use --%4.")
                  .arg(server, kindNames({kind}).first(),
                      kindNames(kinds).join(Text::tr(" and by ")), kinds.first()));
}

/// What is searched by, and its texts.
struct Kind
{
    const char *name;
    const char *help;
    const char *nothing;
};

const Kind allKinds[] = {
    {"artist", Text::mark("Part of the artist"),
        Text::mark("Nothing in %1 has an artist with %2 in it.")},
    {"album", Text::mark("Part of the album"),
        Text::mark("Nothing in %1 has an album with %2 in it.")},
    {"title", Text::mark("Part of the title"),
        Text::mark("Nothing in %1 has a title with %2 in it.")},
};

/// The rows of a search; an empty answer is given only where it is true.
class Hits : public RowSource
{
public:
    Hits(Session &session, const CMPath &folder, const QString &name, const CMPath &results,
        RowRange range)
        : m_session(session)
        , m_folder(folder)
        , m_name(name)
        , m_results(results)
        , m_pages(session, results, range, OrkaRoles::all())
    {
    }

    bool next(Rows *page) override
    {
        const bool came = m_pages.next(page);
        if (came && page->rowsCount == 0 && page->rows.isEmpty())
            requireReach(m_session, m_folder, m_name, m_results);
        return came;
    }
    int lacking() const override { return m_pages.lacking(); }

private:
    Session &m_session;
    const CMPath m_folder;
    const QString m_name;
    const CMPath m_results;
    RowPages m_pages;
};

class Search : public Command
{
public:
    explicit Search(CLI::App &app)
        : Command(app, "search", Text::mark("Finds tracks by artist, album or title"),
            Text::mark("orka search \"My NAS\" --artist abba --rows 0-19"))
    {
        addPlace(m_place);
        for (const Kind &kind : allKinds) {
            parser()
                .add_option_function<std::string>(
                    std::string("--") + kind.name,
                    [this, &kind](const std::string &text) {
                        m_kinds.append(QString::fromLatin1(kind.name));
                        m_nothing = kind.nothing;
                        m_text = argument(text);
                    },
                    kind.help)
                ->type_name("TEXT");
        }
        addRows(m_rows, Text::mark("First and last row, counted from 0 (all)"));
    }

    int run(const GlobalOptions &options) override
    {
        if (m_kinds.size() != 1) {
            throw wrongUsage(Text::tr("A search goes by one thing: write --artist TEXT, "
                                      "--album TEXT or --title TEXT."));
        }
        const RowRange range = m_rows.isNull() ? RowRange() : parseRowRange(m_rows);
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath folder = PlaceResolver(session).resolve(place, PlaceResolver::Folder);
        const CMPath results = enterText(session, folder);
        const ContentWatch watch(session, folder);
        Hits pages(session, folder, place.text, results, range);
        if (options.json)
            return writeRowsOf(options, results, pages, watch, range.first);
        SearchOutput output(
            range.first, [&session](const CMPath &path) { return folderOf(session, path); });
        QString trouble = write(pages, &output);
        if (output.rows() == 0 && output.rowsCount() == 0 && range.first == 0) {
            writeLine(Text::tr(m_nothing).arg(session.nameOf(folder), quoted(m_text)));
            return Answered;
        }
        output.end();
        if (trouble.isEmpty() && output.rowsCount() > PageSize::first)
            trouble = watch.change();
        if (trouble.isEmpty() && pages.lacking() == 0)
            return Answered;
        tell(incompleteSentence(pages.lacking(), output.rowsCount(),
            trouble.isEmpty() ? Text::tr("The media server counts them and doesn't give them.")
                              : trouble));
        return AnsweredWithError;
    }

private:
    /// Returns why it came to an end before the last row; empty where it didn't.
    static QString write(RowSource &pages, SearchOutput *output)
    {
        Rows page;
        try {
            while (pages.next(&page))
                output->add(page);
        } catch (const Failure &failure) {
            if (output->rows() == 0 || failure.error().name() == QLatin1String("output"))
                throw;
            return failure.sentence();
        }
        return {};
    }

    /// The media service knows it; null where it doesn't say.
    static QString folderOf(const Session &session, const CMPath &path)
    {
        const ServiceCalls service(std::min(session.options().timeout, questionLimit));
        const QString object =
            service.objectOf(path.base(), session.mediaService().servers().paths());
        const QVariantMap node = propertiesOf(service.everything(object));
        const QString parent = node.value(QStringLiteral("Parent")).value<QDBusObjectPath>().path();
        return parent.isEmpty() ? QString()
                                : propertiesOf(service.everything(parent))
                                      .value(QStringLiteral("DisplayName"))
                                      .toString();
    }

    /// As a device does it: the text is set on the search entry, which answers where the results
    /// are.
    CMPath enterText(Session &session, const CMPath &place) const
    {
        if (place.base().isEmpty()) {
            throw Failure(AnsweredWithError, QStringLiteral("notSearchable"),
                Text::tr("The list of media servers can't be searched. Name one of them; "
                         "\"orka servers\" lists them."));
        }
        const QString kind = m_kinds.first();
        const QStringList kinds = searchKinds(session, place);
        const QString unknown = kinds.isEmpty() ? searchUnknown(session, place) : QString();
        if (!unknown.isEmpty()) {
            throw Failure(AnsweredWithError, QStringLiteral("notSearchable"),
                Text::tr("%1 Try again in some seconds, or browse it with \"orka ls\".")
                    .arg(unknown));
        }
        if (!kinds.contains(kind))
            throw notSearchable(session.serverNameOf(place), kind, kinds);
        OrkaValue text;
        text.setString_(m_text);
        CMPath entry = place.withoutParams();
        entry.addParam(QStringLiteral("search"), kind);
        const QVariant answer =
            session.set(entry, text.toVariant(), Text::tr("Entering the search text"));
        return CMPath::fromEncoded(answer.toString());
    }

    QString m_place;
    QStringList m_kinds;
    QString m_text;
    const char *m_nothing = nullptr;
    QString m_rows;
};

} // namespace

CommandPointer makeSearch(CLI::App &app)
{
    return std::make_unique<Search>(app);
}
