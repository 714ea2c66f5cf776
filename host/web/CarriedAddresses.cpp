#include "web/CarriedAddresses.h"

#include <QCryptographicHash>

namespace {

constexpr int mostOfOneAge = 200'000;

/// Sixteen bytes stand for an address of any length.
QByteArray keyOf(const QByteArray &url)
{
    return QCryptographicHash::hash(url, QCryptographicHash::Sha256).left(16);
}

/// What the worker made of a picture's address for the device's own proxy, as it was before.
QByteArray originalOf(const QString &icon)
{
    const int proxied = icon.indexOf(QLatin1String("/proxy/"));
    if (!icon.startsWith(QLatin1String("https://")) || proxied < 0)
        return icon.toUtf8();
    return QByteArray::fromBase64(icon.mid(proxied + 7).toLatin1());
}

} // namespace

void CarriedAddresses::Set::insert(const QByteArray &url)
{
    if (m_young.size() >= mostOfOneAge)
        m_old = std::exchange(m_young, {});
    m_young.insert(keyOf(url));
}

bool CarriedAddresses::Set::contains(const QByteArray &url) const
{
    const QByteArray key = keyOf(url);
    return m_young.contains(key) || m_old.contains(key);
}

void CarriedAddresses::noteArt(const QString &url)
{
    if (!url.isEmpty())
        m_art.insert(originalOf(url));
}

void CarriedAddresses::noteMedia(const QString &url)
{
    if (!url.isEmpty())
        m_media.insert(url.toUtf8());
}

void CarriedAddresses::note(const OrkaRoles &row)
{
    noteArt(row.icon());
    const OrkaList<OrkaResource> resources = row.mediaData().resources();
    for (int i = 0; i < resources.size(); ++i)
        noteMedia(resources.at(i).uri());
}
