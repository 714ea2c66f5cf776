#include "commands/Gather.h"

#include "chain/Session.h"
#include "output/Output.h"
#include "tree/Gathering.h"
#include "tree/NodeKind.h"
#include "tree/PlaceResolver.h"

#include <api/core/orka.h>

namespace {

using Take = std::function<void(const OrkaPlayListItem &)>;

constexpr int reasonsTold = 10;
/// What a search for a folder's tracks brings at most.
constexpr int quickMost = 100;

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

QVector<Failure> gatherWhole(Session &session, const GatherOptions &options,
    const QVector<Place> &places, const QVector<CMPath> &paths, const Take &take)
{
    Gathering gathering(session, kindsOf(options.kinds), take);
    for (int i = 0; i < paths.size(); ++i)
        gathering.add(paths.at(i), places.at(i).text);
    if (gathering.items() > 0)
        return gathering.failures();
    if (!gathering.failures().isEmpty()) {
        for (const Failure &failure : gathering.failures().mid(1, reasonsTold))
            tell(failure.sentence());
        throw gathering.failures().first();
    }
    if (gathering.otherKinds() > 0) {
        tell(QStringLiteral("There is nothing of this kind, but %1 of others; --kind all takes "
                            "them.")
                 .arg(gathering.otherKinds()));
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

void gatherQuick(Session &session, const QVector<CMPath> &paths, const Take &take)
{
    QVariantList encoded;
    QVector<CMPath> playable;
    for (const CMPath &path : paths) {
        playable.append(withKind(session, path));
        encoded.append(playable.last().toEncoded());
    }
    const QVariantList items =
        session.set(session.path(OrkaPlayListPrepareItems()), encoded, QStringLiteral("Collecting"))
            .toList();
    if (items.isEmpty()) {
        for (const CMPath &path : qAsConst(playable))
            session.requireAnswerOf(path);
    }
    for (const QVariant &item : items)
        take(OrkaPlayListItem(OrkaHash::fromVariant(item)));
    if (mayBeCut(playable, items.size())) {
        tell(QStringLiteral("This quick list may be cut: a device asks for %1 tracks of each "
                            "folder, and of folders that can't be searched for the last one alone. "
                            "Without --quick it is complete.")
                 .arg(quickMost));
    }
}

} // namespace

void GatherOptions::declare(CLI::App &parser)
{
    parser
        .add_option("--kind", kinds,
            "What is taken of folders and servers: audio (the\ndefault), video, image or all; more "
            "than one with commas")
        ->type_name("KIND")
        ->delimiter(',')
        ->check(CLI::IsMember({"audio", "video", "image", "all"}).description(""));
    parser.add_flag("--quick", quick,
        "One request, as a device asks for a playlist: at most the\nfirst 100 tracks of a folder");
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
    gatherQuick(session, paths, take);
    return {};
}

CMError tellIncomplete(const QVector<Failure> &failures)
{
    if (failures.isEmpty())
        return CMError();
    QStringList reasons;
    for (const Failure &failure : failures.mid(0, reasonsTold))
        reasons.append(failure.sentence());
    if (failures.size() > reasonsTold)
        reasons.append(QStringLiteral("And %1 more.").arg(failures.size() - reasonsTold));
    tell(QStringLiteral("The list is incomplete:\n  %1").arg(reasons.join(QStringLiteral("\n  "))));
    return CMError(QStringLiteral("incomplete"), CMError::DefaultTitle(),
        TrString(reasons.join(QLatin1Char(' '))));
}
