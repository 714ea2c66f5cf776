#include "CMGlobal.h"

QVariantList CMGlobal::itemRolesToList(const QStringList &roles, const OrkaRoles &record)
{
    QVariantList values;
    values.reserve(roles.size());
    for (const QString &role : roles)
        values.append(record.value(role));
    return values;
}

OrkaRolesType::Enum CMGlobal::mimeTypeToRolesType(const QString &mimeType)
{
    const QStringRef type = QStringRef(&mimeType).trimmed();
    if (type.isEmpty())
        return OrkaRolesType::Unknown;
    if (type.startsWith(QLatin1String("audio/"), Qt::CaseInsensitive))
        return OrkaRolesType::Audio;
    if (type.startsWith(QLatin1String("video/"), Qt::CaseInsensitive))
        return OrkaRolesType::Video;
    if (type.startsWith(QLatin1String("image/"), Qt::CaseInsensitive))
        return OrkaRolesType::Image;
    return OrkaRolesType::OtherItem;
}
