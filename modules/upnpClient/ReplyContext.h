#pragma once

#include "util.h"

#include <QStringList>

#include <optional>

/// Which costly roles somebody asked for; the others needn't be made.
struct WantedRoles
{
    bool path = true;
    bool mediaData = true;
    bool icon = true;

    /// All of them.
    WantedRoles() = default;
    explicit WantedRoles(const QStringList &roles)
        : path(roles.contains(OrkaRoles::Path()))
        , mediaData(roles.contains(OrkaRoles::MediaData()))
        , icon(roles.contains(OrkaRoles::Icon()))
    {
    }
};

/// What the objects of one reply have in common: found out with the first of them and kept, so that
/// an answer that takes several turns reads as if it had been made in one.
struct ReplyContext
{
    WantedRoles wanted;
    KnownServer server;
    /// The device's address for album art; empty when it has none.
    std::optional<QString> address;
    /// Tracks of an album have the same date.
    std::optional<QString> dateText;
    qint64 dateMilliseconds = 0;
};
