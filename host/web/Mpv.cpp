#include "web/Mpv.h"

#include <QJsonDocument>
#include <QStandardPaths>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int longestLine = 1 << 20;
constexpr std::chrono::seconds pulse(2);
constexpr std::chrono::seconds patience(6);

} // namespace

bool Mpv::isInstalled()
{
    return !QStandardPaths::findExecutable(QStringLiteral("mpv")).isEmpty();
}

Mpv::Mpv(QObject *parent)
    : QObject(parent)
    , m_process(ChildProcess::Service)
{
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, pair) != 0)
        return; // without descriptors it hears nothing and ends
    m_socket = pair[0];
    m_process.inherit(pair[1]);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::stateChanged, this, [this](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            emit ended();
    });
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Mpv::read);
    connect(&m_pulse, &QTimer::timeout, this, [this] { send({"get_property", "pid"}); });
    m_pulse.start(pulse);
    connect(&m_patience, &QTimer::timeout, this, &Mpv::silent);
    m_patience.setSingleShot(true);
    m_patience.start(patience);
    m_process.start(QStringLiteral("mpv"),
        {QStringLiteral("--idle"), QStringLiteral("--no-video"), QStringLiteral("--no-terminal"),
            QStringLiteral("--ytdl=no"), QStringLiteral("--load-scripts=no"),
            // Whatever the user's own mpv does: the next track follows.
            QStringLiteral("--keep-open=no"), QStringLiteral("--loop-file=no"),
            QStringLiteral("--input-ipc-client=fd://%1").arg(pair[1])});
    close(pair[1]);
}

Mpv::~Mpv()
{
    m_process.disconnect(this);
    m_notifier.reset(); // before its descriptor
    if (m_socket >= 0)
        close(m_socket);
    m_process.stop();
}

void Mpv::send(const QJsonArray &command)
{
    const QByteArray line = QJsonDocument(QJsonObject{{QStringLiteral("command"), command}})
                                .toJson(QJsonDocument::Compact)
        + '\n';
    static_cast<void>(::send(m_socket, line.constData(), size_t(line.size()), MSG_NOSIGNAL));
}

void Mpv::read()
{
    char buffer[8192];
    const ssize_t size = ::read(m_socket, buffer, sizeof(buffer));
    if (size == 0 || m_unread.size() > longestLine)
        m_notifier->setEnabled(false); // the process's end says the rest
    if (size <= 0)
        return;
    m_patience.start();
    m_unread.append(buffer, int(size));
    for (int end = m_unread.indexOf('\n'); end >= 0; end = m_unread.indexOf('\n')) {
        const QJsonObject event = QJsonDocument::fromJson(m_unread.left(end)).object();
        m_unread.remove(0, end + 1);
        emit said(event);
    }
}
