#include "chain/Session.h"
#include "chain/Wait.h"
#include "commands/Command.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/TextOutput.h"
#include "tree/ServerList.h"

#include <QSocketNotifier>
#include <QTime>

#include <unistd.h>

namespace {

/// Says which servers came and went since it was last asked.
class Arrivals
{
public:
    explicit Arrivals(bool json)
        : m_json(json)
    {
    }

    void tellChanges(const ServerList::Servers &now)
    {
        for (const OrkaRoles &server : m_known) {
            if (!now.contains(server))
                write("departed", server);
        }
        for (const OrkaRoles &server : now) {
            if (!m_known.contains(server))
                write("arrived", server);
        }
        m_known = now;
    }

private:
    void write(const char *event, const OrkaRoles &server) const
    {
        if (m_json) {
            OrkaHash document;
            document.setValue(QStringLiteral("event"), QString::fromLatin1(event));
            document.setValue(QStringLiteral("server"), server.toVariant());
            writeJson(document);
        } else {
            writeLine(QStringLiteral("%1  %2  %3")
                          .arg(QTime::currentTime().toString(), QString::fromLatin1(event),
                              safeText(server.title().toString())));
        }
    }

    bool m_json;
    ServerList::Servers m_known;
};

class Servers : public Command
{
public:
    explicit Servers(CLI::App &app)
        : Command(app, "servers", "The media servers on the network",
            "orka servers\n  orka --json servers --watch")
    {
        parser().add_flag("--watch", m_watch,
            "Print arrivals and departures until stopped; with --json\none document a line:\n"
            "{\"event\":\"arrived\"|\"departed\",\"server\":{…}}");
    }

    int run(const GlobalOptions &options) override
    {
        Session session(options);
        ServerList servers(session);
        return m_watch ? watch(session, servers) : list(session, servers);
    }

private:
    static int list(Session &session, ServerList &servers)
    {
        servers.settle();
        const Rows rows = readRows(session, session.root(), {}, OrkaRoles::all());
        if (session.options().json) {
            writeJson(rowsDocument(session.root(), rows));
            return Answered;
        }
        if (rows.rows.isEmpty()) {
            tell(QStringLiteral("No media server has shown up in %1 s. Start one on this network, "
                                "or give it more time with --wait; \"orka doctor\" checks every "
                                "part.")
                     .arg(double(session.options().wait.count()) / 1000));
            return Answered;
        }
        Table table({QStringLiteral("title"), QStringLiteral("search"), QStringLiteral("path")});
        for (const OrkaRoles &row : rows.rows) {
            table.add({row.title().toString(),
                row.search().isEmpty() ? QStringLiteral("no") : QStringLiteral("yes"),
                row.path().toEncoded()});
        }
        table.write();
        return Answered;
    }

    static int watch(Session &session, ServerList &servers)
    {
        Arrivals arrivals(session.options().json);
        // Tells of an error alone: that nobody reads any more.
        QSocketNotifier reader(STDOUT_FILENO, QSocketNotifier::Exception);
        QObject::connect(
            &reader, &QSocketNotifier::activated, &reader, [&] { reader.setEnabled(false); });
        for (;;) {
            session.mediaService().requireThere();
            if (!reader.isEnabled())
                writeLine(QString()); // ends us now, as the next event would
            arrivals.tellChanges(servers.servers());
            Wait change(std::chrono::hours(24));
            QObject::connect(&reader, &QSocketNotifier::activated, &change, &Wait::wake);
            QObject::connect(&servers, &ServerList::changed, &change, &Wait::wake);
            QObject::connect(&session.mediaService(), &ServiceOnBus::gone, &change, &Wait::wake);
            change.until([&] {
                return servers.isStale() || !session.mediaService().isThere()
                    || !reader.isEnabled();
            });
        }
    }

    bool m_watch = false;
};

} // namespace

CommandPointer makeServers(CLI::App &app)
{
    return std::make_unique<Servers>(app);
}
