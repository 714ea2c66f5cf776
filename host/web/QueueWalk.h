#pragma once

#include "output/Playlist.h"
#include "tree/KnownFiles.h"
#include "web/CarriedAddresses.h"
#include "web/LiveChain.h"

#include <QElapsedTimer>
#include <QSet>

#include <deque>

/// Collects every track below a node, in the order of the listings, each file once, a page of rows
/// after the other; of a node that is no folder, itself, where it is sound or a film. Ends itself
/// when it has told, or when nobody wants to know any more.
class QueueWalk : public QObject
{
public:
    /// `problems` are sentences: why the list isn't whole; none where it is.
    using Done = std::function<void(
        const CMError &, const PlayListItems &items, const QStringList &problems)>;

    /// Asked before each page of rows. Where it says no, `done` is told of an error.
    using IsWanted = std::function<bool()>;

    QueueWalk(LiveChain &chain, CarriedAddresses &carried, const CMPath &path, IsWanted isWanted,
        Done done);

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
        /// How many have come, those that came again left out.
        int came = 0;
        /// Those that a row was read with; null for one that was named.
        KnownFiles::PagePointer rows = {};
        /// Of a folder, the paths of its rows on the pages before.
        std::shared_ptr<QSet<QString>> seen = {};
    };

    void step();
    bool isAtLimit() const;
    void readNode(const CMPath &path);
    void takeNode(const OrkaRoles &node);
    void readFolder(const Work &folder);
    void readSmaller(Work folder, const CMError &error);
    void askServer(const CMPath &path, const CMError &silence);
    void fail(const CMError &error);
    void take(Work folder, const OrkaRowsRoles &answer);
    void tellLacking(const OrkaRoles &folder, int lacking);
    bool add(const Work &track);
    void askSizes(const Work &track, const KnownFiles::PagePointer &page);
    void tellWithoutAddress();
    void addProblem(const QString &sentence);
    void finish(const CMError &error);

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
    IsWanted m_isWanted;
    Done m_done;
    std::deque<Work> m_work;
    PlayListItems m_items;
    /// Of all texts of the items.
    qint64 m_characters = 0;
    KnownFiles m_known;
    /// Titles of tracks that nobody can play.
    QStringList m_withoutAddress;
    QSet<QString> m_folders;
    /// How many have come.
    int m_rows = 0;
    QStringList m_problems;
    /// Why the last folder that failed gave no rows.
    CMError m_error;
    QElapsedTimer m_clock;
};
