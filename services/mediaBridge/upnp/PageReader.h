#pragma once

#include "core/Didl.h"
#include "core/Failure.h"
#include "upnp/ListRequest.h"

#include <functional>
#include <map>
#include <optional>

namespace bridge {

/// Takes each object in the server's order; a failure's name that isn't empty ends the listing.
using RowSink = std::function<Failure(const MediaObject &)>;

/// Gives a sink the objects of a listing's pages that were asked for, and judges what a page says
/// about the server's list: servers count wrongly, repeat themselves, and send what can't be read.
class PageReader
{
public:
    PageReader(const ListRequest &request, std::string serverName, RowSink sink);

    /// What a page is, whatever the server says that it is.
    struct Content
    {
        /// Nothing of it can be read: the listing has failed.
        bool isUnreadable = false;
        /// Nothing comes behind it.
        bool isLast = false;
        /// Objects of the server's list that it stands for; the next page begins behind them.
        uint32_t count = 0;
    };
    /// Takes the page at a position of the server's list with `returned` objects of `total`, as the
    /// server says; 0 is "unknown".
    Content take(
        std::optional<DidlList> list, uint32_t position, uint32_t returned, uint32_t total);

    /// Gives the next objects of the page for a short time of a turn, at least one.
    Failure readSlice();
    bool isAtEndOfPage() const { return m_nextObject >= m_objects.size(); }

    bool hasSeenObjects() const { return m_hasSeenObjects; }
    /// Objects that were given.
    uint32_t rowCount() const { return m_rowCount; }
    /// Objects that the server counts and that it leaves out, or sends malformed.
    uint32_t lostCount() const { return m_lost; }
    /// Objects that a page began with though they were the last of the page before; given once.
    uint32_t repeatedCount() const { return m_repeated; }

private:
    uint32_t countOf(const DidlList &list);
    bool isRepeated(const std::vector<MediaObject> &objects, uint32_t left) const;
    bool isOnlyItself(const std::vector<MediaObject> &objects, uint32_t total) const;
    void leaveOutKnown(std::vector<MediaObject> &objects);
    void remember(const std::vector<MediaObject> &objects);
    Failure readObject(const MediaObject &object);

    const ListRequest &m_request;
    std::string m_serverName;
    RowSink m_sink;
    /// Matching rows to leave out before the first one given, where the server can't do it.
    uint32_t m_toSkip = 0;
    uint32_t m_rowCount = 0;
    uint32_t m_lost = 0;
    uint32_t m_repeated = 0;
    /// Of the last page, and where in it they stood, counted from its end.
    std::map<std::string, ptrdiff_t> m_idsBefore;
    ptrdiff_t m_countBefore = 0;
    /// Hashes of the ids of all pages so far, in rising order.
    std::vector<size_t> m_seen;
    bool m_hasSeenObjects = false;
    std::vector<MediaObject> m_objects;
    size_t m_nextObject = 0;
};

} // namespace bridge
