#pragma once

#include "Failure.h"
#include "tree/Place.h"
#include "tree/RowRange.h"
#include "tree/ServerList.h"

class Session;
struct NetworkReport;

/// Finds the nodes that places name. Waits for their media servers first, --wait at most.
///
/// Throws Failure (missing) for a server or title that isn't there, with the nearest titles, and
/// for one that isn't the only one, with what tells those that there are apart.
class PlaceResolver
{
public:
    explicit PlaceResolver(Session &session);

    enum Kind { Anything, Folder };

    /// A node path is returned as it was given. A title's node comes with the parameters that its
    /// worker gave it. Where a folder is wanted, tracks with the same title don't count.
    CMPath resolve(const Place &place, Kind wanted = Anything);

private:
    CMPath resolvePath(const Place &place);
    /// By title, or "title (host)".
    QVector<OrkaRoles> serversCalled(const QString &text);
    CMPath findServer(const QString &title);
    QString absentServers(const NetworkReport &report) const;
    CMPath findChild(const CMPath &parent, const QString &title, Kind wanted);

    struct Entries
    {
        QVector<OrkaRoles> nodes;
        int count = 0;
        int lacking = 0;
        /// Why the list ended early, in a sentence.
        QString failure;
        /// Why some are missing; empty where none are.
        QString trouble() const;
    };
    Entries readEntries(const CMPath &parent, RowRange range);
    Failure noEntry(const CMPath &parent, const QString &title, Kind wanted,
        const QVector<OrkaRoles> &candidates, const QString &trouble) const;

    Session &m_session;
    ServerList m_servers;
};
