#include "tree/NodeKind.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"
#include "output/SafeText.h"
#include "tree/ServerList.h"

CMPath withKind(Session &session, const CMPath &path)
{
    const QString itemType = QStringLiteral("itemType");
    CMPath result = path;
    if (path.hasParam(itemType))
        return result;
    if (path.base() == ServerList::serverBase(path))
        return result.addParam(itemType, QStringLiteral("server"));
    const QString kind = session.data(path, {OrkaRoles::Path()}).path().param(itemType);
    if (kind.isEmpty()) {
        throw Failure(AnsweredWithError, QStringLiteral("notPlayable"),
            Text::tr("%1 is neither a track nor a folder nor a media server, so it can't be "
                     "played. Name one of these.")
                .arg(safeText(path.toEncoded())));
    }
    return result.addParam(itemType, kind);
}
