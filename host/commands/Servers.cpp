#include "Failure.h"
#include "Text.h"
#include "chain/Bus.h"
#include "chain/KeptAddresses.h"
#include "chain/NetworkReport.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "chain/SignsOfLife.h"
#include "chain/Wait.h"
#include "commands/Answer.h"
#include "commands/Command.h"
#include "commands/ServerNotes.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/TextOutput.h"
#include "tree/SearchKinds.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <QDBusError>
#include <QSocketNotifier>
#include <QTime>

#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds questionLimit(1000);
/// So often a service that left is started again, and a server that was missed looked for.
constexpr std::chrono::milliseconds lookEvery(1000);
/// So often those that are listed are asked whether they are still there.
constexpr int turnsOfAQuestion = 5;

/// Says which servers came and went since it was last asked.
class Arrivals
{
public:
    explicit Arrivals(bool json)
        : m_json(json)
    {
    }

    bool isServiceThere() const { return m_isServiceThere; }

    void tellServiceLeft()
    {
        tellChanges({});
        m_isServiceThere = false;
        write(Text::mark("service left"), {});
        tell(Text::tr("The media service has left the bus; waiting for it."));
    }

    void tellServiceBack()
    {
        m_isServiceThere = true;
        write(Text::mark("service back"), {});
    }

    void tellChanges(const ServerList::Servers &now)
    {
        for (const OrkaRoles &server : m_known) {
            if (!now.contains(server))
                write(Text::mark("departed"), server);
        }
        for (const OrkaRoles &server : now) {
            if (!m_known.contains(server))
                write(Text::mark("arrived"), server);
        }
        m_known = now;
    }

    /// Once, when it is known: that no server can be reached.
    void tellCutOff(Session &session)
    {
        if (m_isNetworkTold || !session.mediaService().servers().isSettled())
            return;
        m_isNetworkTold = true;
        const NetworkReport report = NetworkReport::read();
        if (report.isCutOff() && m_known.isEmpty())
            tell(noServersSentence(report));
    }

private:
    void write(const char *event, const OrkaRoles &server) const
    {
        if (m_json) {
            OrkaHash document;
            document.setValue(QStringLiteral("event"), QString::fromLatin1(event));
            if (!server.isEmpty())
                document.setValue(QStringLiteral("server"), server.toVariant());
            writeJson(document);
        } else {
            writeLine(QStringLiteral("%1  %2  %3")
                          .arg(QTime::currentTime().toString(), Text::tr(event),
                              safeText(server.title().toString()))
                          .trimmed());
        }
    }

    bool m_json;
    bool m_isServiceThere = true;
    bool m_isNetworkTold = false;
    ServerList::Servers m_known;
};

bool isSearchUnknown(const Session &session, const OrkaRoles &server)
{
    return server.search().isEmpty() && !searchUnknown(session, server.path()).isEmpty();
}

/// Prints servers as they show up, each once.
class ServerTable
{
public:
    explicit ServerTable(const Session &session)
        : m_session(session)
    {
    }

    void add(const ServerList::Servers &servers)
    {
        const int before = m_printed.size();
        for (const OrkaRoles &server : servers) {
            const QString path = server.path().toEncoded();
            if (m_printed.contains(path))
                continue;
            m_printed.append(path);
            const QString search = isSearchUnknown(m_session, server) ? QStringLiteral("?")
                : server.search().isEmpty()                           ? Text::tr("no")
                                                                      : Text::tr("yes");
            m_table.add({server.title().toString(), search, path});
        }
        if (m_printed.size() > before)
            m_table.write();
    }

private:
    const Session &m_session;
    Table m_table{{Text::tr("title"), Text::tr("search"), Text::tr("path")}, {2, 0}};
    QStringList m_printed;
};

class Servers : public Command
{
public:
    explicit Servers(CLI::App &app)
        : Command(app, "servers", Text::mark("The media servers on the network"),
            "orka servers\n  orka servers --add 192.168.1.20\n  orka --json servers --watch")
    {
        parser().add_flag("--watch", m_watch,
            Text::mark(
                "Print arrivals and departures until stopped; with --json\none document a line:\n"
                "{\"event\":\"arrived\"|\"departed\",\"server\":{…}}; the media\n"
                "service's own leaving and coming back are told, too:\n"
                "{\"event\":\"service left\"|\"service back\"}"));
        addText("--add", m_add, Text::mark("Look at this address from now on, in every command"),
            "ADDRESS");
        addText("--forget", m_forget, Text::mark("No longer look at this address"), "ADDRESS");
    }

    int run(const GlobalOptions &options) override
    {
        if (int(m_watch) + int(!m_add.isNull()) + int(!m_forget.isNull()) > 1)
            throw wrongUsage(Text::tr("Only one of --watch, --add and --forget can be done."));
        if (!m_add.isNull())
            return add(options);
        if (!m_forget.isNull())
            return forget(options);
        Session session(options);
        ServerList servers(session);
        return m_watch ? watch(session, servers) : list(session, servers);
    }

private:
    int add(GlobalOptions options) const
    {
        KeptAddresses::check(m_add);
        KeptAddresses::add(m_add);
        options.servers.prepend(m_add); // the first that is looked at
        ServiceStarter service(options);
        const NamedServers &servers = service.namedServers();
        service.requireAnswer(m_add);
        Wait wait(options.timeout, Text::tr("Looking for the media server"));
        QObject::connect(&servers, &NamedServers::changed, &wait, &Wait::wake);
        wait.until([&] { return !servers.isPending(m_add); });
        if (!servers.hasAnswered(m_add))
            service.requireSignOfLife();
        service.requireSameOwner();
        servers.requireFound(m_add);
        return tellKept(options, m_add, true);
    }

    static int tellKept(const GlobalOptions &options, const QString &address, bool isKept)
    {
        if (options.json) {
            OrkaHash document;
            document.setValue(QStringLiteral("address"), address);
            document.setValue(QStringLiteral("kept"), isKept);
            writeJson(document);
        }
        return Answered;
    }

    int forget(const GlobalOptions &options) const
    {
        if (!KeptAddresses::forget(m_forget)) {
            const QStringList kept = KeptAddresses::read();
            throw missing(QStringLiteral("noSuchAddress"),
                kept.isEmpty() ? Text::tr("The address %1 isn't kept; none is.")
                                     .arg(KeptAddresses::shown(m_forget))
                               : Text::tr("The address %1 isn't kept; these are: %2.")
                                     .arg(KeptAddresses::shown(m_forget),
                                         safeText(kept.join(QStringLiteral(", ")))));
        }
        try {
            tellService(options);
        } catch (const Failure &failure) {
            if (!failure.isServiceMissing())
                throw;
        }
        return tellKept(options, m_forget, false);
    }

    /// Where one is running.
    void tellService(GlobalOptions options) const
    {
        options.mayStartService = false;
        const ServiceStarter service(options);
        const QDBusMessage reply =
            Bus(orkaDBusConnection(), std::min(options.timeout, questionLimit))
                .send(ServiceCalls::bridgeCall(QStringLiteral("ForgetServer"), m_forget));
        // Another service, which says so, has never looked there.
        if (reply.type() == QDBusMessage::InvalidMessage
            || QDBusError(reply).type() == QDBusError::NoReply) {
            throw Failure(NoAnswer, QStringLiteral("noAnswer"),
                Text::tr("The address %1 isn't kept any more, but the media service has not "
                         "said in time that it no longer looks there. \"orka stop\" ends it.")
                    .arg(KeptAddresses::shown(m_forget)));
        }
    }

    static int list(Session &session, ServerList &servers)
    {
        ServerNotes notes(session, session.root());
        if (session.options().json) {
            servers.settle();
            Rows rows = readRows(session, session.root(), {}, OrkaRoles::all());
            for (OrkaRoles &server : rows.rows) {
                if (isSearchUnknown(session, server))
                    server.setValue(QStringLiteral("searchUnknown"), true);
            }
            writeAnswer(session.options(), session.root(), rows, 0, notes.lacking());
        } else {
            ServerTable table(session);
            servers.settle([&](const ServerList::Servers &now) { table.add(now); });
            table.add(servers.servers());
            notes.lacking();
        }
        return notes.tell();
    }

    static int watch(Session &session, ServerList &servers)
    {
        Arrivals arrivals(session.options().json);
        std::unique_ptr<SignsOfLife> signs; // whose answers the media service draws on
        // Tells of an error alone: that nobody reads any more.
        QSocketNotifier reader(STDOUT_FILENO, QSocketNotifier::Exception);
        QObject::connect(
            &reader, &QSocketNotifier::activated, &reader, [&] { reader.setEnabled(false); });
        for (int turn = 0;; ++turn) {
            if (turn % turnsOfAQuestion == 0)
                signs = std::make_unique<SignsOfLife>(session.mediaService().servers().paths());
            if (!reader.isEnabled())
                writeLine(QString()); // ends us now, as the next event would
            ServiceStarter &service = session.mediaService();
            if (arrivals.isServiceThere() && service.isThere()) {
                look(arrivals, session, servers);
            } else if (arrivals.isServiceThere()) {
                arrivals.tellServiceLeft();
            } else if (service.returns()) {
                arrivals.tellServiceBack();
                session.makeWorker();
                servers.startAgain();
            }
            waitForChange(session, servers, reader);
        }
    }

    static void look(Arrivals &arrivals, Session &session, ServerList &servers)
    {
        try {
            arrivals.tellChanges(servers.servers());
            arrivals.tellCutOff(session);
            servers.mend();
        } catch (const Failure &) {
            if (session.mediaService().isThere())
                throw; // else it left meanwhile, which is told in the next turn
        }
    }

    static void waitForChange(Session &session, ServerList &servers, QSocketNotifier &reader)
    {
        ServiceStarter &service = session.mediaService();
        Wait change(lookEvery);
        QObject::connect(&reader, &QSocketNotifier::activated, &change, &Wait::wake);
        QObject::connect(&servers, &ServerList::changed, &change, &Wait::wake);
        QObject::connect(&service, &ServiceStarter::gone, &change, &Wait::wake);
        QObject::connect(&service, &ServiceStarter::back, &change, &Wait::wake);
        bool isBack = false;
        QObject::connect(&service, &ServiceStarter::back, &change, [&] { isBack = true; });
        const bool wasThere = service.isThere();
        change.until([&] {
            return isBack || servers.isStale() || service.isThere() != wasThere
                || !reader.isEnabled();
        });
    }

    bool m_watch = false;
    QString m_add;
    QString m_forget;
};

} // namespace

CommandPointer makeServers(CLI::App &app)
{
    return std::make_unique<Servers>(app);
}
