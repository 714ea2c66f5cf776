#include "web/RequestGuard.h"

#include "Failure.h"
#include "output/JsonOutput.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QSysInfo>

namespace {

constexpr int tokenSize = 18; // bytes
constexpr int mostWrongTries = 10;
constexpr qint64 minute = 60'000'000; // microseconds
const char cookieName[] = "orka-token=";

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

bool RequestGuard::hasToken(const Exchange &exchange) const
{
    const QByteArray authorization = exchange.header("Authorization");
    if (authorization.startsWith("Bearer "))
        return isSame(authorization.mid(7), m_token);
    for (const QByteArray &cookie : exchange.header("Cookie").split(';')) {
        if (cookie.trimmed().startsWith(cookieName))
            return isSame(cookie.trimmed().mid(int(qstrlen(cookieName))), m_token);
    }
    return false;
}

void RequestGuard::unlock(Exchange &exchange)
{
    const qint64 now = g_get_monotonic_time();
    if (now - m_minute > minute) {
        m_minute = now;
        m_wrongTries = 0;
    }
    if (m_wrongTries >= mostWrongTries) {
        exchange.refuse(429, "tooManyTries",
            QStringLiteral("Too many wrong tokens. Wait a minute, and scan the code again."));
        return;
    }
    const OrkaHash body = OrkaHash::fromVariant(valueFromJson(QString::fromUtf8(exchange.body())));
    if (!isSame(body.value(QStringLiteral("token")).toString().toUtf8(), m_token)) {
        ++m_wrongTries;
        exchange.refuse(401, "wrongToken",
            QStringLiteral("That is not the token that this run of the program printed."));
        return;
    }
    exchange.setHeader(
        "Set-Cookie", cookieName + m_token + "; Path=/; HttpOnly; Secure; SameSite=Strict");
    exchange.answer(valueDocument(true));
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
    const QByteArray path = exchange.rawPath();
    const bool isPublic = path == "/api/session" || path.count('/') == 1; // the page's own files
    if (!m_token.isEmpty() && !isPublic && !hasToken(exchange)) {
        exchange.refuse(401, "noToken",
            QStringLiteral("This needs the token that the program printed: open the address in its "
                           "code, or send it as \"Authorization: Bearer TOKEN\"."));
        return false;
    }
    return true;
}
