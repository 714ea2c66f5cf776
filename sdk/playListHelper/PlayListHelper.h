// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMRequest.h>

#if defined(PLAYLISTHELPER_BUILD)
#define PLAYLISTHELPER_EXPORT Q_DECL_EXPORT
#else
#define PLAYLISTHELPER_EXPORT Q_DECL_IMPORT
#endif

/// Rows of context menus. Any thread.
class PLAYLISTHELPER_EXPORT PlayListHelper
{
public:
    /// The rows of the menu at the request's path, `prefix:context?path=<encoded path>`: play now,
    /// play next and add to queue where the named path can be played (its `itemType` is track,
    /// container or server), nothing otherwise. All of them whatever range the request names; each
    /// has the requested roles in their order. A row's path is `playlist/playNow`,
    /// `playlist/playNext` or `playlist/addToQueue` below the same prefix, with the named path.
    static QVariantList playListRows(const CMGetRowsRequest &request);
};
