// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaRoles.h>

/// Small operations that every worker needs. Any thread.
class ORKA_API_EXPORT CMGlobal
{
public:
    /// One value per name in `roles`, in its order; invalid where `record` lacks the role.
    static QVariantList itemRolesToList(const QStringList &roles, const OrkaRoles &record);
    /// The same from a record that nobody needs afterwards, whose values are moved.
    static QVariantList itemRolesToList(const QStringList &roles, OrkaRoles &&record);

    /// The kind of item by its MIME type (RFC 2046; case and parameters don't matter): audio,
    /// video, image, or other; an empty text is unknown.
    static OrkaRolesType::Enum mimeTypeToRolesType(const QString &mimeType);
};
