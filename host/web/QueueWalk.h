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
    /// `problems` are sentences: why the list isn't whole; none where it is.
    using Done = std::function<void(
        const CMError &, const PlayListItems &items, const QStringList &problems)>;

    QueueWalk(LiveChain &chain, CarriedAddresses &carried, const CMPath &path, Done done);

private:
    /// Rows; where a page of a folder fails, smaller ones may not.
    static constexpr int pageSize = 500;

    /// A row that is still to be looked at; of a folder, from which of its rows on.
    struct Work
    {
        OrkaRoles row;
        int first = 0;
        /// How many of them are asked for at once.
        int page = pageSize;
        /// How many haven't come so far, though they are counted.
        int lacking = 0;
    };

    void step();
    void readTrack(const CMPath &path);
    void readFolder(const Work &folder);
    void readSmaller(Work folder, const CMError &error);
    void askServer(const CMPath &path, const CMError &silence);
    void fail(const CMError &error);
    void take(Work folder, const OrkaRowsRoles &answer);
    void tellLacking(const Work &folder);
    void add(const OrkaRoles &track);
    void addProblem(const QString &sentence);
    void finish(const CMError &error);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
    Done m_done;
    std::deque<Work> m_work;
    PlayListItems m_items;
    QSet<QString> m_urls;
    QSet<QString> m_folders;
    /// Of every row, by path.
    QSet<QString> m_rows;
    QStringList m_problems;
    /// Why the last folder that failed gave no rows.
    CMError m_error;
    QElapsedTimer m_clock;
};
