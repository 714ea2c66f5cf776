#include "LonelyWorker.h"

namespace {

/// An encoded path means the same after a journey through text, and a translated path stays in its
/// fields whatever the text was.
void checkNodePath(const LonelyWorker &lonely, const QString &text)
{
    const CMPath path = CMPath::fromEncoded(text);
    require(CMPath::fromEncoded(path.toEncoded()) == path || path.isEmpty());
    const UPnPPath translated = UPnPPath::fromOrka(lonely.worker, lonely.servers(), path);
    require(!translated.udn().contains(QLatin1Char('/')));
    require(!translated.objectId.contains(QLatin1Char('/')));
    require(translated.objectId.isEmpty() || !translated.udn().isEmpty());
    const CMPath back = translated.orkaPath();
    const UPnPPath again = UPnPPath::fromOrka(lonely.worker, lonely.servers(), back);
    require(again.udn() == translated.udn() && again.objectId == translated.objectId);
    require(back.params() == path.params());
}

/// Any base and any parameter survive the encoded form.
void checkEncoding(const QString &text)
{
    const QString known = QString::fromUtf8(text.toUtf8()); // lonely surrogates replaced
    CMPath path(QStringLiteral("upnp"), known);
    path.addParam(known, known);
    require(CMPath::fromEncoded(path.toEncoded()) == path);
}

void checkServicePath(const LonelyWorker &lonely, const QString &text)
{
    const UPnPPath path =
        UPnPPath::fromDleyna(lonely.worker, lonely.servers(), QDBusObjectPath(text), {});
    require(!path.objectId.contains(QLatin1Char('/')));
    require(path.orkaPath().params().isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const LonelyWorker lonely;
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    checkNodePath(lonely, text);
    checkNodePath(lonely, QStringLiteral("upnp:/") + text);
    checkEncoding(text);
    checkServicePath(lonely, text);
    checkServicePath(lonely, QStringLiteral("/com/intel/dLeynaServer/server/") + text);
    return 0;
}
