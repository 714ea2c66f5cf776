#include "web/ArtProxy.h"

#include "Failure.h"
#include "web/Fetch.h"
#include "web/Picture.h"

#include <QRunnable>
#include <QStandardPaths>
#include <QTimer>

namespace {

constexpr int mostBytes = 10 << 20;
constexpr std::chrono::seconds longest(10);
constexpr qint64 failedFor = 60'000'000; // microseconds
constexpr int mostWidth = 1024;

QByteArray keyOf(const QByteArray &url, int width)
{
    return QByteArray::number(width) + ' ' + url;
}

/// 0 where none is asked for. Throws Failure (wrong usage).
int widthOf(const Exchange &exchange)
{
    const QString text = exchange.parameter(QStringLiteral("w"));
    bool isNumber = false;
    const int width = text.toInt(&isNumber);
    if (text.isEmpty())
        return 0;
    if (!isNumber || width < 1 || width > mostWidth)
        throw wrongUsage(QStringLiteral("\"w\" is a number from 1 to %1.").arg(mostWidth));
    return width;
}

void give(const ExchangePointer &exchange, const QByteArray &picture)
{
    exchange->answer(200, pictureType(picture), picture, Exchange::Keep);
}

void giveNone(const ExchangePointer &exchange, const QString &why)
{
    exchange->refuse(502, "noPicture", QStringLiteral("This picture can't be had: %1").arg(why));
}

} // namespace

QByteArray addressInPath(const Exchange &exchange, const char *prefix)
{
    QByteArray text = QByteArray::fromPercentEncoding(exchange.rawPath().mid(int(qstrlen(prefix))));
    text.replace('-', '+').replace('_', '/');
    return QByteArray::fromBase64(text, QByteArray::AbortOnBase64DecodingErrors);
}

/// One picture on its way, and who waits for it.
class ArtProxy::Job
{
public:
    using Done = std::function<void(const QByteArray &picture, const QString &problem)>;

    Job(SoupSession *session, const QByteArray &url, Done done)
        : m_done(std::move(done))
    {
        QObject::connect(&m_limit, &QTimer::timeout, &m_limit,
            [this] { m_done({}, QStringLiteral("it took longer than 10 seconds.")); });
        m_limit.setSingleShot(true);
        m_limit.start(longest);
        m_fetch = std::make_unique<Fetch>(session, url, QList<QPair<QByteArray, QByteArray>>(),
            [this](const Fetch::Answer &answer) {
                if (!answer.problem.isEmpty() || answer.status != 200) {
                    finishLater(answer.problem.isEmpty()
                            ? QStringLiteral("its server answered %1.").arg(answer.status)
                            : answer.problem);
                    return;
                }
                m_body = answer.body;
                read();
            });
    }

    std::vector<std::pair<ExchangePointer, int>> waiting;

private:
    struct Read
    {
        GRef<GCancellable> cancellable;
        Job *job;
    };

    void read()
    {
        auto *read = new Read{shareRef(m_fetch->cancellable()), this};
        g_input_stream_read_bytes_async(
            m_body, 65536, G_PRIORITY_DEFAULT, m_fetch->cancellable(), onRead, read);
    }

    static void onRead(GObject *stream, GAsyncResult *result, gpointer data)
    {
        const std::unique_ptr<Read> read(static_cast<Read *>(data));
        GError *error = nullptr;
        const GBytesRef bytes(
            g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, &error));
        const QString problem = takeMessage(error);
        if (g_cancellable_is_cancelled(read->cancellable.get()) == FALSE)
            read->job->take(bytes.get(), problem);
    }

    void take(GBytes *bytes, const QString &problem)
    {
        if (bytes == nullptr) {
            m_done({}, problem);
            return;
        }
        gsize size = 0;
        const auto *data = static_cast<const char *>(g_bytes_get_data(bytes, &size));
        m_picture.append(data, int(size));
        const bool isPicture = m_picture.size() < 16 || pictureType(m_picture) != nullptr;
        if (!isPicture || (size == 0 && m_picture.size() < 16)) {
            m_done({}, QStringLiteral("it is no picture."));
        } else if (m_picture.size() > mostBytes) {
            m_done({}, QStringLiteral("it is larger than 10 MiB."));
        } else if (size == 0) {
            m_done(m_picture, {});
        } else {
            read();
        }
    }

    /// Not from inside the constructor.
    void finishLater(const QString &problem)
    {
        QTimer::singleShot(0, &m_limit, [this, problem] { m_done({}, problem); });
    }

    Done m_done;
    QTimer m_limit;
    std::unique_ptr<Fetch> m_fetch;
    GInputStream *m_body = nullptr;
    QByteArray m_picture;
};

ArtProxy::ArtProxy(const CarriedAddresses &carried, const LocalServers &local, HttpServer &server)
    : m_carried(carried)
    , m_session(newFetchSession(local))
    , m_cache(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
          + QStringLiteral("/orka/art"))
{
    m_scalers.setMaxThreadCount(1);
    server.route("GET", "/proxy/", [this](const ExchangePointer &exchange) { answer(exchange); });
}

ArtProxy::~ArtProxy()
{
    m_scalers.waitForDone();
}

void ArtProxy::answer(const ExchangePointer &exchange)
{
    const QByteArray url = addressInPath(*exchange, "/proxy/");
    if (url.left(7).toLower() != "http://" || !m_carried.hasArt(url)) {
        exchange->refuse(404, "unknownPicture",
            QStringLiteral("No row has named this picture since the program was started."));
        return;
    }
    const int width = widthOf(*exchange);
    const QByteArray kept = width > 0 ? m_cache.find(keyOf(url, width)) : QByteArray();
    if (!kept.isEmpty()) {
        give(exchange, kept);
        return;
    }
    const QByteArray original = m_cache.find(keyOf(url, 0));
    if (!original.isEmpty()) {
        giveFromOriginal(exchange, url, width, original);
        return;
    }
    if (m_failed.value(url) > g_get_monotonic_time()) {
        giveNone(exchange, QStringLiteral("it could not be had a moment ago."));
        return;
    }
    if (m_jobs.count(url) == 0)
        begin(url);
    m_jobs[url]->waiting.emplace_back(exchange, width);
}

/// It isn't asked for again at once.
void ArtProxy::fail(const QByteArray &url)
{
    if (m_failed.size() > 1000)
        m_failed.clear();
    m_failed.insert(url, g_get_monotonic_time() + failedFor);
}

void ArtProxy::begin(const QByteArray &url)
{
    m_jobs[url] = std::make_unique<Job>(
        m_session.get(), url, [this, url](const QByteArray &picture, const QString &problem) {
            finish(url, picture, problem);
        });
}

void ArtProxy::finish(const QByteArray &url, const QByteArray &picture, const QString &problem)
{
    const auto node = m_jobs.extract(url);
    const std::unique_ptr<Job> &job = node.mapped();
    if (picture.isEmpty()) {
        fail(url);
    } else {
        m_cache.keep(keyOf(url, 0), picture);
    }
    for (const auto &[exchange, width] : job->waiting) {
        if (picture.isEmpty()) {
            giveNone(exchange, problem);
        } else {
            giveFromOriginal(exchange, url, width, picture);
        }
    }
}

void ArtProxy::giveFromOriginal(
    const ExchangePointer &exchange, const QByteArray &url, int width, const QByteArray &picture)
{
    // Made and let go of on this thread: an exchange is no business of another.
    auto *scaling = new Scaling{exchange, url, width, picture, {}};
    m_scalers.start(QRunnable::create([this, scaling] {
        scaling->scaled = scaledPicture(scaling->picture, scaling->width);
        QMetaObject::invokeMethod(
            &m_context, [this, scaling] { finishScaling(std::unique_ptr<Scaling>(scaling)); },
            Qt::QueuedConnection);
    }));
}

void ArtProxy::finishScaling(std::unique_ptr<Scaling> scaling)
{
    if (scaling->scaled.isEmpty()) {
        m_cache.forget(keyOf(scaling->url, 0));
        fail(scaling->url);
        giveNone(scaling->exchange, QStringLiteral("it can't be read, or is too large."));
        return;
    }
    if (scaling->width > 0)
        m_cache.keep(keyOf(scaling->url, scaling->width), scaling->scaled);
    give(scaling->exchange, scaling->scaled);
}
