#include "PlayListHelper.h"

#include <api/core/CMGlobal.h>

namespace {
const QString &pathParam()
{
    static const QString key = QStringLiteral("path");
    return key;
}

bool canBePlayed(const CMPath &path)
{
    const QString type = path.param(QStringLiteral("itemType"));
    return type == QLatin1String("track") || type == QLatin1String("container")
        || type == QLatin1String("server");
}

QVariant menuRow(const CMGetRowsRequest &request, const QString &base, const TrString &title)
{
    CMPath path(request.path().prefix(), base);
    path.addParam(pathParam(), request.path().param(pathParam()));
    OrkaRoles row;
    row.setPath(path);
    row.setTitle(title);
    return CMGlobal::itemRolesToList(request.roles(), row);
}
} // namespace

QVariantList PlayListHelper::playListRows(const CMGetRowsRequest &request)
{
    if (!canBePlayed(CMPath::fromEncoded(request.path().param(pathParam()))))
        return {};
    return {menuRow(request, QStringLiteral("playlist/playNow"), ORKA_TR("Play now")),
        menuRow(request, QStringLiteral("playlist/playNext"), ORKA_TR("Play next")),
        menuRow(request, QStringLiteral("playlist/addToQueue"), ORKA_TR("Add to queue"))};
}
