#include "web/Page.h"

#include "Failure.h"
#include "Language.h"
#include "Text.h"
#include "chain/Installation.h"
#include "chain/NetworkPublisher.h"
#include "chain/Wait.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "web/ArtProxy.h"
#include "web/Certificate.h"
#include "web/EventStreams.h"
#include "web/MachinePlayer.h"
#include "web/MediaProxy.h"
#include "web/NodeApi.h"
#include "web/PageFiles.h"
#include "web/QrCode.h"
#include "web/QueueApi.h"

#include <QAbstractEventDispatcher>
#include <QProcess>

#include <unistd.h>

namespace {

/// This machine's addresses, as others reach it.
QStringList ownAddresses()
{
    const OrkaNetworkInfo info = NetworkPublisher::currentInfo();
    QStringList addresses;
    for (const auto &list : {info.wired().addresses(), info.wireless().addresses()}) {
        for (const QVariantHash &address : list)
            addresses.append(OrkaNetworkAddress(address).ip());
    }
    return addresses;
}

QString inUrl(const QString &address)
{
    return address.contains(QLatin1Char(':')) ? QLatin1Char('[') + address + QLatin1Char(']')
                                              : address;
}

bool isBeyondLoopback(const QString &listen)
{
    const GRef<GInetAddress> address(g_inet_address_new_from_string(listen.toUtf8().constData()));
    if (!address)
        throw wrongUsage(Text::tr("%1 is no IP address.").arg(quoted(listen)));
    return g_inet_address_get_is_loopback(address.get()) == FALSE;
}

/// Of the certificate that was named.
void requireUse(const PageOptions &options, bool isOpen)
{
    if (!options.key.isEmpty() && options.certificate.isEmpty())
        throw wrongUsage(Text::tr("--key is the key of the certificate that --cert names."));
    if (!isOpen && !options.certificate.isEmpty()) {
        throw wrongUsage(Text::tr("HTTPS is spoken beyond loopback alone: name an address for it "
                                  "with --listen, or leave --cert out."));
    }
}

void tellAddress(const PageOptions &options, bool isOpen, quint16 port, const QByteArray &token)
{
    const QStringList own = ownAddresses();
    const bool isEverywhere =
        options.listen == QLatin1String("0.0.0.0") || options.listen == QLatin1String("::");
    const QString host = isEverywhere && !own.isEmpty() ? own.first() : options.listen;
    QString address =
        QStringLiteral("%1://%2:%3/")
            .arg(isOpen ? QStringLiteral("https") : QStringLiteral("http"), inUrl(host))
            .arg(port);
    if (isOpen)
        address += QStringLiteral("#token=") + QString::fromLatin1(token);
    writeLine(address);
    if (isOpen && isatty(STDOUT_FILENO) != 0)
        writeText(qrCode(address).toUtf8());
    if (isOpen && options.certificate.isEmpty()) {
        tell(Text::tr("The browser will say that it doesn't know this machine's "
                      "certificate, which the program made itself. Accept it once."));
    }
    if (options.opensBrowser && !QProcess::startDetached(QStringLiteral("xdg-open"), {address}))
        tell(Text::tr("No browser could be started. Open the address by hand."));
}

} // namespace

int runPage(const PageOptions &options, const GlobalOptions &global)
{
    if (!QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib")) {
        throw missing(QStringLiteral("noMainLoop"),
            Text::tr("The page needs GLib's main loop, which QT_NO_GLIB switches off. "
                     "Unset that variable."));
    }
    const bool isOpen = isBeyondLoopback(options.listen);
    requireUse(options, isOpen);
    RequestGuard guard;
    HttpServer server(guard);
    if (isOpen) {
        guard.openToNetwork();
        server.setCertificate(
            (options.certificate.isEmpty() ? ownCertificate(ownAddresses())
                                           : certificateOf(options.certificate, options.key))
                .get());
        server.route("POST", "/api/session",
            [&guard](const ExchangePointer &exchange) { guard.unlock(*exchange); });
    }
    servePage(server, Installation::page());
    LiveChain chain(global);
    CarriedAddresses carried;
    const NodeApi nodes(chain, carried, server);
    const QueueApi queue(chain, carried, server);
    const LocalServers local(chain);
    const ArtProxy art(carried, local, server);
    const MediaProxy media(carried, local, server);
    EventStreams events(chain, server);
    const MachinePlayer player(chain, carried, events, server);
    const quint16 port = server.listen(options.listen, options.port, options.mayTakeNextPort);
    tellAddress(options, isOpen, port, guard.token());
    Language::becomeEnglish(); // the page translates; other programs read the answers, too
    for (;;)
        Wait(std::chrono::hours(24)).pass();
}
