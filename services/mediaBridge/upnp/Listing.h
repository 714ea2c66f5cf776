#pragma once

#include "upnp/MediaServer.h"

#include <chrono>

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
};

struct ListResult
{
    /// Empty name: success.
    Failure failure;
    /// Property maps in the server's order.
    std::vector<Variant> rows;
    /// How many there are beyond offset and max, as the server says, and never below what was seen.
    uint32_t total = 0;
    /// Whether the server gave a total at all.
    bool isTotalKnown = false;
};

/// Gets a whole range of a server's listing, page by page, however small the server's pages are.
/// The next page is under way while the last one is being read on another thread. Ends when the
/// range is complete, when the server says that there is no more, or with an empty page; a total of
/// 0 is taken for "unknown". Main thread, but for the reading.
class Listing : public std::enable_shared_from_this<Listing>
{
public:
    using Done = std::function<void(ListResult)>;

    /// `done` is called once, from the main loop, within 20 seconds. `maxBytes` bounds the rows.
    static void start(std::shared_ptr<MediaServer> server, ListRequest request, size_t maxBytes,
        GCancellable *cancellable, Done done);

    Listing(std::shared_ptr<MediaServer> server, ListRequest request, size_t maxBytes,
        GCancellable *cancellable, Done done);

private:
    /// Answer of the server that still has to be read.
    struct Page
    {
        uint32_t position;
        uint32_t returned;
        std::string didl;
    };
    struct ReadJob;

    void proceed();
    bool wantsMore() const;
    void requestPage();
    void gotPage(uint32_t position, uint32_t asked, ActionReply reply);
    bool isEndOfUnknown(const ActionReply &reply) const;
    bool retrySmaller(const ActionReply &reply, uint32_t position);
    void readPage();
    void pageRead(ReadJob &job);
    void addRows(ReadJob &job);
    void fail(Failure failure);
    void finish();
    SoapArguments arguments(uint32_t position, uint32_t count) const;
    unsigned remainingMs() const;

    std::shared_ptr<MediaServer> m_server;
    ListRequest m_request;
    size_t m_maxBytes;
    Ref<GCancellable> m_cancellable;
    Done m_done;
    std::chrono::steady_clock::time_point m_deadline;

    uint32_t m_position = 0;
    uint32_t m_pageSize = 1000;
    uint32_t m_total = 0;
    /// Matching rows to leave out before the first one given, where the server can't do it.
    uint32_t m_toSkip = 0;
    size_t m_bytes = 0;
    /// Raised when the pages under way turn out to start at the wrong place.
    unsigned m_round = 0;
    bool m_isRequesting = false;
    bool m_isReading = false;
    bool m_isAtEnd = false;
    std::unique_ptr<Page> m_page;
    std::string m_lastFirstId;
    ListResult m_result;
};

} // namespace bridge
