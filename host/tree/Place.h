#pragma once

#include <api/core/CMPath.h>

#include <QStringList>

/// What a person names on the command line: a node path, or titles from a media server down.
struct Place
{
    /// Empty where titles are given.
    CMPath path;
    /// Empty, with an empty path, for "/": the list of media servers.
    QStringList titles;
    /// As it was written.
    QString text;
};

/// "upnp:/uuid:4d69/64" is a node path when it begins with `prefix` and ":"; everything else is
/// titles joined by "/". In a title "\/" is a slash and "\\" a backslash; any other backslash
/// stands for itself. A "/" at either end is ignored. Throws Failure (wrong usage) for an empty
/// text, an empty title and a node path that can't be decoded.
Place parsePlace(const QString &text, const QString &prefix);

/// A title as it is written in a place.
QString titleInPlace(const QString &title);

/// A node path. Throws Failure (wrong usage) where it can't be decoded.
CMPath parsePath(const QString &text);
