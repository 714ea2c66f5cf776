#include "web/TokenTries.h"

#include <QCryptographicHash>

#include <algorithm>

namespace {

constexpr int mostWrongTries = 10;
constexpr int mostAddresses = 1000;
constexpr qint64 minute = 60'000'000; // microseconds

/// Four bytes of an IPv4 address, or the first eight, the network, of an IPv6 one.
QByteArray networkOf(const Exchange &exchange)
{
    GSocketAddress *remote = soup_server_message_get_remote_address(exchange.message());
    if (remote == nullptr || !G_IS_INET_SOCKET_ADDRESS(remote))
        return {};
    GInetAddress *address = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(remote));
    const QByteArray bytes(reinterpret_cast<const char *>(g_inet_address_to_bytes(address)),
        int(g_inet_address_get_native_size(address)));
    static const QByteArray mapped = QByteArray(10, '\0') + "\xff\xff";
    return bytes.startsWith(mapped) ? bytes.mid(12) : bytes.left(8);
}

bool isOver(qint64 since)
{
    return g_get_monotonic_time() - since > minute;
}

} // namespace

bool TokenTries::areUsedUp(const Exchange &exchange) const
{
    const Tries tries = m_tries.value(networkOf(exchange));
    return tries.tokens.size() >= mostWrongTries && !isOver(tries.since);
}

void TokenTries::note(const Exchange &exchange, const QByteArray &wrong)
{
    makeRoom();
    Tries &tries = m_tries[networkOf(exchange)];
    if (isOver(tries.since))
        tries = {g_get_monotonic_time()};
    tries.tokens.insert(QCryptographicHash::hash(wrong, QCryptographicHash::Sha256));
}

void TokenTries::makeRoom()
{
    if (m_tries.size() < mostAddresses)
        return;
    const auto eldest = std::min_element(m_tries.begin(), m_tries.end(),
        [](const Tries &a, const Tries &b) { return a.since < b.since; });
    m_tries.erase(eldest);
}
