#include "Text.h"
#include "chain/PageProgram.h"
#include "commands/Command.h"
#include "web/Page.h"

namespace {

class Serve : public Command
{
public:
    explicit Serve(CLI::App &app)
        : Command(app, "serve", Text::mark("A page to look at, in a browser"), "orka serve --open")
    {
        addText("--listen", m_options.listen,
            Text::mark("IP address to listen on (127.0.0.1); beyond loopback over\nHTTPS, and only "
                       "for those "
                       "who have the printed token\n(0.0.0.0: for the whole network)"),
            "ADDRESS");
        m_portOption = parser()
                           .add_option("--port", m_options.port,
                               Text::mark("Port (8770, or the next free one)"))
                           ->type_name("N")
                           ->check(CLI::Range(1, 65535));
        addText("--cert", m_options.certificate,
            Text::mark("Certificate for HTTPS, in PEM; one of our own where\nnone is named"),
            "FILE");
        addText("--key", m_options.key, Text::mark("Its key, where that is another file"), "FILE");
        parser().add_flag("--open", m_options.opensBrowser,
            Text::mark("Show the page in this machine's browser"));
    }

    int run(const GlobalOptions &options) override
    {
        m_options.mayTakeNextPort = m_portOption->empty();
        if (runPage == nullptr)
            becomePageProgram();
        return runPage(m_options, options);
    }

private:
    PageOptions m_options;
    CLI::Option *m_portOption;
};

} // namespace

CommandPointer makeServe(CLI::App &app)
{
    return std::make_unique<Serve>(app);
}
