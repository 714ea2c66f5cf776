#include "web/RequestGuard.h"

#include "Failure.h"
#include "output/JsonOutput.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QSysInfo>

namespace {

constexpr int tokenSize = 18; // bytes

/// Takes the same time wherever they differ.
bool isSame(const QByteArray &a, const QByteArray &b)
{
    const auto hash = [](const QByteArray &text) {
        return QCryptographicHash::hash(text, QCryptographicHash::Sha256);
    };
    return hash(a) == hash(b);
}

/// "[::1]:8770" without its port and brackets.
QByteArray nameOf(const QByteArray &host)
{
    if (host.startsWith('['))
        return host.mid(1, host.indexOf(']') - 1);
    return host.left(host.indexOf(':') < 0 ? host.size() : host.indexOf(':'));
}

/// Cookies are a host's, whatever the port; each program of it has its own.
QByteArray cookieName(const Exchange &exchange)
{
    GSocketAddress *local = soup_server_message_get_local_address(exchange.message());
    const guint16 port = local != nullptr && G_IS_INET_SOCKET_ADDRESS(local)
        ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(local))
        : guint16(0);
    return "orka-token-" + QByteArray::number(port) + '=';
}

/// The tokens that a request carries.
QList<QByteArray> tokensOf(const Exchange &exchange)
{
    const QByteArray authorization = exchange.header("Authorization");
    if (authorization.startsWith("Bearer "))
        return {authorization.mid(7)};
    QList<QByteArray> tokens;
    const QByteArray name = cookieName(exchange);
    for (const QByteArray &cookie : exchange.header("Cookie").split(';')) {
        if (cookie.trimmed().startsWith(name))
            tokens.append(cookie.trimmed().mid(name.size()));
    }
    return tokens;
}

} // namespace

bool RequestGuard::isOurName(const QByteArray &host) const
{
    const QByteArray name = nameOf(host).toLower();
    if (name == "localhost")
        return true;
    const GRef<GInetAddress> address(g_inet_address_new_from_string(name.constData()));
    if (address)
        return !m_token.isEmpty() || g_inet_address_get_is_loopback(address.get());
    const QByteArray ours = QSysInfo::machineHostName().toUtf8().toLower();
    return !m_token.isEmpty() && (name == ours || name == ours + ".local");
}

bool RequestGuard::isFromOurPage(const Exchange &exchange) const
{
    const QByteArray origin = exchange.header("Origin");
    if (!origin.isEmpty()
        && origin != (m_token.isEmpty() ? "http://" : "https://") + exchange.header("Host"))
        return false;
    const QByteArray site = exchange.header("Sec-Fetch-Site");
    if (site.isEmpty() || site == "same-origin" || site == "none")
        return true;
    // A link on another page may lead here.
    return exchange.header("Sec-Fetch-Mode") == "navigate" && exchange.method() == "GET"
        && exchange.rawPath() == "/";
}

void RequestGuard::openToNetwork()
{
    QByteArray bytes(tokenSize, Qt::Uninitialized);
    QRandomGenerator::system()->generate(bytes.begin(), bytes.end());
    m_token = bytes.toBase64(QByteArray::Base64UrlEncoding);
}

/// False after it has refused the request.
bool RequestGuard::isRight(Exchange &exchange, const QList<QByteArray> &said)
{
    if (!said.isEmpty() && m_tries.areUsedUp(exchange)) {
        exchange.setHeader("Retry-After", "60");
        exchange.refuse(429, "tooManyTries",
            QStringLiteral("Too many wrong tokens came from your address. Wait a minute, and scan "
                           "the code again."));
        return false;
    }
    for (const QByteArray &token : said) {
        if (isSame(token, m_token))
            return true;
    }
    for (const QByteArray &token : said)
        m_tries.note(exchange, token);
    return false;
}

void RequestGuard::unlock(Exchange &exchange)
{
    const OrkaHash body = OrkaHash::fromVariant(valueFromJson(QString::fromUtf8(exchange.body())));
    const QString token = body.value(QStringLiteral("token")).toString();
    if (!isRight(exchange, {token.toUtf8()})) {
        exchange.refuse(401, "wrongToken",
            QStringLiteral("That is not the token that this run of the program printed."));
        return;
    }
    exchange.setHeader("Set-Cookie",
        cookieName(exchange) + m_token + "; Path=/; HttpOnly; Secure; SameSite=Strict");
    exchange.answer(valueDocument(true));
}

bool RequestGuard::admits(Exchange &exchange)
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
    const QByteArray path = exchange.rawPath();
    const bool isPublic = path == "/api/session" || path.count('/') == 1; // the page's own files
    if (!m_token.isEmpty() && !isPublic && !isRight(exchange, tokensOf(exchange))) {
        exchange.refuse(401, "noToken",
            QStringLiteral("This needs the token that the program printed: open the address in its "
                           "code, or send it as \"Authorization: Bearer TOKEN\"."));
        return false;
    }
    return true;
}
