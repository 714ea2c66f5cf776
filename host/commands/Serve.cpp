#include "Failure.h"
#include "chain/Installation.h"
#include "chain/NetworkPublisher.h"
#include "chain/Wait.h"
#include "commands/Command.h"
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

constexpr int usualPort = 8770;

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

class Serve : public Command
{
public:
    explicit Serve(CLI::App &app)
        : Command(app, "serve", "A page to look at, in a browser", "orka serve --open")
    {
        addText("--listen", m_listen,
            "IP address to listen at (127.0.0.1); at another than\nloopback over HTTPS and for who "
            "has the token that is\nprinted (0.0.0.0: for the whole network)",
            "ADDRESS");
        m_portOption = parser()
                           .add_option("--port", m_port, "Port (8770, or the next free one)")
                           ->type_name("N")
                           ->check(CLI::Range(1, 65535));
        addText("--cert", m_certificate,
            "Certificate for HTTPS, in PEM; one of our own where\nnone is named", "FILE");
        addText("--key", m_key, "Its key, where that is another file", "FILE");
        parser().add_flag("--open", m_open, "Show the page in this machine's browser");
    }

    int run(const GlobalOptions &options) override
    {
        if (!QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib")) {
            throw missing(QStringLiteral("noMainLoop"),
                QStringLiteral("The page needs GLib's main loop, which QT_NO_GLIB switches off. "
                               "Unset that variable."));
        }
        RequestGuard guard;
        HttpServer server(guard);
        const bool isOpen = isBeyondLoopback();
        if (isOpen) {
            guard.openToNetwork();
            server.setCertificate((m_certificate.isEmpty() ? ownCertificate(ownAddresses())
                                                           : certificateOf(m_certificate, m_key))
                                      .get());
            server.route("POST", "/api/session",
                [&guard](const ExchangePointer &exchange) { guard.unlock(*exchange); });
        }
        servePage(server, Installation::page());
        LiveChain chain(options);
        CarriedAddresses carried;
        const NodeApi nodes(chain, carried, server);
        const QueueApi queue(chain, carried, server);
        const ArtProxy art(carried, server);
        const MediaProxy media(carried, server);
        EventStreams events(chain, server);
        const MachinePlayer player(carried, events, server);
        const quint16 port = server.listen(m_listen, quint16(m_port), m_portOption->empty());
        tellAddress(isOpen, port, guard.token());
        for (;;)
            Wait(std::chrono::hours(24)).pass();
    }

private:
    bool isBeyondLoopback() const
    {
        const GRef<GInetAddress> address(
            g_inet_address_new_from_string(m_listen.toUtf8().constData()));
        if (!address)
            throw wrongUsage(QStringLiteral("%1 is no IP address.").arg(quoted(m_listen)));
        return g_inet_address_get_is_loopback(address.get()) == FALSE;
    }

    void tellAddress(bool isOpen, quint16 port, const QByteArray &token) const
    {
        const QStringList own = ownAddresses();
        const bool isEverywhere =
            m_listen == QLatin1String("0.0.0.0") || m_listen == QLatin1String("::");
        const QString host = isEverywhere && !own.isEmpty() ? own.first() : m_listen;
        QString address =
            QStringLiteral("%1://%2:%3/")
                .arg(isOpen ? QStringLiteral("https") : QStringLiteral("http"), inUrl(host))
                .arg(port);
        if (isOpen)
            address += QStringLiteral("#token=") + QString::fromLatin1(token);
        writeLine(address);
        if (isOpen && isatty(STDOUT_FILENO) != 0)
            writeText(qrCode(address).toUtf8());
        if (isOpen && m_certificate.isEmpty()) {
            tell(QStringLiteral("The browser will say that it doesn't know this machine's "
                                "certificate, which the program made itself. Accept it once."));
        }
        if (m_open && !QProcess::startDetached(QStringLiteral("xdg-open"), {address}))
            tell(QStringLiteral("No browser could be started. Open the address by hand."));
    }

    QString m_listen = QStringLiteral("127.0.0.1");
    int m_port = usualPort;
    CLI::Option *m_portOption;
    QString m_certificate;
    QString m_key;
    bool m_open = false;
};

} // namespace

CommandPointer makeServe(CLI::App &app)
{
    return std::make_unique<Serve>(app);
}
