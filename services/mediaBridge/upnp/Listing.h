#pragma once

#include "upnp/ListRequest.h"
#include "upnp/MediaServer.h"
#include "upnp/PageReader.h"
#include "upnp/PageSize.h"

#include <chrono>

namespace bridge {

/// How a listing ended.
struct ListEnd
{
    /// Empty name: success.
    Failure failure;
    uint32_t rowCount = 0;
    /// How many there are beyond offset and max, as the server says, and never below what was seen;
    /// 0 where it can't count them, or counts fewer than come, and not all were asked for.
    uint32_t total = 0;
    /// Whether the server gave a total, and what came doesn't disprove it.
    bool isTotalKnown = false;
};

/// Gets a whole range of a server's listing, page by page, however small the server's pages are.
/// The next page is under way while one is being read; it is as big as the server can make it in
/// about a second, and read in slices, so that nobody else waits. Ends when the range is complete,
/// when the server says that there is no more, or with an empty page; a total of 0 is taken for
/// "unknown", and so is that of a server that turns out to count what it has sent only. Where fewer
/// came than the server counts, a listing of everything fails, and so does a range that is left
/// without a row; one with rows is for whoever asks for its rest. Main thread only.
class Listing : public std::enable_shared_from_this<Listing>
{
public:
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
        /// Objects of the whole list, as this answer counts them.
        uint32_t total = 0;
        /// The server said how many it sends, or how many there are.
        bool isCounted = false;
        std::string didl;
        /// Held until it is read.
        std::shared_ptr<void> place;
    };

    Listing(std::shared_ptr<MediaServer> server, ListRequest request, Caller caller, RowSink sink,
        Done done);
    void proceed();
    uint32_t reached() const;
    uint32_t lostCount() const;
    bool isTotalKnown() const;
    bool isCountInDoubt() const;
    bool mustCheckCount() const;
    void checkCount();
    void checkedCount(uint32_t position, ActionReply reply);
    bool wantsMore() const;
    void requestPage();
    void gotPage(uint32_t position, uint32_t asked, ActionReply reply);
    bool isEndOfUnknown(const ActionReply &reply) const;
    bool retrySmaller(const ActionReply &reply, uint32_t position);
    void parsePage();
    void gotObjects(std::optional<DidlList> list, bool isSmall);
    void readNextSlice();
    void readSlice();
    void tellTotal();
    void fail(Failure failure);
    void failUnreadable();
    void failLate();
    void failAs(ActionReply reply);
    bool isShort() const;
    void failShort();
    void finish();
    void end(const ListEnd &result);
    SoapArguments arguments(uint32_t position, uint32_t count) const;
    unsigned remainingMs() const;

    std::shared_ptr<MediaServer> m_server;
    ListRequest m_request;
    Caller m_caller;
    Done m_done;
    std::vector<TotalCallback> m_totalCallbacks;
    std::optional<Failure> m_silence;
    /// In microseconds of the monotonic clock.
    int64_t m_deadline;

    uint32_t m_position = 0;
    PageSize m_pageSize;
    std::chrono::steady_clock::time_point m_pageStart;
    uint32_t m_total = 0;
    /// Raised when the pages under way turn out to start at the wrong place.
    unsigned m_round = 0;
    bool m_isRequesting = false;
    bool m_isAtEnd = false;
    bool m_isCountChecked = false;
    /// Came, and waits for the one that is being read.
    std::optional<Page> m_waiting;
    std::optional<Page> m_reading;
    PageReader m_reader;
};

} // namespace bridge
