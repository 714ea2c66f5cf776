#pragma once

#include "core/Timer.h"

#include <cstdint>
#include <curl/curl.h>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace bridge {

/// Lets something of libcurl's go.
template<auto cleanUp>
struct CurlCleanup
{
    template<typename T>
    void operator()(T *thing) const
    {
        cleanUp(thing);
    }
};
using CurlTransfer = std::unique_ptr<CURL, CurlCleanup<curl_easy_cleanup>>;
using CurlList = std::unique_ptr<curl_slist, CurlCleanup<curl_slist_free_all>>;

/// libcurl's place in the main loop: the connections to one server and what goes over them. They
/// are kept for a few seconds. Main thread only; nothing of it may be called from inside a callback
/// of libcurl's.
class HttpConnections : public std::enable_shared_from_this<HttpConnections>
{
public:
    HttpConnections() = default;
    ~HttpConnections();
    HttpConnections(const HttpConnections &) = delete;
    HttpConnections &operator=(const HttpConnections &) = delete;

    /// `host` is the machine's address. Begins at once. Ends with CURLE_ABORTED_BY_CALLBACK where
    /// something has come on the connection before anything was asked, which would be taken for the
    /// answer; with CURLE_FILESIZE_EXCEEDED where more than `maxBytes` have come, of which libcurl
    /// may have shown none, such as what may stand behind the length of a piece. `ended` is called
    /// once, from the main loop, never from inside this call, and not any more once the transfer
    /// was removed.
    void add(CURL *transfer, const std::string &host, size_t maxBytes,
        std::function<void(CURLcode)> ended);
    /// Does nothing where it has ended.
    void remove(CURL *transfer);
    /// Goes on with one whose callback paused it.
    void resume(CURL *transfer);
    /// Something happened at a socket, or its time has come. How many nanoseconds the processor
    /// took for it, without what is done with an answer that has ended.
    int64_t act(curl_socket_t socket, int events);
    /// Of the last transfer.
    const std::string &host() const { return m_host; }
    /// Why a socket could not be had, as errno; 0 where the last could.
    int socketError() const { return m_socketError; }

private:
    struct Transfer
    {
        size_t maxBytes;
        std::function<void(CURLcode)> ended;
    };
    /// What was last asked there, and how many bytes may have come until it is answered.
    struct Socket
    {
        CURL *transfer = nullptr;
        uint64_t most = 0;
    };
    bool open();
    void close();
    void tellLater();
    void tellEnded();
    void endTooLong();
    void end(CURL *transfer, CURLcode code);
    static int watchSocket(CURL *, curl_socket_t socket, int what, void *self, void *);
    static int setTimer(CURLM *, long ms, void *self);
    static curl_socket_t openSocket(void *self, curlsocktype, curl_sockaddr *address);
    static int closeSocket(void *self, curl_socket_t socket);
    static int mayAsk(void *transfer, char *, char *, int, int localPort);

    /// Those that are under way.
    std::map<CURL *, Transfer> m_transfers;
    std::map<curl_socket_t, Socket> m_sockets;
    std::string m_host;
    int m_socketError = 0;
    /// libcurl's own.
    Timer m_timer;
    /// Runs where transfers ended that nobody was told of yet.
    Timer m_tell;
    /// Runs while nothing is under way.
    Timer m_rest;
    std::unique_ptr<CURLM, CurlCleanup<curl_multi_cleanup>> m_all;
};

} // namespace bridge
