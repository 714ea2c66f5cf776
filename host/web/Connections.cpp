#include "web/Connections.h"

#include <algorithm>

namespace {

constexpr int mostConnections = 256;
// Connections that wait to be taken; a page opens several at once, and one that finds no place
// tries again after a second.
constexpr int mostWaiting = 512;
constexpr qint64 longestIdle = 30'000'000; // microseconds
constexpr guint longestSilence = 60; // seconds, of a client that doesn't read its answer

void hangUp(GSocketConnection *stream)
{
    // The reader sees the end of the stream and lets go of it.
    g_socket_shutdown(g_socket_connection_get_socket(stream), TRUE, TRUE, nullptr);
}

} // namespace

Connections::Connections(Accepted accepted)
    : m_accepted(std::move(accepted))
    , m_service(g_socket_service_new())
{
    g_socket_listener_set_backlog(G_SOCKET_LISTENER(m_service.get()), mostWaiting);
    g_signal_connect(m_service.get(), "incoming", G_CALLBACK(onIncoming), this);
    QObject::connect(&m_sweep, &QTimer::timeout, &m_sweep, [this] { sweep(); });
    m_sweep.start(5000);
}

Connections::~Connections()
{
    g_socket_service_stop(m_service.get());
    g_socket_listener_close(G_SOCKET_LISTENER(m_service.get()));
    g_signal_handlers_disconnect_by_data(m_service.get(), this);
    for (auto it = m_addresses.cbegin(); it != m_addresses.cend(); ++it)
        g_object_weak_unref(it.key(), onGone, this);
}

QString Connections::listen(const QString &address, quint16 port, bool &isTaken)
{
    const GRef<GSocketAddress> socketAddress(
        g_inet_socket_address_new_from_string(address.toUtf8().constData(), port));
    if (!socketAddress)
        return QStringLiteral("it is no IP address");
    GError *error = nullptr;
    g_socket_listener_add_address(G_SOCKET_LISTENER(m_service.get()), socketAddress.get(),
        G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, nullptr, nullptr, &error);
    isTaken = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_ADDRESS_IN_USE) != FALSE;
    return takeMessage(error);
}

gboolean Connections::onIncoming(
    GSocketService *, GSocketConnection *stream, GObject *, gpointer connections)
{
    static_cast<Connections *>(connections)->accept(stream);
    return TRUE;
}

void Connections::accept(GSocketConnection *stream)
{
    const GRef<GSocketAddress> local(g_socket_connection_get_local_address(stream, nullptr));
    const GRef<GSocketAddress> remote(g_socket_connection_get_remote_address(stream, nullptr));
    if (!local || !remote)
        return; // it has left already
    makeRoom();
    GSocket *socket = g_socket_connection_get_socket(stream);
    g_socket_set_timeout(socket, longestSilence);
    g_socket_set_option(socket, 6 /* IPPROTO_TCP */, 1 /* TCP_NODELAY */, 1, nullptr);
    m_addresses.insert(G_OBJECT(stream), remote.get());
    m_connections.insert(remote.get(), {stream, g_get_monotonic_time(), false});
    g_object_weak_ref(G_OBJECT(stream), onGone, this);
    m_accepted(stream, local.get(), remote.get());
}

void Connections::onGone(gpointer connections, GObject *stream)
{
    auto *self = static_cast<Connections *>(connections);
    self->m_connections.remove(self->m_addresses.take(stream));
}

void Connections::setBusy(GSocketAddress *remote, bool isBusy)
{
    const auto found = m_connections.find(remote);
    if (found == m_connections.end())
        return;
    found->isBusy = isBusy;
    found->idleSince = g_get_monotonic_time();
}

void Connections::makeRoom()
{
    if (m_connections.size() < mostConnections)
        return;
    const auto eldest = std::min_element(
        m_connections.begin(), m_connections.end(), [](const auto &a, const auto &b) {
            return std::make_pair(a.isBusy, a.idleSince) < std::make_pair(b.isBusy, b.idleSince);
        });
    hangUp(eldest->stream);
}

void Connections::sweep()
{
    const qint64 now = g_get_monotonic_time();
    for (const Connection &connection : qAsConst(m_connections)) {
        if (!connection.isBusy && now - connection.idleSince > longestIdle)
            hangUp(connection.stream);
    }
}
