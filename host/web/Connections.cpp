#include "web/Connections.h"

#include "Text.h"

#include <algorithm>
#include <malloc.h>

namespace {

// A browser opens six; 50 of them find room.
constexpr size_t mostConnections = 512;
// Connections that wait to be taken; a page opens several at once, and one that finds no place
// tries again after a second.
constexpr int mostWaiting = 512;
constexpr qint64 longestIdle = 30'000'000; // microseconds
constexpr size_t worthGivingBack = 4 << 20;
constexpr guint longestSilence = 60; // seconds, of a client that doesn't read its answer

void hangUp(GSocket *socket)
{
    // The reader sees the end of the stream and lets go of it.
    g_socket_shutdown(socket, TRUE, TRUE, nullptr);
}

/// A long queue takes many times what the program needs between requests.
void giveBackSpareMemory()
{
    if (mallinfo2().fordblks > worthGivingBack)
        malloc_trim(0);
}

GRef<GSocket> listeningSocket(GSocketAddress *address, GError **error)
{
    GRef<GSocket> socket(g_socket_new(
        g_socket_address_get_family(address), G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, error));
    if (!socket || g_socket_bind(socket.get(), address, TRUE, error) == FALSE)
        return nullptr;
    g_socket_set_listen_backlog(socket.get(), mostWaiting);
    return g_socket_listen(socket.get(), error) != FALSE ? std::move(socket) : nullptr;
}

} // namespace

Connections::Connections(SoupServer *server)
    : m_server(server)
{
    g_signal_connect(server, "request-started", G_CALLBACK(onStarted), this);
    g_signal_connect(server, "request-read", G_CALLBACK(onRead), this);
    g_signal_connect(server, "request-finished", G_CALLBACK(onDone), this);
    g_signal_connect(server, "request-aborted", G_CALLBACK(onDone), this);
    QObject::connect(&m_sweep, &QTimer::timeout, &m_sweep, [this] { sweep(); });
    m_sweep.start(5000);
    QObject::connect(&m_spare, &QTimer::timeout, giveBackSpareMemory);
    m_spare.setSingleShot(true);
}

Connections::~Connections()
{
    g_signal_handlers_disconnect_by_data(m_server, this);
    for (const auto &connection : m_connections)
        g_object_weak_unref(connection.first, onGone, this);
}

QString Connections::listen(const QString &address, quint16 port, bool &isTaken)
{
    const GRef<GSocketAddress> socketAddress(
        g_inet_socket_address_new_from_string(address.toUtf8().constData(), port));
    if (!socketAddress)
        return Text::tr("it is no IP address");
    GError *error = nullptr;
    const GRef<GSocket> socket = listeningSocket(socketAddress.get(), &error);
    const bool isSecure = soup_server_get_tls_certificate(m_server) != nullptr;
    if (socket)
        soup_server_listen_socket(m_server, socket.get(),
            isSecure ? SOUP_SERVER_LISTEN_HTTPS : SoupServerListenOptions(0), &error);
    isTaken = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_ADDRESS_IN_USE) != FALSE;
    return takeMessage(error);
}

void Connections::onStarted(SoupServer *, SoupServerMessage *message, gpointer connections)
{
    auto *self = static_cast<Connections *>(connections);
    GSocket *socket = soup_server_message_get_socket(message);
    if (socket == nullptr)
        return; // it has left already
    self->makeRoom();
    g_socket_set_timeout(socket, longestSilence);
    g_object_weak_ref(G_OBJECT(message), onGone, self);
    self->m_connections[G_OBJECT(message)] = {
        GRef<GSocket>(shareRef(socket)), g_get_monotonic_time(), false};
}

void Connections::onRead(SoupServer *, SoupServerMessage *message, gpointer connections)
{
    auto *self = static_cast<Connections *>(connections);
    const auto found = self->m_connections.find(G_OBJECT(message));
    if (found != self->m_connections.end())
        found->second.isBusy = true;
}

void Connections::onDone(SoupServer *, SoupServerMessage *message, gpointer connections)
{
    auto *self = static_cast<Connections *>(connections);
    if (self->m_connections.erase(G_OBJECT(message)) > 0)
        g_object_weak_unref(G_OBJECT(message), onGone, self);
    if (!self->m_spare.isActive()) // not put off by the next one: there may always be one
        self->m_spare.start(2000);
}

void Connections::onGone(gpointer connections, GObject *message)
{
    static_cast<Connections *>(connections)->m_connections.erase(message);
}

void Connections::makeRoom()
{
    if (m_connections.size() < mostConnections)
        return;
    const auto eldest = std::min_element(
        m_connections.begin(), m_connections.end(), [](const auto &a, const auto &b) {
            return std::make_pair(a.second.isBusy, a.second.idleSince)
                < std::make_pair(b.second.isBusy, b.second.idleSince);
        });
    hangUp(eldest->second.socket.get());
}

void Connections::sweep()
{
    const qint64 now = g_get_monotonic_time();
    for (const auto &[message, connection] : m_connections) {
        if (!connection.isBusy && now - connection.idleSince > longestIdle)
            hangUp(connection.socket.get());
    }
}
