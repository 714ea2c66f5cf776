#include "Failure.h"
#include "Language.h"
#include "Text.h"
#include "chain/Session.h"
#include "commands/Command.h"
#include "commands/Gather.h"
#include "output/Output.h"
#include "output/QueueOutput.h"
#include "player/Player.h"

namespace {

QVector<Place> parsePlaces(const QStringList &texts, const QString &prefix)
{
    QVector<Place> places;
    for (const QString &text : texts)
        places.append(parsePlace(text, prefix));
    return places;
}

/// A command that collects what is below some places.
class PlaylistCommand : public Command
{
protected:
    PlaylistCommand(CLI::App &app, const char *name, const char *description, const char *example)
        : Command(app, name, description, example)
    {
        addPlaces(m_texts);
        m_gather.declare(parser());
    }
    QVector<Place> places(const GlobalOptions &options) const
    {
        return parsePlaces(m_texts, options.prefix);
    }
    const GatherOptions &gatherOptions() const { return m_gather; }

private:
    QStringList m_texts;
    GatherOptions m_gather;
};

class Queue : public PlaylistCommand
{
public:
    explicit Queue(CLI::App &app)
        : PlaylistCommand(app, "queue", Text::mark("The playlist of tracks, folders and servers"),
            Text::mark("orka queue \"My NAS/Music/Albums/Blue\" --format m3u8 > blue.m3u8"))
    {
        parser()
            .add_option("--format", m_format, Text::mark("How the playlist is written (table)"))
            ->type_name("table|json|m3u8|xspf")
            ->check(oneOf({"table", "json", "m3u8", "xspf"}));
    }

    int run(const GlobalOptions &options) override
    {
        if (options.json && !m_format.empty() && m_format != "json") {
            throw wrongUsage(Text::tr("--json and --format %1 contradict each other. Leave "
                                      "one of them out.")
                                 .arg(QString::fromStdString(m_format)));
        }
        const QVector<Place> wanted = places(options);
        Session session(options);
        if (format(options.json) == QueueOutput::AsJson)
            Language::becomeEnglish();
        QueueOutput output(format(options.json));
        const QVector<Failure> failures = gather(session, gatherOptions(), wanted,
            [&output](const OrkaPlayListItem &item) { output.add(item); });
        const CMError incomplete = tellIncomplete(failures);
        output.end(incomplete);
        return incomplete.isError() ? AnsweredWithError : Answered;
    }

private:
    QueueOutput::Format format(bool json) const
    {
        if (json || m_format == "json")
            return QueueOutput::AsJson;
        if (m_format == "m3u8")
            return QueueOutput::AsM3u8;
        return m_format == "xspf" ? QueueOutput::AsXspf : QueueOutput::AsTable;
    }

    std::string m_format;
};

class Play : public PlaylistCommand
{
public:
    explicit Play(CLI::App &app)
        : PlaylistCommand(app, "play", Text::mark("Plays tracks, folders and servers"),
            Text::mark("orka play \"My NAS/Music/Albums/Blue\"\n"
                       "  orka play --player \"mpv --shuffle\" \"My NAS\""))
    {
        addText("--player", m_player,
            Text::mark("The player (mpv), with its own options; it is given an\nM3U8 file as last "
                       "argument, "
                       "and its exit status becomes\nours"),
            "COMMAND");
    }

    int run(const GlobalOptions &options) override
    {
        const QVector<Place> wanted = places(options);
        requirePlayer(m_player); // before the long way to its playlist
        Session session(options);
        QueueOutput document(QueueOutput::AsJson);
        PlayListItems items;
        const QVector<Failure> failures =
            gather(session, gatherOptions(), wanted, [&](const OrkaPlayListItem &item) {
                if (options.json)
                    document.add(item);
                items.append(withoutRoles(item));
            });
        const CMError incomplete = tellIncomplete(failures);
        if (options.json)
            document.end(incomplete);
        items = playableItems(items);
        if (items.isEmpty()) {
            tell(Text::tr("There is nothing to play there. \"orka ls\" shows what is."));
            return AnsweredWithError;
        }
        const int status = playItems(items, m_player, options.json);
        return status == 0 && incomplete.isError() ? AnsweredWithError : status;
    }

private:
    QString m_player = QStringLiteral("mpv");
};

} // namespace

CommandPointer makeQueue(CLI::App &app)
{
    return std::make_unique<Queue>(app);
}

CommandPointer makePlay(CLI::App &app)
{
    return std::make_unique<Play>(app);
}
