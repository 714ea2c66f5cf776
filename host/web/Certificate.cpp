#include "web/Certificate.h"

#include "Failure.h"
#include "Text.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>
#include <QSysInfo>

#include <arpa/inet.h>
#include <ctime>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <gnutls/x509.h>

namespace {

// Seconds:
constexpr time_t validFor = 825 * 86400L; // the longest that browsers take
constexpr qint64 shortestLeft = 7 * 86400;

Failure notMade(const QString &why)
{
    return missing(QStringLiteral("noCertificate"),
        Text::tr("The certificate for HTTPS can't be had: %1. Name one with --cert FILE and "
                 "--key FILE.")
            .arg(why));
}

void require(int result)
{
    if (result < 0)
        throw notMade(QString::fromUtf8(gnutls_strerror(result)));
}

struct Key
{
    gnutls_x509_privkey_t key = nullptr;
    Key() { require(gnutls_x509_privkey_init(&key)); }
    ~Key() { gnutls_x509_privkey_deinit(key); }
};

struct Crt
{
    gnutls_x509_crt_t crt = nullptr;
    Crt() { require(gnutls_x509_crt_init(&crt)); }
    ~Crt() { gnutls_x509_crt_deinit(crt); }
};

void addName(gnutls_x509_crt_t crt, gnutls_x509_subject_alt_name_t kind, const QByteArray &name)
{
    require(gnutls_x509_crt_set_subject_alt_name(
        crt, kind, name.constData(), unsigned(name.size()), GNUTLS_FSAN_APPEND));
}

void addAddress(gnutls_x509_crt_t crt, const QString &address)
{
    const GRef<GInetAddress> ip(g_inet_address_new_from_string(address.toUtf8().constData()));
    if (ip) {
        addName(crt, GNUTLS_SAN_IPADDRESS,
            QByteArray(reinterpret_cast<const char *>(g_inet_address_to_bytes(ip.get())),
                int(g_inet_address_get_native_size(ip.get()))));
    }
}

void describe(gnutls_x509_crt_t crt, const QStringList &addresses)
{
    const QByteArray host = QSysInfo::machineHostName().toUtf8();
    unsigned char serial[16];
    require(gnutls_rnd(GNUTLS_RND_NONCE, serial, sizeof(serial)));
    serial[0] &= 0x7f; // a positive number
    const time_t now = std::time(nullptr);
    require(gnutls_x509_crt_set_version(crt, 3));
    require(gnutls_x509_crt_set_serial(crt, serial, sizeof(serial)));
    require(gnutls_x509_crt_set_activation_time(crt, now - 3600));
    require(gnutls_x509_crt_set_expiration_time(crt, now + validFor));
    const QByteArray name = "CN=orka on " + host;
    require(gnutls_x509_crt_set_dn(crt, name.constData(), nullptr));
    for (const QByteArray &known : {QByteArray("localhost"), host, host + ".local"})
        addName(crt, GNUTLS_SAN_DNSNAME, known);
    for (const QString &address : addresses)
        addAddress(crt, address);
    require(gnutls_x509_crt_set_key_purpose_oid(crt, GNUTLS_KP_TLS_WWW_SERVER, 0));
}

/// Certificate and key as one PEM text.
QByteArray newCertificate(const QStringList &addresses)
{
    const Key key;
    require(gnutls_x509_privkey_generate(
        key.key, GNUTLS_PK_ECDSA, GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1), 0));
    const Crt crt;
    describe(crt.crt, addresses);
    require(gnutls_x509_crt_set_key(crt.crt, key.key));
    require(gnutls_x509_crt_sign2(crt.crt, crt.crt, key.key, GNUTLS_DIG_SHA256, 0));
    gnutls_datum_t first = {};
    gnutls_datum_t second = {};
    require(gnutls_x509_crt_export2(crt.crt, GNUTLS_X509_FMT_PEM, &first));
    require(gnutls_x509_privkey_export2_pkcs8(
        key.key, GNUTLS_X509_FMT_PEM, nullptr, GNUTLS_PKCS_PLAIN, &second));
    const QByteArray pem = QByteArray(reinterpret_cast<char *>(first.data), int(first.size))
        + QByteArray(reinterpret_cast<char *>(second.data), int(second.size));
    gnutls_free(first.data);
    gnutls_free(second.data);
    return pem;
}

/// Only this person may read it.
void save(const QString &name, const QByteArray &pem)
{
    QSaveFile file(name);
    const bool isOpen = QDir().mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (!isOpen || file.write(pem) != pem.size() || !file.flush() || !file.commit()) {
        throw notMade(Text::tr("%1 can't be written: %2").arg(quoted(name), file.errorString()));
    }
}

qint64 secondsLeft(GTlsCertificate *certificate)
{
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> end(
        g_tls_certificate_get_not_valid_after(certificate), g_date_time_unref);
    return end ? g_date_time_to_unix(end.get()) - QDateTime::currentSecsSinceEpoch() : 0;
}

/// GLib takes any two, with which no browser can then connect.
void requirePair(const QByteArray &certificateFile, const QByteArray &keyFile)
{
    gnutls_certificate_credentials_t pair = nullptr;
    require(gnutls_certificate_allocate_credentials(&pair));
    const int result = gnutls_certificate_set_x509_key_file(
        pair, certificateFile.constData(), keyFile.constData(), GNUTLS_X509_FMT_PEM);
    gnutls_certificate_free_credentials(pair);
    if (result == GNUTLS_E_CERTIFICATE_KEY_MISMATCH)
        throw notMade(Text::tr("the key is not that of the certificate"));
    require(result);
}

} // namespace

GRef<GTlsCertificate> certificateOf(const QString &certificateFile, const QString &keyFile)
{
    const QByteArray first = QFile::encodeName(certificateFile);
    const QByteArray second = keyFile.isEmpty() ? first : QFile::encodeName(keyFile);
    GError *error = nullptr;
    GRef<GTlsCertificate> certificate(
        g_tls_certificate_new_from_files(first.constData(), second.constData(), &error));
    if (!certificate)
        throw notMade(takeMessage(error));
    requirePair(first, second);
    if (secondsLeft(certificate.get()) <= 0) {
        tell(Text::tr("The certificate %1 has expired, and browsers say so. Name another with "
                      "--cert.")
                 .arg(quoted(certificateFile)));
    }
    return certificate;
}

GRef<GTlsCertificate> ownCertificate(const QStringList &addresses)
{
    const QByteArray names =
        addresses.join(QLatin1Char(' ')).toUtf8() + QSysInfo::machineHostName().toUtf8();
    const QString file = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/orka/page-%1.pem")
              .arg(QString::fromLatin1(
                  QCryptographicHash::hash(names, QCryptographicHash::Sha256).toHex().left(12)));
    const QByteArray name = QFile::encodeName(file);
    const GRef<GTlsCertificate> kept(
        g_tls_certificate_new_from_files(name.constData(), name.constData(), nullptr));
    if (!kept || secondsLeft(kept.get()) < shortestLeft)
        save(file, newCertificate(addresses));
    return certificateOf(file, file);
}
