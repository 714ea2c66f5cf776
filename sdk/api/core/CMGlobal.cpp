#include "CMGlobal.h"

#ifdef ORKA_FOREIGN_SDK
// No role named means every role.
static const QStringList &named(const QStringList &roles)
{
    static const QStringList all = OrkaRoles::all();
    return roles.isEmpty() ? all : roles;
}
#else
static const QStringList &named(const QStringList &roles)
{
    return roles;
}
#endif

QVariantList CMGlobal::itemRolesToList(const QStringList &roles, const OrkaRoles &record)
{
    QVariantList values;
    values.reserve(roles.size());
    for (const QString &role : named(roles)) {
        const QVariant *const value = record.find(role);
        values.append(value ? *value : QVariant());
    }
    return values;
}

QVariantList CMGlobal::itemRolesToList(const QStringList &roles, OrkaRoles &&record)
{
    QVariantList values;
    values.reserve(roles.size());
    for (const QString &role : named(roles)) {
        // A role that is asked for twice has been moved to where it first stands.
        QVariant *const value = record.find(role);
        const int first = value && !value->isValid() ? named(roles).indexOf(role) : values.size();
        values.append(first < values.size() ? values.at(first) : QVariant());
        if (value && value->isValid())
            values.last().swap(*value);
    }
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
