#include "web/RequestGuard.h"

#include <QSysInfo>

namespace {

/// "[::1]:8770" without its port and brackets.
QByteArray nameOf(const QByteArray &host)
{
    if (host.startsWith('['))
        return host.mid(1, host.indexOf(']') - 1);
    return host.left(host.indexOf(':') < 0 ? host.size() : host.indexOf(':'));
}

} // namespace

bool RequestGuard::isOurName(const QByteArray &host) const
{
    const QByteArray name = nameOf(host).toLower();
    if (name == "localhost")
        return true;
    const GRef<GInetAddress> address(g_inet_address_new_from_string(name.constData()));
    if (address)
        return m_isBeyondLoopback || g_inet_address_get_is_loopback(address.get());
    const QByteArray ours = QSysInfo::machineHostName().toUtf8().toLower();
    return m_isBeyondLoopback && (name == ours || name == ours + ".local");
}

bool RequestGuard::isFromOurPage(const Exchange &exchange) const
{
    const QByteArray origin = exchange.header("Origin");
    if (!origin.isEmpty() && origin != m_scheme + exchange.header("Host"))
        return false;
    const QByteArray site = exchange.header("Sec-Fetch-Site");
    if (site.isEmpty() || site == "same-origin" || site == "none")
        return true;
    // A link on another page may lead here.
    return exchange.header("Sec-Fetch-Mode") == "navigate" && exchange.method() == "GET"
        && exchange.rawPath() == "/";
}

bool RequestGuard::admits(Exchange &exchange) const
{
    if (!isOurName(exchange.header("Host"))) {
        exchange.refuse(421, "wrongHost",
            QStringLiteral("This program does not answer by that name. Use the address that it "
                           "printed."));
        return false;
    }
    if (!isFromOurPage(exchange)) {
        exchange.refuse(403, "otherSite",
            QStringLiteral("Pages of other sites can't use this program. Open its own page."));
        return false;
    }
    const bool isForm = exchange.method() == "POST"
        && !exchange.header("Content-Type").startsWith("application/json");
    if (isForm) {
        exchange.refuse(415, "wrongType",
            QStringLiteral("Send JSON, with the header \"Content-Type: application/json\"."));
        return false;
    }
    return true;
}
