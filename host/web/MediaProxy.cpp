#include "web/MediaProxy.h"

#include "web/ArtProxy.h"
#include "web/Fetch.h"

#include <QRegularExpression>
#include <QTimer>

namespace {

constexpr gsize pieceSize = 65536;
constexpr std::chrono::seconds longestSilence(10);

bool isMedia(const QByteArray &type)
{
    return type.startsWith("audio/") || type.startsWith("video/")
        || type.startsWith("application/ogg") || type.startsWith("application/octet-stream");
}

/// One range of bytes, or none: what players ask for.
QByteArray rangeOf(const Exchange &exchange)
{
    static const QRegularExpression one(QStringLiteral("\\Abytes=[0-9]{0,18}-[0-9]{0,18}\\z"));
    const QByteArray range = exchange.header("Range");
    return one.match(QString::fromLatin1(range)).hasMatch() ? range : QByteArray();
}

/// Passes one body on, a piece at a time: the next is read when the client has taken the last.
/// Lives until one of both sides ends.
class MediaStream
{
public:
    MediaStream(ExchangePointer exchange, SoupSession *session, const QByteArray &url)
        : m_exchange(std::move(exchange))
    {
        m_exchange->setFinished([this] { endLater(); });
        m_exchange->setWritten([this] { read(); });
        QObject::connect(&m_silence, &QTimer::timeout, &m_silence, [this] { giveUp(); });
        m_silence.setSingleShot(true);
        m_silence.start(longestSilence);
        QList<QPair<QByteArray, QByteArray>> headers;
        if (!rangeOf(*m_exchange).isEmpty())
            headers.append({"Range", rangeOf(*m_exchange)});
        m_fetch = std::make_unique<Fetch>(
            session, url, headers, [this](const Fetch::Answer &answer) { begin(answer); });
    }

private:
    struct Read
    {
        GRef<GCancellable> cancellable;
        MediaStream *stream;
    };

    void giveUp()
    {
        if (!m_exchange->isOpen())
            m_exchange->cut(); // it has begun
        m_exchange->refuse(504, "noAnswer",
            QStringLiteral("Its server has sent nothing for 10 seconds. Try again, or play another "
                           "track."));
        endLater();
    }

    void begin(const Fetch::Answer &answer)
    {
        m_silence.stop();
        const QByteArray type = answer.headers != nullptr
            ? soup_message_headers_get_content_type(answer.headers, nullptr)
            : nullptr;
        const bool isThere = answer.status == 200 || answer.status == 206;
        if (!isThere || !isMedia(type)) {
            m_exchange->refuse(answer.status == 416 ? 416 : 502, "noMedia",
                !answer.problem.isEmpty() ? answer.problem
                    : isThere             ? QStringLiteral("What is at this address is no sound.")
                              : QStringLiteral("Its server answered %1.").arg(answer.status));
            endLater();
            return;
        }
        m_exchange->setHeader("Accept-Ranges", "bytes");
        m_exchange->setHeader("Cache-Control", "no-store");
        const char *range = soup_message_headers_get_one(answer.headers, "Content-Range");
        if (answer.status == 206 && range != nullptr)
            m_exchange->setHeader("Content-Range", range);
        const bool isCounted =
            soup_message_headers_get_encoding(answer.headers) == SOUP_ENCODING_CONTENT_LENGTH;
        m_length = isCounted ? soup_message_headers_get_content_length(answer.headers) : -1;
        m_body = answer.body;
        m_exchange->begin(answer.status, type.constData(), m_length);
        read();
    }

    void read()
    {
        if (m_isReading || m_body == nullptr || m_exchange->unsent() > 1)
            return;
        m_isReading = true;
        m_silence.start(longestSilence);
        auto *read = new Read{shareRef(m_fetch->cancellable()), this};
        g_input_stream_read_bytes_async(
            m_body, pieceSize, G_PRIORITY_DEFAULT, m_fetch->cancellable(), onRead, read);
    }

    static void onRead(GObject *stream, GAsyncResult *result, gpointer data)
    {
        const std::unique_ptr<Read> read(static_cast<Read *>(data));
        GError *error = nullptr;
        const GBytesRef bytes(
            g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, &error));
        g_clear_error(&error);
        if (g_cancellable_is_cancelled(read->cancellable.get()) == FALSE)
            read->stream->take(bytes.get());
    }

    void take(GBytes *bytes)
    {
        m_isReading = false;
        m_silence.stop();
        gsize size = 0;
        const auto *data =
            bytes != nullptr ? static_cast<const char *>(g_bytes_get_data(bytes, &size)) : nullptr;
        if (size == 0) {
            m_body = nullptr;
            const bool isWhole = bytes != nullptr && (m_length < 0 || m_sent == m_length);
            isWhole ? m_exchange->end() : m_exchange->cut();
            return;
        }
        m_sent += goffset(size);
        m_exchange->send(QByteArray(data, int(size)));
        read();
    }

    void endLater()
    {
        m_silence.stop();
        m_body = nullptr;
        m_exchange->setFinished(nullptr);
        m_exchange->setWritten(nullptr);
        QTimer::singleShot(0, [this] { delete this; });
    }

    ExchangePointer m_exchange;
    std::unique_ptr<Fetch> m_fetch;
    GInputStream *m_body = nullptr;
    QTimer m_silence;
    goffset m_length = -1;
    goffset m_sent = 0;
    bool m_isReading = false;
};

} // namespace

MediaProxy::MediaProxy(
    const CarriedAddresses &carried, const LocalServers &local, HttpServer &server)
    : m_carried(carried)
    , m_session(newFetchSession(local))
{
    // A player that is paused reads nothing for long.
    g_object_set(m_session.get(), "timeout", 300, nullptr);
    server.route("GET", "/media/", [this](const ExchangePointer &exchange) { answer(exchange); });
}

void MediaProxy::answer(const ExchangePointer &exchange)
{
    const QByteArray url = addressInPath(*exchange, "/media/");
    if (m_carried.hasMedia(url) && url.left(8).toLower() == "https://") {
        exchange->refuse(502, "noMedia",
            QStringLiteral("This track's address is https, which the page can't play. Play it on "
                           "this machine."));
        return;
    }
    if (url.left(7).toLower() != "http://" || !m_carried.hasMedia(url)) {
        exchange->refuse(404, "unknownMedia",
            QStringLiteral("No row has named this track since the program was started."));
        return;
    }
    new MediaStream(exchange, m_session.get(), url);
}
