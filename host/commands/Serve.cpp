#include "chain/ChildProcess.h"
#include "chain/Installation.h"
#include "chain/Wait.h"
#include "commands/Command.h"
#include "output/Output.h"
#include "web/EventStreams.h"
#include "web/NodeApi.h"
#include "web/PageFiles.h"

#include <QProcess>

namespace {

constexpr int usualPort = 8770;

class Serve : public Command
{
public:
    explicit Serve(CLI::App &app)
        : Command(app, "serve", "A page to look at, in a browser", "orka serve --open")
    {
        addText("--listen", m_listen, "IP address to listen at (127.0.0.1)", "ADDRESS");
        m_portOption = parser()
                           .add_option("--port", m_port, "Port (8770, or the next free one)")
                           ->type_name("N")
                           ->check(CLI::Range(1, 65535));
        parser().add_flag("--open", m_open, "Show the page in this machine's browser");
    }

    int run(const GlobalOptions &options) override
    {
        RequestGuard guard;
        HttpServer server(guard);
        servePage(server, Installation::page());
        LiveChain chain(options);
        CarriedAddresses carried;
        const NodeApi nodes(chain, carried, server);
        const EventStreams events(chain, server);
        const quint16 port = server.listen(m_listen, quint16(m_port), m_portOption->empty());

        const bool isV6 = m_listen.contains(QLatin1Char(':'));
        const QString address =
            QStringLiteral("http://%1:%2/").arg(isV6 ? "[" + m_listen + "]" : m_listen).arg(port);
        writeLine(address);
        if (m_open && !QProcess::startDetached(QStringLiteral("xdg-open"), {address}))
            tell(QStringLiteral("No browser could be started. Open the address by hand."));
        for (;;)
            Wait(std::chrono::hours(24)).pass();
    }

private:
    QString m_listen = QStringLiteral("127.0.0.1");
    int m_port = usualPort;
    CLI::Option *m_portOption;
    bool m_open = false;
};

} // namespace

CommandPointer makeServe(CLI::App &app)
{
    return std::make_unique<Serve>(app);
}
