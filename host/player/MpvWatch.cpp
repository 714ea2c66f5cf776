#include "player/MpvWatch.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <sys/socket.h>
#include <unistd.h>

MpvWatch::MpvWatch(QObject *parent)
    : QObject(parent)
{
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, pair) == 0) {
        m_ownEnd = pair[0];
        m_playerEnd = pair[1];
    }
}

MpvWatch::~MpvWatch()
{
    delete findChild<QSocketNotifier *>(); // before its descriptor
    for (const int descriptor : {m_ownEnd, m_playerEnd}) {
        if (descriptor >= 0)
            close(descriptor);
    }
}

void MpvWatch::start()
{
    if (m_ownEnd < 0)
        return;
    close(m_playerEnd);
    m_playerEnd = -1;
    auto *notifier = new QSocketNotifier(m_ownEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &MpvWatch::readAll);
    const QByteArray request = R"({"command":["observe_property",1,"path"]})"
                               "\n";
    // A player that is gone already shows in its exit status.
    static_cast<void>(send(m_ownEnd, request.constData(), size_t(request.size()), MSG_NOSIGNAL));
}

void MpvWatch::readAll()
{
    char buffer[4096];
    const ssize_t size = read(m_ownEnd, buffer, sizeof(buffer));
    if (size == 0)
        findChild<QSocketNotifier *>()->setEnabled(false); // the player has ended
    if (size <= 0)
        return;
    m_unread.append(buffer, int(size));
    for (int end = m_unread.indexOf('\n'); end >= 0; end = m_unread.indexOf('\n')) {
        takeLine(m_unread.left(end));
        m_unread.remove(0, end + 1);
    }
}

void MpvWatch::takeLine(const QByteArray &line)
{
    const QJsonObject event = QJsonDocument::fromJson(line).object();
    const QJsonValue path = event.value(QStringLiteral("data"));
    if (event.value(QStringLiteral("name")) == QLatin1String("path") && path.isString())
        emit playing(path.toString());
}
