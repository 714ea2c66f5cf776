#include "web/Exchange.h"

#include "Failure.h"
#include "output/JsonOutput.h"
#include "web/Compression.h"

#include <QCryptographicHash>

#include <poll.h>

namespace {

constexpr int worthCompressing = 1400; // bytes: one packet holds less

const char policy[] = "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
                      "media-src 'self'; connect-src 'self'; manifest-src 'self'; base-uri 'none'; "
                      "form-action 'none'; frame-ancestors 'none'; "
                      "require-trusted-types-for 'script'; trusted-types 'none'";

int httpStatus(int exitStatus)
{
    switch (exitStatus) {
    case WrongUsage:
        return 400;
    case Missing:
        return 503;
    case NoAnswer:
        return 504;
    default:
        return 502;
    }
}

QByteArray tagOf(const QByteArray &body)
{
    const QByteArray hash = QCryptographicHash::hash(body, QCryptographicHash::Sha1);
    return '"' + hash.toBase64(QByteArray::Base64UrlEncoding).left(20) + '"';
}

/// "gzip;q=0" says that it isn't wanted.
bool takesGzip(const QByteArray &acceptEncoding)
{
    GSList *codings = soup_header_parse_quality_list(acceptEncoding.constData(), nullptr);
    const auto isGzip = [](gconstpointer coding, gconstpointer name) {
        return g_ascii_strcasecmp(
            static_cast<const char *>(coding), static_cast<const char *>(name));
    };
    const bool takes = g_slist_find_custom(codings, "gzip", isGzip) != nullptr;
    soup_header_free_list(codings);
    return takes;
}

} // namespace

Exchange::Exchange(SoupServerMessage *message, bool isWhole)
    : m_message(shareRef(message))
    , m_isWhole(isWhole)
{
    GUri *uri = soup_server_message_get_uri(message);
    m_rawPath = g_uri_get_path(uri);
    m_query.setQuery(QString::fromUtf8(g_uri_get_query(uri)));
    g_signal_connect(message, "finished", G_CALLBACK(onFinished), this);
    g_signal_connect(message, "wrote-chunk", G_CALLBACK(onWroteChunk), this);
    if (isWhole)
        soup_server_message_pause(message);
}

Exchange::~Exchange()
{
    if (m_isWhole && isOpen())
        refuse(500, "internal", QStringLiteral("The program lost this request. Try again."));
    g_signal_handlers_disconnect_by_data(m_message.get(), this);
}

void Exchange::onFinished(SoupServerMessage *, gpointer exchange)
{
    auto *self = static_cast<Exchange *>(exchange);
    self->m_hasFinished = true;
    const auto finished = std::exchange(self->m_finished, nullptr);
    if (finished)
        finished(); // may let go of us
}

void Exchange::onWroteChunk(SoupServerMessage *, gpointer exchange)
{
    auto *self = static_cast<Exchange *>(exchange);
    --self->m_unsent;
    if (self->m_written)
        self->m_written();
}

bool Exchange::isWanted() const
{
    GSocket *socket = isOpen() ? soup_server_message_get_socket(m_message.get()) : nullptr;
    if (socket == nullptr)
        return false;
    pollfd descriptor{g_socket_get_fd(socket), POLLRDHUP, 0};
    return poll(&descriptor, 1, 0) <= 0;
}

QString Exchange::parameter(const QString &name) const
{
    return m_query.queryItemValue(name, QUrl::FullyDecoded);
}

QStringList Exchange::parameters(const QString &name) const
{
    return m_query.allQueryItemValues(name, QUrl::FullyDecoded);
}

QByteArray Exchange::body() const
{
    const GBytesRef bytes(
        soup_message_body_flatten(soup_server_message_get_request_body(m_message.get())));
    gsize size = 0;
    const auto *data = static_cast<const char *>(g_bytes_get_data(bytes.get(), &size));
    return {data, int(size)};
}

QByteArray Exchange::header(const char *name) const
{
    return soup_message_headers_get_one(
        soup_server_message_get_request_headers(m_message.get()), name);
}

void Exchange::setHeader(const char *name, const QByteArray &value)
{
    soup_message_headers_replace(
        soup_server_message_get_response_headers(m_message.get()), name, value.constData());
}

void Exchange::setCommonHeaders(const char *type)
{
    setHeader("Content-Type", type);
    setHeader("Content-Security-Policy", policy);
    setHeader("X-Content-Type-Options", "nosniff");
    setHeader("Referrer-Policy", "no-referrer");
    setHeader("Cross-Origin-Resource-Policy", "same-origin");
    setHeader("Cross-Origin-Opener-Policy", "same-origin");
}

void Exchange::answer(int status, const char *type, const QByteArray &body, Caching caching)
{
    if (!isOpen())
        return;
    m_isAnswered = true;
    setCommonHeaders(type);
    setHeader("Cache-Control",
        caching == Keep        ? "private, max-age=3600"
            : caching == Never ? "no-store"
                               : "no-cache");
    QByteArray sent = body;
    if (status == 200 && caching != Never) {
        const QByteArray tag = tagOf(body);
        setHeader("ETag", tag);
        setHeader("Vary", "Accept-Encoding");
        if (header("If-None-Match") == tag) {
            soup_server_message_set_status(m_message.get(), 304, nullptr);
            resume();
            return;
        }
    }
    const bool isText = !QByteArray(type).startsWith("image/") || QByteArray(type).contains("svg");
    if (isText && body.size() > worthCompressing && takesGzip(header("Accept-Encoding"))) {
        sent = gzipped(body);
        setHeader("Content-Encoding", "gzip");
    }
    soup_server_message_set_status(m_message.get(), guint(status), nullptr);
    soup_message_body_append(soup_server_message_get_response_body(m_message.get()),
        SOUP_MEMORY_COPY, sent.constData(), gsize(sent.size()));
    resume();
}

void Exchange::answer(const OrkaHash &document, int status)
{
    answer(status, "application/json", document.toJsonString().toUtf8(),
        status == 200 ? Revalidate : Never);
}

void Exchange::refuse(const Failure &failure)
{
    answer(errorDocument(failure.error()), httpStatus(failure.status()));
}

void Exchange::refuse(const CMError &error)
{
    const QString name = error.name();
    answer(errorDocument(error),
        name == QLatin1String("noAnswer")             ? 504
            : name == QLatin1String("notPlayable")    ? 400
            : name == QLatin1String("noMediaService") ? 503
                                                      : 502);
}

void Exchange::refuse(int status, const char *name, const QString &sentence)
{
    answer(errorDocument(Failure(WrongUsage, QString::fromLatin1(name), sentence).error()), status);
}

void Exchange::begin(int status, const char *type, goffset length)
{
    m_isAnswered = true;
    setCommonHeaders(type);
    SoupMessageHeaders *headers = soup_server_message_get_response_headers(m_message.get());
    const bool knowsChunks = soup_server_message_get_http_version(m_message.get()) != SOUP_HTTP_1_0;
    if (length >= 0) {
        soup_message_headers_set_content_length(headers, length);
    } else {
        soup_message_headers_set_encoding(
            headers, knowsChunks ? SOUP_ENCODING_CHUNKED : SOUP_ENCODING_EOF);
    }
    soup_message_body_set_accumulate(soup_server_message_get_response_body(m_message.get()), FALSE);
    soup_server_message_set_status(m_message.get(), guint(status), nullptr);
    resume();
}

void Exchange::send(const QByteArray &piece)
{
    if (m_hasFinished || piece.isEmpty())
        return;
    ++m_unsent;
    soup_message_body_append(soup_server_message_get_response_body(m_message.get()),
        SOUP_MEMORY_COPY, piece.constData(), gsize(piece.size()));
    resume();
}

void Exchange::end()
{
    if (m_hasFinished)
        return;
    soup_message_body_complete(soup_server_message_get_response_body(m_message.get()));
    resume();
}

void Exchange::cut()
{
    if (m_hasFinished)
        return;
    GSocket *socket = soup_server_message_get_socket(m_message.get());
    if (socket != nullptr)
        g_socket_shutdown(socket, TRUE, TRUE, nullptr);
    resume();
}

void Exchange::resume()
{
    if (m_isWhole && !m_hasFinished)
        soup_server_message_unpause(m_message.get());
}
