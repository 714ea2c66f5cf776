#pragma once

#include "sdk.h"

#include <algorithm>

/// Which costly roles somebody asked for; the others needn't be made. All of them, unless a list
/// names some roles and no other than those that are known: what an SDK makes of an empty list, or
/// of "mediaData/metaData/artist", is its own affair.
struct WantedRoles
{
    bool path = true;
    bool mediaData = true;
    bool icon = true;

    WantedRoles() = default;
    explicit WantedRoles(const QStringList &roles)
    {
        const QStringList known = sdk::roleNames();
        const auto isKnown = [&known](const QString &role) {
            return known.contains(role);
        };
        if (roles.isEmpty() || !std::all_of(roles.begin(), roles.end(), isKnown))
            return;
        path = roles.contains(sdk::pathRole());
        mediaData = roles.contains(sdk::mediaDataRole());
        icon = roles.contains(sdk::iconRole());
    }
};
