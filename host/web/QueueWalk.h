#pragma once

#include "output/Playlist.h"
#include "web/CarriedAddresses.h"
#include "web/LiveChain.h"

#include <QElapsedTimer>
#include <QSet>

#include <deque>

/// Collects every track below a node, in the order of the listings, each file once, a page of rows
/// after the other. Ends itself when it has told.
class QueueWalk : public QObject
{
public:
    /// `isComplete` is false where a limit, or an error below the node, has cut the list short.
    using Done = std::function<void(const CMError &, const PlayListItems &items, bool isComplete)>;

    QueueWalk(LiveChain &chain, CarriedAddresses &carried, const CMPath &path, Done done);

private:
    /// A row that is still to be looked at; of a folder, from which of its rows on.
    struct Work
    {
        OrkaRoles row;
        int first = 0;
    };

    void step();
    void readTrack(const CMPath &path);
    void readFolder(const Work &folder);
    void askServer(const CMPath &path);
    void take(const Work &folder, const OrkaRowsRoles &answer);
    void add(const OrkaRoles &track);
    void finish(const CMError &error, bool isComplete);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
    Done m_done;
    std::deque<Work> m_work;
    PlayListItems m_items;
    QSet<QString> m_urls;
    QSet<QString> m_folders;
    /// Of every row, by path.
    QSet<QString> m_rows;
    /// A folder gave fewer rows than it counts, or none for this error.
    bool m_isShort = false;
    CMError m_error;
    QElapsedTimer m_clock;
};
