#include "Failure.h"
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

#include <api/core/OrkaValue.h>

#include <QDBusObjectPath>

namespace {

constexpr std::chrono::milliseconds questionLimit(1'000);

Failure notSearchable(const QString &server, const QString &kind, const QStringList &kinds)
{
    return Failure(AnsweredWithError, QStringLiteral("notSearchable"),
        kinds.isEmpty()
            ? QStringLiteral("%1 can't search. Browse it with \"orka ls\", or take everything "
                             "below a folder with \"orka queue\", which walks through it.")
                  .arg(server)
            : QStringLiteral("%1 can't search by %2, only by %3. Use --%4.")
                  .arg(server, kind, kinds.join(QStringLiteral(" and by ")), kinds.first()));
}

QString withArticle(const QString &kind)
{
    return (kind.startsWith(QLatin1Char('a')) ? QStringLiteral("an ") : QStringLiteral("a "))
        + kind;
}

class Search : public Command
{
public:
    explicit Search(CLI::App &app)
        : Command(app, "search", "Finds tracks by artist, album or title",
            "orka search \"My NAS\" --artist abba --rows 0-19")
    {
        addPlace(m_place);
        for (const char *kind : {"artist", "album", "title"}) {
            const std::string help = std::string("Part of the ") + kind;
            parser()
                .add_option_function<std::string>(
                    std::string("--") + kind,
                    [this, kind](const std::string &text) {
                        m_kinds.append(QString::fromLatin1(kind));
                        m_text = argument(text);
                    },
                    help)
                ->type_name("TEXT");
        }
        addRows(m_rows, "First and last row, counted from 0 (all)");
    }

    int run(const GlobalOptions &options) override
    {
        if (m_kinds.size() != 1) {
            throw wrongUsage(QStringLiteral("A search goes by one thing: write --artist TEXT, "
                                            "--album TEXT or --title TEXT."));
        }
        const RowRange range = m_rows.isNull() ? RowRange() : parseRowRange(m_rows);
        const Place place = parsePlace(m_place, options.prefix);
        Session session(options);
        const CMPath folder = PlaceResolver(session).resolve(place, PlaceResolver::Folder);
        const CMPath results = enterText(session, folder);
        const ContentWatch watch(session, folder);
        RowPages pages(session, results, range, OrkaRoles::all());
        if (options.json)
            return writeRowsOf(options, results, pages, watch, range.first);
        SearchOutput output(
            range.first, [&session](const CMPath &path) { return folderOf(session, path); });
        QString trouble = write(pages, &output);
        if (output.rows() == 0 && output.rowsCount() == 0 && range.first == 0) {
            writeLine(
                QStringLiteral("Nothing in %1 has %2 with %3 in it.")
                    .arg(session.nameOf(folder), withArticle(m_kinds.first()), quoted(m_text)));
            return Answered;
        }
        output.end();
        if (trouble.isEmpty() && output.rowsCount() > PageSize::first)
            trouble = watch.change();
        if (trouble.isEmpty() && pages.lacking() == 0)
            return Answered;
        tell(incompleteSentence(pages.lacking(), output.rowsCount(),
            trouble.isEmpty()
                ? QStringLiteral("The media server counts them and doesn't give them.")
                : trouble));
        return AnsweredWithError;
    }

private:
    /// Returns why it came to an end before the last row; empty where it didn't.
    static QString write(RowPages &pages, SearchOutput *output)
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
                QStringLiteral("The list of media servers can't be searched. Name one of them; "
                               "\"orka servers\" lists them."));
        }
        const QString kind = m_kinds.first();
        const QStringList kinds = searchKinds(session, place);
        const QString unknown = kinds.isEmpty() ? searchUnknown(session, place) : QString();
        if (!unknown.isEmpty()) {
            throw Failure(AnsweredWithError, QStringLiteral("notSearchable"),
                unknown
                    + QStringLiteral(" Try again in some seconds, or browse it with \"orka ls\"."));
        }
        if (!kinds.contains(kind))
            throw notSearchable(session.serverNameOf(place), kind, kinds);
        OrkaValue text;
        text.setString_(m_text);
        CMPath entry = place.withoutParams();
        entry.addParam(QStringLiteral("search"), kind);
        const QVariant answer =
            session.set(entry, text.toVariant(), QStringLiteral("Entering the search text"));
        return CMPath::fromEncoded(answer.toString());
    }

    QString m_place;
    QStringList m_kinds;
    QString m_text;
    QString m_rows;
};

} // namespace

CommandPointer makeSearch(CLI::App &app)
{
    return std::make_unique<Search>(app);
}
