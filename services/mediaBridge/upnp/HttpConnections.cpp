#include "upnp/HttpConnections.h"

#include "core/Glib.h"
#include "core/Later.h"
#include "core/Limits.h"
#include "upnp/HttpSockets.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace bridge {

namespace {

int localPortOf(curl_socket_t socket)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.ss_family == AF_INET6
            ? reinterpret_cast<const sockaddr_in6 *>(&address)->sin6_port
            : reinterpret_cast<const sockaddr_in *>(&address)->sin_port);
}

/// Bytes since it was connected.
uint64_t receivedBy(curl_socket_t socket)
{
    tcp_info info{};
    socklen_t size = sizeof info;
    getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size);
    return info.tcpi_bytes_received;
}

/// Of this thread, in nanoseconds.
int64_t processorTime()
{
    constexpr int64_t nsPerSecond = 1'000'000'000;
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * nsPerSecond + time.tv_nsec;
}

} // namespace

HttpConnections::~HttpConnections()
{
    close();
}

bool HttpConnections::open()
{
    static const bool isReady = curl_global_init(CURL_GLOBAL_NOTHING) == CURLE_OK;
    if (!m_all && isReady) {
        m_all.reset(curl_multi_init());
        curl_multi_setopt(m_all.get(), CURLMOPT_SOCKETFUNCTION, &HttpConnections::watchSocket);
        curl_multi_setopt(m_all.get(), CURLMOPT_SOCKETDATA, this);
        curl_multi_setopt(m_all.get(), CURLMOPT_TIMERFUNCTION, &HttpConnections::setTimer);
        curl_multi_setopt(m_all.get(), CURLMOPT_TIMERDATA, this);
    }
    return bool(m_all);
}

void HttpConnections::close()
{
    // It may still set the timer.
    m_all.reset();
    m_timer.stop();
    HttpSockets::instance().setDue(this, false);
}

void HttpConnections::add(
    CURL *transfer, const std::string &host, size_t maxBytes, std::function<void(CURLcode)> ended)
{
    m_host = host;
    m_rest.stop();
    m_transfers[transfer] = {maxBytes, std::move(ended)};
    curl_easy_setopt(transfer, CURLOPT_OPENSOCKETFUNCTION, &HttpConnections::openSocket);
    curl_easy_setopt(transfer, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(transfer, CURLOPT_CLOSESOCKETFUNCTION, &HttpConnections::closeSocket);
    curl_easy_setopt(transfer, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(transfer, CURLOPT_PREREQFUNCTION, &HttpConnections::mayAsk);
    curl_easy_setopt(transfer, CURLOPT_PREREQDATA, transfer);
    curl_easy_setopt(transfer, CURLOPT_PRIVATE, this);
    if (!open() || curl_multi_add_handle(m_all.get(), transfer) != CURLM_OK) {
        // It is of no use any more where a socket couldn't be watched.
        if (m_transfers.size() == 1)
            close();
        later([self = shared_from_this(), transfer] { self->end(transfer, CURLE_FAILED_INIT); });
        return;
    }
    // libcurl would wait for the next turn.
    int running = 0;
    curl_multi_socket_action(m_all.get(), CURL_SOCKET_TIMEOUT, 0, &running);
    if (static_cast<size_t>(running) < m_transfers.size())
        tellLater();
}

void HttpConnections::remove(CURL *transfer)
{
    // It may hold the last that keeps this.
    const auto dropped = m_transfers.extract(transfer);
    if (dropped.empty())
        return;
    curl_multi_remove_handle(m_all.get(), transfer);
    constexpr unsigned msPerSecond = 1000;
    if (m_transfers.empty())
        m_rest.start(limits::keptConnectionSeconds * msPerSecond, [this] { close(); });
}

void HttpConnections::resume(CURL *transfer)
{
    const auto self = shared_from_this();
    // What had come is handed over inside this call.
    const CURLcode code = curl_easy_pause(transfer, CURLPAUSE_CONT);
    if (code != CURLE_OK)
        end(transfer, code);
    HttpSockets::instance().setDue(this, bool(m_all));
}

int64_t HttpConnections::act(curl_socket_t socket, int events)
{
    int running = 0;
    const auto self = shared_from_this();
    const int64_t start = processorTime();
    curl_multi_socket_action(m_all.get(), socket, events, &running);
    const int64_t took = processorTime() - start;
    tellEnded();
    endTooLong();
    return took;
}

void HttpConnections::endTooLong()
{
    const auto isTooLong = [this](const auto &socket) {
        return m_transfers.count(socket.second.transfer) != 0
            && receivedBy(socket.first) > socket.second.most;
    };
    // What is called may close the others.
    for (auto found = m_sockets.end();
         (found = std::find_if(m_sockets.begin(), m_sockets.end(), isTooLong)) != m_sockets.end();)
        end(found->second.transfer, CURLE_FILESIZE_EXCEEDED);
}

void HttpConnections::tellLater()
{
    m_tell.start(0, [this] { tellEnded(); });
}

/// For a short time of a turn: behind one that can't be reached, the next is sent, and ends as
/// well.
void HttpConnections::tellEnded()
{
    const auto self = shared_from_this();
    const int64_t until = g_get_monotonic_time() + limits::turnUs;
    int left = 0;
    while (const CURLMsg *message = m_all ? curl_multi_info_read(m_all.get(), &left) : nullptr) {
        end(message->easy_handle, message->data.result);
        if (g_get_monotonic_time() > until) {
            tellLater();
            return;
        }
    }
}

void HttpConnections::end(CURL *transfer, CURLcode code)
{
    const auto self = shared_from_this();
    const auto found = m_transfers.find(transfer);
    if (found == m_transfers.end())
        return;
    const auto ended = found->second.ended;
    remove(transfer);
    ended(code);
}

int HttpConnections::watchSocket(CURL *, curl_socket_t socket, int what, void *self, void *)
{
    return HttpSockets::instance().watch(socket, static_cast<HttpConnections *>(self), what) ? 0
                                                                                             : -1;
}

curl_socket_t HttpConnections::openSocket(void *self, curlsocktype, curl_sockaddr *address)
{
    const curl_socket_t socket =
        ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    auto *const connections = static_cast<HttpConnections *>(self);
    connections->m_socketError = socket == CURL_SOCKET_BAD ? errno : 0;
    if (socket != CURL_SOCKET_BAD)
        connections->m_sockets[socket] = {};
    return socket;
}

int HttpConnections::closeSocket(void *self, curl_socket_t socket)
{
    static_cast<HttpConnections *>(self)->m_sockets.erase(socket);
    return ::close(socket);
}

/// libcurl doesn't say which socket it is about to use.
int HttpConnections::mayAsk(void *transfer, char *, char *, int, int localPort)
{
    HttpConnections *self = nullptr;
    curl_easy_getinfo(transfer, CURLINFO_PRIVATE, &self);
    for (auto &[socket, asked] : self->m_sockets) {
        if (localPortOf(socket) != localPort)
            continue;
        char byte = 0;
        if (recv(socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) > 0)
            return CURL_PREREQFUNC_ABORT;
        asked = {transfer, receivedBy(socket) + self->m_transfers[transfer].maxBytes};
    }
    return CURL_PREREQFUNC_OK;
}

int HttpConnections::setTimer(CURLM *, long ms, void *self)
{
    auto *const connections = static_cast<HttpConnections *>(self);
    auto &sockets = HttpSockets::instance();
    connections->m_timer.stop();
    sockets.setDue(connections, ms == 0);
    if (ms > 0)
        connections->m_timer.start(static_cast<unsigned>(ms),
            [connections, &sockets] { sockets.setDue(connections, true); });
    return 0;
}

} // namespace bridge
