#include "AlbumArt.h"

#include "log.h"

namespace {

std::string leaveLine()
{
    return "Leave " + sdk::scopedName("QString CMUPnPWorker::handleAlbumArtUrl(const QString&)")
        + ": ";
}

QString proxyUrl(const QString &url, const QString &address)
{
    const QByteArray encoded = url.toUtf8().toBase64();
    QString proxied;
    proxied.reserve(address.size() + encoded.size() + 16);
    proxied.append(QLatin1String("https://")).append(address);
    proxied.append(QLatin1String("/proxy/")).append(QLatin1String(encoded));
    return proxied;
}

} // namespace

QString albumArtUrl(const QString &url, const QString &address)
{
    const bool isRewritable = url.startsWith(QLatin1String("http://"));
    if (isRewritable && !address.isEmpty()) {
        QString proxied = proxyUrl(url, address);
        LOG4CPLUS_DEBUG(upnpLog(),
            leaveLine() << "Got HTTP album art URL, using reverse proxy to serve: "
                        << logText(proxied));
        return proxied;
    }
    if (isRewritable) {
        LOG4CPLUS_DEBUG(upnpLog(), leaveLine() << "No IP Address, falling back on original URL");
    }
    LOG4CPLUS_INFO(upnpLog(), "CB_UPNP: resource urlout = " << logText(url));
    return url;
}
