#include "web/LocalServers.h"

#include "chain/ServiceCalls.h"

#include <api/core/CMRoot.h>
#include <api/core/orka.h>

#include <QDBusPendingCallWatcher>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int longest = 10'000; // milliseconds

/// By whatever form of the address, 0.0.0.0 included, which leads there, too.
bool isLoopback(GInetAddress *address)
{
    static const QByteArray mapped = QByteArray(10, '\0') + "\xff\xff";
    const guint8 *bytes = g_inet_address_to_bytes(address);
    const auto size = int(g_inet_address_get_native_size(address));
    if (QByteArray(reinterpret_cast<const char *>(bytes), size).startsWith(mapped)) {
        const GRef<GInetAddress> plain(
            g_inet_address_new_from_bytes(bytes + mapped.size(), G_SOCKET_FAMILY_IPV4));
        return isLoopback(plain.get());
    }
    return g_inet_address_get_is_loopback(address) != FALSE
        || g_inet_address_get_is_any(address) != FALSE;
}

} // namespace

LocalServers::LocalServers(LiveChain &chain)
    : m_chain(chain)
{
    connect(CMRoot(), &CMRootWorker::rowsChanged, this, [this](const CMPath &path) {
        if (path == m_chain.root())
            read();
    });
    connect(&chain, &LiveChain::changed, this, &LocalServers::read);
    read();
}

void LocalServers::read()
{
    const QStringList objects = m_chain.serviceObjects();
    for (auto port = m_ports.begin(); port != m_ports.end();)
        port = objects.contains(port.key()) ? std::next(port) : m_ports.erase(port);
    for (const QString &object : objects)
        ask(object);
}

void LocalServers::ask(const QString &object)
{
    const QDBusMessage question = ServiceCalls::propertyCall(object, QStringLiteral("Location"));
    auto *call =
        new QDBusPendingCallWatcher(orkaDBusConnection().asyncCall(question, longest), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, object] {
        call->deleteLater();
        const QUrl location(valueOf(ServiceCalls::answerOf(call->reply())).toString());
        const GRef<GInetAddress> host(
            g_inet_address_new_from_string(location.host().toUtf8().constData()));
        if (host && isLoopback(host.get()))
            m_ports.insert(object, quint16(location.port(80)));
        else
            m_ports.remove(object);
    });
}

bool LocalServers::admits(GSocketAddress *address) const
{
    if (address == nullptr || !G_IS_INET_SOCKET_ADDRESS(address))
        return false;
    auto *inet = G_INET_SOCKET_ADDRESS(address);
    const quint16 port = g_inet_socket_address_get_port(inet);
    return !isLoopback(g_inet_socket_address_get_address(inet))
        || std::any_of(m_ports.begin(), m_ports.end(), [=](quint16 one) { return one == port; });
}
