#include "upnp/HttpExchange.h"

#include "core/Later.h"
#include "core/Limits.h"
#include "core/SpareMemory.h"
#include "upnp/HttpUrl.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <string_view>
#include <vector>

namespace bridge {

namespace {

/// Exchanges whose answer is being read.
std::vector<HttpExchange *> &readers()
{
    static std::vector<HttpExchange *> list;
    return list;
}

void removeReader(HttpExchange *exchange)
{
    readers().erase(std::remove(readers().begin(), readers().end(), exchange), readers().end());
}

template<typename Result>
Result infoOf(CURL *transfer, CURLINFO what)
{
    Result result{};
    curl_easy_getinfo(transfer, what, &result);
    return result;
}

/// The parameter of a Content-Type such as: text/xml; charset="utf-8"
std::string charsetOf(const char *contentType)
{
    constexpr std::string_view name = "charset=";
    const std::string type = contentType ? contentType : "";
    const std::string lower = takeString(g_ascii_strdown(type.c_str(), -1));
    const size_t found = lower.find(name, std::min(lower.find(';'), lower.size()));
    if (found == std::string::npos)
        return {};
    const std::string value = type.substr(found + name.size());
    return value.empty() || value.front() != '"' ? value.substr(0, value.find_first_of("; \t"))
                                                 : value.substr(1, value.find('"', 1) - 1);
}

/// What this line of a head says in lower case, where it has this name, which ends in a colon.
std::optional<std::string> valueOf(std::string_view line, std::string_view name)
{
    if (line.size() < name.size()
        || g_ascii_strncasecmp(line.data(), name.data(), name.size()) != 0)
        return {};
    line.remove_prefix(name.size());
    return takeString(g_strstrip(g_ascii_strdown(line.data(), static_cast<gssize>(line.size()))));
}

std::string longerThan(size_t bytes)
{
    return "it is longer than " + std::to_string(bytes >> 10) + " KiB";
}

/// libcurl takes a URL as it is to be sent.
std::string escaped(const std::string &url)
{
    return takeString(g_uri_escape_string(url.c_str(), "%:/?#[]@!$&'()*+,;=", FALSE));
}

} // namespace

HttpExchange::HttpExchange(HttpRequest request, HttpCallback done)
    : m_request(std::move(request))
    , m_done(std::move(done))
{
}

void HttpExchange::watchCaller()
{
    if (GCancellable *cancellable = m_request.caller.cancellable.get()) {
        m_callerLeft = g_cancellable_connect(cancellable,
            G_CALLBACK(
                +[](GCancellable *, HttpExchange *self) { self->stop(HttpOutcome::Cancelled); }),
            this, nullptr);
    }
}

void HttpExchange::send(std::shared_ptr<HttpConnections> connections, std::shared_ptr<void> place)
{
    m_reply.place = std::move(place);
    m_connections = std::move(connections);
    m_host = hostOf(m_request.url);
    begin();
}

void HttpExchange::begin()
{
    makeTransfer();
    m_connections->add(m_transfer.get(), m_host, 2 * m_request.maxBytes + limits::headBytes,
        [self = shared_from_this()](CURLcode code) { self->ended(code); });
}

void HttpExchange::makeTransfer()
{
    m_transfer.reset(curl_easy_init());
    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(m_transfer.get(), option, value);
    };
    set(CURLOPT_URL, escaped(m_request.url).c_str());
    set(CURLOPT_PROTOCOLS_STR, "http");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    // A proxy of the environment is for the internet, not for the machines at home.
    set(CURLOPT_PROXY, "");
    set(CURLOPT_NOSIGNAL, 1L);
    // It reads up to a hundred buffers before anybody else has a turn.
    set(CURLOPT_BUFFERSIZE, limits::readBytes);
    set(CURLOPT_USERAGENT, "orka-media-bridge UPnP/1.0 DLNADOC/1.50");
    set(CURLOPT_FRESH_CONNECT, m_isSecondTry ? 1L : 0L);
    set(CURLOPT_HEADERFUNCTION, &HttpExchange::headCame);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &HttpExchange::bodyCame);
    set(CURLOPT_WRITEDATA, this);
    if (m_request.soapAction.empty())
        return;
    setHeaders();
    set(CURLOPT_HTTPHEADER, m_headers.get());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_request.body.size()));
    set(CURLOPT_POSTFIELDS, m_request.body.c_str());
}

void HttpExchange::setHeaders()
{
    const std::string action = "SOAPAction: " + m_request.soapAction;
    CurlList headers;
    // Small servers don't know what to answer to an "Expect: 100-continue".
    for (const char *line :
        {action.c_str(), "Content-Type: text/xml; charset=\"utf-8\"", "Expect:"})
        headers.reset(curl_slist_append(headers.release(), line));
    m_headers = std::move(headers);
}

/// On a connection of its own, where something had come on a kept one.
bool HttpExchange::sendAgain(CURLcode code)
{
    if (code != CURLE_ABORTED_BY_CALLBACK || std::exchange(m_isSecondTry, true))
        return false;
    begin();
    return true;
}

size_t HttpExchange::headCame(char *line, size_t, size_t size, void *self)
{
    return static_cast<HttpExchange *>(self)->takeHead({line, size}) ? size : 0;
}

/// A line of an answer's head, or of the one that ends a body in pieces.
bool HttpExchange::takeHead(std::string_view line)
{
    constexpr std::string_view start = "HTTP/";
    m_headBytes += line.size();
    ++m_headLines;
    if (line.substr(0, start.size()) == start) {
        m_isPlain = false;
        m_length = {};
        if (++m_answers > limits::interimAnswers + 1)
            return refuse("it begins over and over");
    }
    if (const auto length = valueOf(line, "content-length:"))
        m_length = g_ascii_strtoull(length->c_str(), nullptr, 10);
    if (const auto encoding = valueOf(line, "transfer-encoding:")) {
        // libcurl would unpack it without an end: some bytes may hold gigabytes, or nothing at all
        // for minutes.
        m_isPlain = *encoding == "identity";
        if (!m_isPlain && *encoding != "chunked")
            return refuse("its answer is packed", HttpOutcome::Broken);
    }
    if (m_headLines > limits::headLines)
        return refuse("its head is longer than " + std::to_string(limits::headLines) + " lines");
    if (m_headBytes > limits::headBytes)
        return refuse(
            "its head is longer than " + std::to_string(limits::headBytes >> 10) + " KiB");
    const bool isEnd = line.substr(0, 1) == "\r" || line.substr(0, 1) == "\n";
    return !isEnd || !isWhole();
}

size_t HttpExchange::bodyCame(char *data, size_t, size_t size, void *self)
{
    auto *const exchange = static_cast<HttpExchange *>(self);
    if (exchange->m_reply.body.size() > limits::documentAtOnce && !exchange->m_seat) {
        exchange->waitForSeat();
        return CURL_WRITEFUNC_PAUSE;
    }
    return exchange->append(data, size) ? size : 0;
}

/// Whether there may be more.
bool HttpExchange::append(const char *data, size_t size)
{
    if (isStopped())
        return false;
    std::string &body = m_reply.body;
    if (m_pieces++ == 0) {
        // Growing, a long one would be copied over and over.
        const auto length =
            infoOf<curl_off_t>(m_transfer.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
        body.reserve(
            std::min(static_cast<size_t>(std::max<curl_off_t>(length, 0)), m_request.maxBytes));
        readers().push_back(this);
    }
    body.append(data, size);
    if (body.size() > m_request.maxBytes)
        return refuse(longerThan(m_request.maxBytes));
    if (m_pieces > limits::pieces(body.size()))
        return refuse("it comes in too many small pieces");
    makeRoom();
    return !isWhole();
}

/// Where libcurl would wait for the connection's end.
bool HttpExchange::isWhole() const
{
    return m_isPlain && m_length && m_reply.body.size() >= *m_length;
}

bool HttpExchange::refuse(std::string problem, HttpOutcome outcome)
{
    if (!m_stopped)
        m_stopped = Ending{outcome, std::move(problem)};
    return false;
}

/// Long answers of many servers may come faster than they are read.
void HttpExchange::waitForSeat()
{
    Backlog::instance().receive(m_host, [self = shared_from_this()](Backlog::Seat seat) {
        if (self->isStopped())
            return;
        self->m_seat = std::move(seat);
        self->keepSeat();
        self->m_connections->resume(self->m_transfer.get());
    });
}

void HttpExchange::keepSeat()
{
    m_seatTimer.start(limits::seatMs, [this, size = m_reply.body.size()] {
        if (m_reply.body.size() < size + limits::seatBytes)
            m_seat.reset();
        else
            keepSeat();
    });
}

/// Where all answers together take too much, one has to end: the longest of the machine whose
/// answers take most. Many short ones of its servers are no less than another's long one.
void HttpExchange::makeRoom()
{
    const auto size = [](const HttpExchange *reader) {
        return reader->m_reply.body.size();
    };
    size_t sum = 0;
    for (const HttpExchange *reader : readers())
        sum += size(reader);
    if (sum <= limits::bodiesBytes)
        return;
    std::map<std::string_view, size_t> ofHost;
    for (const HttpExchange *reader : readers())
        ofHost[reader->m_host] += size(reader);
    const auto isLess = [&](const HttpExchange *a, const HttpExchange *b) {
        return std::pair(ofHost[a->m_host], size(a)) < std::pair(ofHost[b->m_host], size(b));
    };
    HttpExchange *most = *std::max_element(readers().begin(), readers().end(), isLess);
    most->stop(HttpOutcome::TooLarge, "too many long answers come at once");
    // It ends later, and as much may come until then.
    most->m_reply.body = {};
}

/// Thousands may be stopped at one time, and this may be one of libcurl's callbacks.
void HttpExchange::stop(HttpOutcome outcome, std::string problem)
{
    if (isStopped())
        return;
    m_stopped = Ending{outcome, std::move(problem)};
    later([self = shared_from_this()] { self->finish(*self->m_stopped); });
}

void HttpExchange::ended(CURLcode code)
{
    if (m_stopped) {
        finish(*m_stopped);
        return;
    }
    if (sendAgain(code))
        return;
    if (isWhole())
        code = CURLE_OK;
    else if (code == CURLE_OK && m_isPlain && m_length)
        code = CURLE_PARTIAL_FILE;
    if (code == CURLE_OK) {
        m_reply.status =
            static_cast<unsigned>(infoOf<long>(m_transfer.get(), CURLINFO_RESPONSE_CODE));
        m_reply.charset = charsetOf(infoOf<char *>(m_transfer.get(), CURLINFO_CONTENT_TYPE));
    }
    finish(endingOf(code));
}

HttpExchange::Ending HttpExchange::endingOf(CURLcode code) const
{
    const auto number = code == CURLE_COULDNT_CONNECT && m_connections->socketError() != 0
        ? m_connections->socketError()
        : static_cast<int>(infoOf<long>(m_transfer.get(), CURLINFO_OS_ERRNO));
    const bool isNoWay = code == CURLE_COULDNT_CONNECT
        && (number == ECONNREFUSED || number == EHOSTUNREACH || number == ENETUNREACH);
    switch (code) {
    case CURLE_OK:
        return {HttpOutcome::Answered, {}};
    case CURLE_FILESIZE_EXCEEDED:
        return {HttpOutcome::TooLarge, longerThan(m_request.maxBytes)};
    case CURLE_BAD_CONTENT_ENCODING: // newer libcurls look themselves
        return {HttpOutcome::Broken, "its answer is packed"};
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return {HttpOutcome::Broken, "Connection terminated unexpectedly"};
    case CURLE_ABORTED_BY_CALLBACK:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_FUNCTION_ARGUMENT: // for a status line behind the body
    case CURLE_RECV_ERROR: // for the size of a piece
    case CURLE_OUT_OF_MEMORY: // for a line of its head
        if (number == 0)
            return {HttpOutcome::Broken, "its answer isn't HTTP"};
        [[fallthrough]];
    default:
        return {isNoWay ? HttpOutcome::Unreachable : HttpOutcome::Broken,
            number != 0 ? std::strerror(number) : curl_easy_strerror(code)};
    }
}

void HttpExchange::finish(Ending ending)
{
    const auto self = shared_from_this();
    if (!m_done)
        return;
    if (m_callerLeft != 0)
        g_cancellable_disconnect(m_request.caller.cancellable.get(), m_callerLeft);
    if (m_connections)
        m_connections->remove(m_transfer.get());
    m_transfer.reset();
    removeReader(this);
    giveBackSpareMemorySoon();
    m_reply.outcome = ending.outcome;
    m_reply.problem = std::move(ending.problem);
    if (ending.outcome != HttpOutcome::Answered)
        m_reply.body = {};
    const size_t size = m_reply.body.size();
    if (size > limits::documentAtOnce)
        m_reply.place = Backlog::instance().hold(size, std::move(m_reply.place));
    m_seatTimer.stop();
    m_seat.reset();
    const HttpCallback done = std::exchange(m_done, nullptr);
    done(std::move(m_reply));
}

} // namespace bridge
