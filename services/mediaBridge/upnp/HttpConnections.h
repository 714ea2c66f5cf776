#pragma once

#include "core/Timer.h"

#include <curl/curl.h>
#include <functional>
#include <map>
#include <memory>
#include <set>

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
    ~HttpConnections() = default;
    HttpConnections(const HttpConnections &) = delete;
    HttpConnections &operator=(const HttpConnections &) = delete;

    /// Begins at once; ends with CURLE_ABORTED_BY_CALLBACK where something has come on the
    /// connection before anything was asked, which would be taken for the answer. `ended` is called
    /// once, from the main loop, never from inside this call, and not any more once the transfer
    /// was removed.
    void add(CURL *transfer, std::function<void(CURLcode)> ended);
    /// Does nothing where it has ended.
    void remove(CURL *transfer);
    /// Goes on with one whose callback paused it.
    void resume(CURL *transfer);
    /// Something happened at a socket, or its time has come.
    void act(curl_socket_t socket, int events);

private:
    bool open();
    void close();
    void tellLater();
    void tellEnded();
    void end(CURL *transfer, CURLcode code);
    static int watchSocket(CURL *, curl_socket_t socket, int what, void *self, void *);
    static int setTimer(CURLM *, long ms, void *self);
    static curl_socket_t openSocket(void *self, curlsocktype, curl_sockaddr *address);
    static int closeSocket(void *self, curl_socket_t socket);
    static int mayAsk(void *self, char *, char *, int, int localPort);

    /// What is to be told of each transfer that is under way.
    std::map<CURL *, std::function<void(CURLcode)>> m_ended;
    std::set<curl_socket_t> m_sockets;
    /// libcurl's own.
    Timer m_timer;
    /// Runs where transfers ended that nobody was told of yet.
    Timer m_tell;
    /// Runs while nothing is under way.
    Timer m_rest;
    /// Goes first: it may still set the timer.
    std::unique_ptr<CURLM, CurlCleanup<curl_multi_cleanup>> m_all;
};

} // namespace bridge
