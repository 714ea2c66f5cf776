#include "tree/SearchReach.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"
#include "output/SafeText.h"
#include "tree/Gathering.h"
#include "tree/ServerList.h"

#include <QRegularExpression>

namespace {

/// Ends a walk at its first entry.
struct Found
{
    QString title;
};

CMPath searchIn(
    const CMPath &results, const QString &base, const QString &kind, const QString &text)
{
    return CMPath(results.prefix(), base)
        .addParam(QStringLiteral("search"), kind)
        .addParam(QStringLiteral("query"), text);
}

bool hasHit(Session &session, const CMPath &results)
{
    const OrkaRowsRoles answer = session.rows(results, 0, 0, {OrkaRoles::Path()});
    return answer.rowsCount() > 0 || !answer.rows().isEmpty();
}

/// True where it can't be told, too.
bool isAnywhere(Session &session, const CMPath &folder, const CMPath &results)
{
    try {
        return hasHit(session,
            searchIn(results, ServerList::serverBase(folder),
                results.param(QStringLiteral("search")), results.param(QStringLiteral("query"))));
    } catch (const Failure &) {
        session.renewTime();
        return true;
    }
}

/// The title of an entry somewhere below; null where there is none.
QString anyTitleIn(Session &session, const CMPath &folder, const QString &name)
{
    const Gathering::Kinds all{int(PlayableKind::Audio), int(PlayableKind::Video),
        int(PlayableKind::Image), int(PlayableKind::Other)};
    Gathering gathering(
        session, all, [](const OrkaPlayListItem &item) { throw Found{item.title()}; });
    try {
        gathering.add(folder, name);
    } catch (const Found &found) {
        return found.title;
    }
    if (!gathering.failures().isEmpty())
        throw Failure(gathering.failures().first());
    return QString();
}

/// A part of the title that every server finds: some take marks and accents for something else.
QString plainPartOf(const QString &title)
{
    static const QRegularExpression plain(QStringLiteral("[A-Za-z0-9]+"));
    QString longest;
    for (auto match = plain.globalMatch(title); match.hasNext();) {
        const QString part = match.next().captured();
        if (part.size() > longest.size())
            longest = part;
    }
    return longest.isEmpty() ? title : longest;
}

} // namespace

void requireReach(
    Session &session, const CMPath &folder, const QString &name, const CMPath &results)
{
    if (folder.base() == ServerList::serverBase(folder) || !isAnywhere(session, folder, results))
        return;
    const QString title = anyTitleIn(session, folder, name);
    if (title.isEmpty()
        || hasHit(
            session, searchIn(results, folder.base(), QStringLiteral("title"), plainPartOf(title))))
        return;
    throw Failure(AnsweredWithError, QStringLiteral("notSearchable"),
        Text::tr("%1 doesn't search below %2: it doesn't find %3, which is there. Search the whole "
                 "media server, or a folder further down.")
            .arg(session.serverNameOf(folder), quoted(name), quoted(title)));
}
