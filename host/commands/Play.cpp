#include "Failure.h"
#include "chain/Session.h"
#include "commands/Command.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/Playlist.h"
#include "output/TextOutput.h"
#include "player/Player.h"
#include "tree/NodeKind.h"
#include "tree/PlaceResolver.h"

#include <api/core/orka.h>

namespace {

QVector<Place> parsePlaces(const QStringList &texts, const QString &prefix)
{
    QVector<Place> places;
    for (const QString &text : texts)
        places.append(parsePlace(text, prefix));
    return places;
}

/// What a device's player would be given for these places.
PlayListItems prepareItems(Session &session, const QVector<Place> &places)
{
    PlaceResolver resolver(session);
    QVariantList paths;
    for (const Place &place : places)
        paths.append(withKind(session, resolver.resolve(place)).toEncoded());
    const QVariantList answer = session
                                    .set(session.path(OrkaPlayListPrepareItems()), paths,
                                        QStringLiteral("Collecting tracks"))
                                    .toList();
    PlayListItems items;
    items.reserve(answer.size());
    for (const QVariant &item : answer)
        items.append(OrkaPlayListItem(OrkaHash::fromVariant(item)));
    return items;
}

class Queue : public Command
{
public:
    explicit Queue(CLI::App &app)
        : Command(app, "queue", "The playlist of tracks, folders and servers",
            "orka queue \"My NAS/Music/Albums/Blue\" --format m3u8 > blue.m3u8")
    {
        addPlaces(m_places);
        parser()
            .add_option("--format", m_format, "table (the default), json, m3u8 or xspf")
            ->type_name("FORMAT")
            ->check(CLI::IsMember({"table", "json", "m3u8", "xspf"}).description(""));
    }

    int run(const GlobalOptions &options) override
    {
        if (options.json && !m_format.empty() && m_format != "json") {
            throw wrongUsage(QStringLiteral("--json and --format %1 contradict each other. Leave "
                                            "one of them out.")
                                 .arg(QString::fromStdString(m_format)));
        }
        const QVector<Place> places = parsePlaces(m_places, options.prefix);
        Session session(options);
        write(prepareItems(session, places), options.json ? "json" : m_format);
        return Answered;
    }

private:
    static void write(const PlayListItems &items, const std::string &format)
    {
        if (format == "json") {
            writeJson(queueDocument(items));
        } else if (format == "m3u8") {
            writeText(toM3u8(playableItems(items)).toUtf8());
        } else if (format == "xspf") {
            writeText(toXspf(playableItems(items)));
        } else {
            writeQueue(items);
        }
    }

    QStringList m_places;
    std::string m_format;
};

class Play : public Command
{
public:
    explicit Play(CLI::App &app)
        : Command(app, "play", "Plays tracks, folders and servers",
            "orka play \"My NAS/Music/Albums/Blue\"\n"
            "  orka play --player \"mpv --shuffle\" \"My NAS\"")
    {
        addPlaces(m_places);
        addText("--player", m_player,
            "The player (mpv), with its own options; it is given an\nM3U8 file as last argument, "
            "and its exit status becomes\nours",
            "COMMAND");
    }

    int run(const GlobalOptions &options) override
    {
        const QVector<Place> places = parsePlaces(m_places, options.prefix);
        Session session(options);
        const PlayListItems all = prepareItems(session, places);
        if (options.json)
            writeJson(queueDocument(all));
        const PlayListItems items = playableItems(all);
        if (items.isEmpty()) {
            tell(QStringLiteral("There is nothing to play there. \"orka ls\" shows what is."));
            return AnsweredWithError;
        }
        return playItems(items, m_player, options.json);
    }

private:
    QStringList m_places;
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
