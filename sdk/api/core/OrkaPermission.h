// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QString>

/// Values of the permission role.
class ORKA_API_EXPORT OrkaPermission
{
public:
    /// What everybody may do: browse and play.
    static const QString &Default_();
};
