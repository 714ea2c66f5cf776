#include "commands/Gather.h"

#include "Text.h"
#include "chain/NetworkReport.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "chain/Wait.h"
#include "commands/Command.h"
#include "commands/ServerNotes.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "tree/Gathering.h"
#include "tree/NodeKind.h"
#include "tree/PlaceResolver.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <QDBusPendingCallWatcher>

#include <algorithm>
#include <memory>

namespace {

using Take = std::function<void(const OrkaPlayListItem &)>;

constexpr int reasonsTold = 10;
/// What a search for a folder's tracks brings at most.
constexpr int quickMost = 100;
/// Once a worker has its answer, so should the others have theirs.
constexpr std::chrono::milliseconds afterTheWorkers(1'000);

Gathering::Kinds kindsOf(const std::vector<std::string> &names)
{
    Gathering::Kinds kinds;
    for (const std::string &name : names) {
        const bool all = name == "all";
        if (all || name == "audio")
            kinds.insert(int(PlayableKind::Audio));
        if (all || name == "video")
            kinds.insert(int(PlayableKind::Video));
        if (all || name == "image")
            kinds.insert(int(PlayableKind::Image));
        if (all)
            kinds.insert(int(PlayableKind::Other));
    }
    return kinds;
}

/// Where everything is asked for: the servers that should be in it and aren't.
QVector<Failure> lackingIn(Session &session, const QVector<CMPath> &paths)
{
    QVector<Failure> failures;
    if (!paths.contains(session.root()))
        return failures;
    ServerList servers(session);
    const QStringList sentences = lackingServers(session, servers, NetworkReport::read());
    for (const QString &sentence : sentences)
        failures.append(Failure(AnsweredWithError, QStringLiteral("incomplete"), sentence));
    return failures;
}

QVector<Failure> gatherWhole(Session &session, const GatherOptions &options,
    const QVector<Place> &places, const QVector<CMPath> &paths, const Take &take)
{
    Gathering gathering(session, kindsOf(options.kinds), take);
    for (int i = 0; i < paths.size(); ++i)
        gathering.add(paths.at(i), places.at(i).text);
    gathering.finish();
    const QVector<Failure> failures = gathering.failures() + lackingIn(session, paths);
    if (gathering.items() > 0)
        return failures;
    if (!failures.isEmpty()) {
        for (const Failure &failure : failures.mid(1, reasonsTold))
            tell(failure.sentence());
        throw Failure(failures.first());
    }
    if (gathering.otherKinds() > 0) {
        tell(Text::tr("There is nothing of this kind, but %Ln of others; --kind all takes "
                      "them.",
            nullptr, gathering.otherKinds()));
    }
    return {};
}

/// Of several folders, or one with many tracks, a quick list may lack something.
bool mayBeCut(const QVector<CMPath> &paths, int items)
{
    int folders = 0;
    for (const CMPath &path : paths)
        folders += path.param(QStringLiteral("itemType")) == QLatin1String("track") ? 0 : 1;
    return folders > 1 || (folders == 1 && items >= quickMost);
}

/// Throws Failure where there are tracks, though a device is told of none.
void requireNothingIn(Session &session, const QVector<Place> &places, const QVector<CMPath> &paths)
{
    Gathering gathering(session, kindsOf({"audio"}), [](const OrkaPlayListItem &) {
        throw Failure(AnsweredWithError, QStringLiteral("incomplete"),
            Text::tr("A device gets nothing there, though there are tracks: the media "
                     "server's search doesn't give them. Leave --quick out."));
    });
    for (int i = 0; i < paths.size(); ++i)
        gathering.add(paths.at(i), places.at(i).text);
    if (!gathering.failures().isEmpty())
        throw gathering.failures().first();
}

/// A search for a folder's tracks, beside the worker's own, of whose shortcomings it says nothing.
struct QuickSearch
{
    QString folder;
    std::unique_ptr<QDBusPendingCallWatcher> call;
};

std::vector<QuickSearch> startSearches(Session &session, const QVector<CMPath> &paths)
{
    const ServiceCalls service(session.options().timeout);
    const QStringList servers = session.mediaService().servers().paths();
    std::vector<QuickSearch> searches;
    for (const CMPath &path : paths) {
        const QString folder = service.objectOf(path.base(), servers);
        if (folder.isEmpty() || path.param(QStringLiteral("itemType")) == QLatin1String("track"))
            continue;
        const QDBusMessage call = ServiceCalls::searchCall(folder,
            QStringLiteral("(Type derivedfrom \"audio\")"), quickMost, {QStringLiteral("Path")});
        searches.push_back({session.nameOf(path),
            std::make_unique<QDBusPendingCallWatcher>(orkaDBusConnection().asyncCall(call))});
    }
    return searches;
}

/// That a search gives fewer tracks than it counts. `areAllGood` becomes false where one fails:
/// then a worker goes through the folders.
QVector<Failure> shortSearches(const std::vector<QuickSearch> &searches, bool *areAllGood)
{
    QVector<Failure> failures;
    for (const QuickSearch &search : searches) {
        Wait wait(afterTheWorkers);
        QObject::connect(search.call.get(), &QDBusPendingCallWatcher::finished, &wait, &Wait::wake);
        const bool isGood =
            wait.until([&] { return search.call->isFinished(); }) && !search.call->isError();
        *areAllGood = *areAllGood && isGood;
        const ServiceAnswer answer{isGood, {}, {}, search.call->reply().arguments()};
        const int counted = isGood ? std::min(answer.values.value(1).toInt(), quickMost) : 0;
        const int came = childrenOf(answer).size();
        if (came < counted) {
            failures.append(Failure(AnsweredWithError, QStringLiteral("incomplete"),
                Text::tr("The media server's search counts %Ln more tracks in %1 than it gives.",
                    nullptr, counted - came)
                    .arg(search.folder)));
        }
    }
    return failures;
}

QVector<Failure> gatherQuick(
    Session &session, const QVector<Place> &places, const QVector<CMPath> &paths, const Take &take)
{
    QVariantList encoded;
    QVector<CMPath> playable;
    for (const CMPath &path : paths) {
        playable.append(withKind(session, path));
        encoded.append(playable.last().toEncoded());
    }
    // A worker tries one way after the other, and waits for each.
    for (const CMPath &path : qAsConst(playable))
        session.requireSignOfLifeOf(path);
    const std::vector<QuickSearch> searches = startSearches(session, playable);
    session.setName(session.path(OrkaPlayListPrepareItems()), places.first().text);
    const QVariantList items =
        session.set(session.path(OrkaPlayListPrepareItems()), encoded, Text::tr("Collecting"))
            .toList();
    if (items.isEmpty()) {
        for (const CMPath &path : qAsConst(playable))
            session.requireAnswerOf(path);
        requireNothingIn(session, places, playable);
    }
    for (const QVariant &item : items)
        take(OrkaPlayListItem(OrkaHash::fromVariant(item)));
    bool areSearched = true;
    const QVector<Failure> failures = shortSearches(searches, &areSearched);
    if (!areSearched || mayBeCut(playable, items.size())) {
        tell(Text::tr("This quick list may be cut: a device asks for %1 tracks of each "
                      "folder; of folders that can't be searched it goes through the last "
                      "one alone, and leaves out what doesn't answer. Without --quick it is "
                      "complete.")
                 .arg(quickMost));
    }
    return failures;
}

} // namespace

void GatherOptions::declare(CLI::App &parser)
{
    parser
        .add_option("--kind", kinds,
            Text::mark(
                "What to take from folders and servers: audio is the\ndefault; more than one with "
                "commas"))
        ->type_name("audio|video|image|all")
        ->delimiter(',')
        ->check(oneOf({"audio", "video", "image", "all"}));
    parser.add_flag("--quick", quick,
        Text::mark("One request, as a device asks for a playlist: at most the\nfirst 100 tracks of "
                   "a folder"));
}

QVector<Failure> gather(
    Session &session, const GatherOptions &options, const QVector<Place> &places, const Take &take)
{
    PlaceResolver resolver(session);
    QVector<CMPath> paths; // all of them first, so that a slip ends the command at once
    for (const Place &place : places)
        paths.append(resolver.resolve(place));
    if (!options.quick)
        return gatherWhole(session, options, places, paths, take);
    return gatherQuick(session, places, paths, take);
}

CMError tellIncomplete(const QVector<Failure> &failures)
{
    if (failures.isEmpty())
        return CMError();
    QStringList reasons;
    for (const Failure &failure : failures.mid(0, reasonsTold))
        reasons.append(failure.sentence());
    if (failures.size() > reasonsTold)
        reasons.append(Text::tr("And %Ln more.", nullptr, failures.size() - reasonsTold));
    tell(Text::tr("The list is incomplete:\n  %1").arg(reasons.join(QStringLiteral("\n  "))));
    return incompleteError(reasons);
}
