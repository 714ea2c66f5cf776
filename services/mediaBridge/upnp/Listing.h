#pragma once

#include "core/Didl.h"
#include "upnp/MediaServer.h"

#include <chrono>
#include <set>

namespace bridge {

/// Which objects of a container a listing gives.
enum class ListKind { All, Containers, Items };

/// What to list: the children of a container, or what is found below it.
struct ListRequest
{
    /// "Browse" or "Search".
    std::string action = "Browse";
    std::string containerId;
    /// Of a search, ready to travel.
    std::string criteria;
    /// Ready to travel; empty for the server's own order.
    std::string sort;
    PropertySet wanted;
    ListKind kind = ListKind::All;
    /// First object to give, from 0.
    uint32_t offset = 0;
    /// How many at most; 0 for all.
    uint32_t max = 0;
    /// Whoever asks is told the server's own count, and sees where fewer came.
    bool tellsTotal = false;
};

/// How a listing ended.
struct ListEnd
{
    /// Empty name: success.
    Failure failure;
    uint32_t rowCount = 0;
    /// How many there are beyond offset and max, as the server says, and never below what was seen.
    uint32_t total = 0;
    /// Whether the server gave a total at all.
    bool isTotalKnown = false;
};

/// Gets a whole range of a server's listing, page by page, however small the server's pages are.
/// The next page is under way while one is being read; it is as big as the server can make it in
/// about a second, and read in slices, so that nobody else waits. Ends when the range is complete,
/// when the server says that there is no more, or with an empty page; a total of 0 is taken for
/// "unknown". Where fewer came than the server counts, a listing of everything fails, and so does a
/// range that is left without a row; one with rows is for whoever asks for its rest. Main thread
/// only.
class Listing : public std::enable_shared_from_this<Listing>
{
public:
    /// Takes each object in the server's order; a failure's name that isn't empty ends the listing.
    using RowSink = std::function<Failure(const MediaObject &)>;
    using Done = std::function<void(const ListEnd &)>;
    using TotalCallback = std::function<void(std::optional<uint32_t>)>;

    /// `done` is called once, from the main loop, within 20 seconds.
    static std::shared_ptr<Listing> start(std::shared_ptr<MediaServer> server, ListRequest request,
        Caller caller, RowSink sink, Done done);

    /// Calls back with the server's total, once, as soon as the first rows are there; with nothing
    /// where that never comes to be known.
    void whenTotalIsKnown(TotalCallback callback);
    /// The failure that it ended with, where the server was silent: asking again would wait again.
    const std::optional<Failure> &silence() const { return m_silence; }

private:
    /// Answer of the server that still has to be read.
    struct Page
    {
        uint32_t position = 0;
        uint32_t asked = 0;
        uint32_t returned = 0;
        std::string didl;
        /// Held until it is read.
        std::shared_ptr<void> place;
    };

    Listing(std::shared_ptr<MediaServer> server, ListRequest request, Caller caller, RowSink sink,
        Done done);
    void proceed();
    bool wantsMore() const;
    void requestPage();
    void gotPage(uint32_t position, uint32_t asked, ActionReply reply);
    void adaptPageSize();
    bool isOnlyItself(const std::vector<MediaObject> &objects) const;
    bool isEndOfUnknown(const ActionReply &reply) const;
    bool retrySmaller(const ActionReply &reply, uint32_t position);
    void parsePage();
    void gotObjects(std::optional<DidlList> list, bool isSmall);
    void checkCount(const DidlList &list);
    void leaveOutKnown(std::vector<MediaObject> &objects);
    void readNextSlice();
    void readSlice();
    void readObject(const MediaObject &object);
    void tellTotal();
    void fail(Failure failure);
    void failUnreadable();
    void failLate();
    bool isShort() const;
    void failShort();
    void finish();
    void end(const ListEnd &result);
    SoapArguments arguments(uint32_t position, uint32_t count) const;
    unsigned remainingMs() const;

    std::shared_ptr<MediaServer> m_server;
    ListRequest m_request;
    Caller m_caller;
    RowSink m_sink;
    Done m_done;
    std::vector<TotalCallback> m_totalCallbacks;
    std::optional<Failure> m_silence;
    std::chrono::steady_clock::time_point m_deadline;

    uint32_t m_position = 0;
    /// Small at first, so that reading begins early.
    uint32_t m_pageSize = 200;
    uint32_t m_largestPage = 1000;
    std::chrono::steady_clock::time_point m_pageStart;
    uint32_t m_total = 0;
    /// Matching rows to leave out before the first one given, where the server can't do it.
    uint32_t m_toSkip = 0;
    uint32_t m_rowCount = 0;
    /// Objects that the server counts and that it leaves out, or sends malformed.
    uint32_t m_lost = 0;
    /// The last page had fewer objects than the server said.
    bool m_cameShort = false;
    /// Of that page.
    std::set<std::string> m_idsBefore;
    /// Raised when the pages under way turn out to start at the wrong place.
    unsigned m_round = 0;
    bool m_isRequesting = false;
    bool m_isAtEnd = false;
    std::string m_lastFirstId;
    /// Came, and waits for the one that is being read.
    std::optional<Page> m_waiting;
    std::optional<Page> m_reading;
    std::vector<MediaObject> m_objects;
    size_t m_nextObject = 0;
};

} // namespace bridge
