#include "Failure.h"
#include "chain/BusLimits.h"
#include "chain/Diagnosis.h"
#include "chain/KeptAddresses.h"
#include "chain/NetworkReport.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "chain/StuckBus.h"
#include "chain/Wait.h"
#include "commands/Command.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/Terminal.h"
#include "tree/SearchKinds.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <QDBusPendingCallWatcher>
#include <QStandardPaths>

#include <algorithm>
#include <map>

namespace {

/// 200 tracks prepared at once, with two calls each.
constexpr int neededPendingReplies = 400;

/// A media server is asked once, and given this.
constexpr std::chrono::milliseconds lookLimit(5'000);

/// What was found, in the order in which it was looked at.
class Findings
{
public:
    enum Verdict { Ok, Warning, Missing };

    explicit Findings(bool json)
        : m_json(json)
    {
    }

    void add(Verdict verdict, const char *what, const QString &message)
    {
        static const char *const words[] = {"ok", "warning", "missing"};
        m_anythingMissing = m_anythingMissing || verdict == Missing;
        if (!m_json) {
            using Terminal::Style;
            static const Style styles[] = {Style::Good, Style::Doubtful, Style::Bad};
            const QString word = padded(QLatin1String(words[verdict]), 7);
            writeLine(Terminal::styled(word, styles[verdict])
                + QStringLiteral("  %1: ").arg(QLatin1String(what)) + message);
        }
        OrkaHash check;
        check.setValue(QStringLiteral("what"), QString::fromLatin1(what));
        check.setValue(QStringLiteral("status"), QString::fromLatin1(words[verdict]));
        check.setValue(QStringLiteral("message"), message);
        m_checks.append(check.toVariant());
    }

    int finish() const
    {
        if (m_json) {
            OrkaHash document;
            document.setValue(QStringLiteral("checks"), m_checks);
            writeJson(document);
        }
        return m_anythingMissing ? ExitStatus::Missing : Answered;
    }

private:
    bool m_json;
    bool m_anythingMissing = false;
    QVariantList m_checks;
};

void checkBusLimits(Findings &findings, const ServiceStarter &service)
{
    const PendingReplies replies = measurePendingReplies(service.bus(), service.busDescription());
    if (!replies.error.isEmpty()) {
        findings.add(Findings::Warning, "bus limits",
            QStringLiteral("could not be measured (%1); a bus with the daemon's built-in limit "
                           "takes 128 calls at once, which is too few.")
                .arg(safeText(replies.error)));
    } else if (replies.limited && replies.taken < neededPendingReplies) {
        findings.add(Findings::Warning, "bus limits",
            QStringLiteral("the bus takes only %1 unanswered calls of one program "
                           "(max_replies_per_connection). When 200 tracks are played at once most "
                           "of them lose their URL, and big folders are read in part. Set the "
                           "limit to 50000 in the bus's configuration, as session buses have it.")
                .arg(replies.taken));
    } else {
        findings.add(Findings::Ok, "bus limits",
            QStringLiteral("%1 %2 unanswered calls of one program.")
                .arg(replies.limited ? QStringLiteral("takes") : QStringLiteral("takes more than"))
                .arg(replies.taken));
    }
}

QString lifeOf(const ServiceStarter &service)
{
    if (service.isForThisRun())
        return QStringLiteral(", started for this run");
    const QString since = QStringLiteral(", there since ")
        + service.startedAt().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return service.isLasting() ? since
            + QStringLiteral("; it ends when nobody has used it for a while, or by \"orka stop\"")
                               : since;
}

/// Whether it can be asked.
bool checkMediaService(Findings &findings, ServiceStarter &service)
{
    findings.add(Findings::Ok, "bus", service.busDescription() + QLatin1Char('.'));
    checkBusLimits(findings, service);
    const bool answers = service.answers();
    findings.add(answers ? Findings::Ok : Findings::Missing, "media service",
        QStringLiteral("%1 has the name %2%3.")
            .arg(safeText(service.program()), ServiceStarter::busName(),
                !answers ? QStringLiteral(" but doesn't answer. End it, or start it again")
                         : lifeOf(service)));
    return answers;
}

/// Asks each media server for its first row, all at once; returns why each doesn't answer, by the
/// base of its path.
QHash<QString, QString> askServers(Session &session, const ServerList::Servers &servers)
{
    const QStringList objects = session.mediaService().servers().paths();
    const ServiceCalls service(lookLimit);
    std::map<QString, std::unique_ptr<QDBusPendingCallWatcher>> calls;
    Wait wait(lookLimit, QStringLiteral("Asking the media servers"));
    for (const OrkaRoles &server : servers) {
        const QString object = service.objectOf(server.path().base(), objects);
        if (object.isEmpty())
            continue;
        auto call = std::make_unique<QDBusPendingCallWatcher>(
            orkaDBusConnection().asyncCall(ServiceCalls::childCall(object, 0)));
        QObject::connect(call.get(), &QDBusPendingCallWatcher::finished, &wait, &Wait::wake);
        calls[server.path().base()] = std::move(call);
    }
    wait.until([&] {
        return std::all_of(
            calls.begin(), calls.end(), [](const auto &call) { return call.second->isFinished(); });
    });
    QHash<QString, QString> problems;
    for (const auto &[base, call] : calls) {
        if (!call->isFinished()) {
            problems[base] = QStringLiteral("does not answer within %1 seconds. It may be busy, "
                                            "asleep or switched off.")
                                 .arg(lookLimit.count() / 1000);
        } else if (call->isError() && diagnosisOf(call->error().message()).isTrouble()) {
            problems[base] = QStringLiteral("can't be read: %1").arg(call->error().message());
        }
    }
    return problems;
}

void checkServers(Findings &findings, Session &session)
{
    ServerList servers(session);
    servers.settle();
    if (servers.servers().isEmpty() && servers.isWhole()) {
        findings.add(Findings::Warning, "media servers",
            QStringLiteral("none has shown up. Start one on this network; a firewall may keep UDP "
                           "port 1900 closed."));
    }
    for (const QString &problem : session.mediaService().namedServers().problems())
        findings.add(Findings::Warning, "media server", problem);
    for (const QString &server : servers.missing()) {
        findings.add(Findings::Warning, "media server",
            QStringLiteral("the media service lists %1, but does not tell all about it.")
                .arg(safeText(server)));
    }
    const ServerList::Servers all = servers.servers();
    const QHash<QString, QString> problems = askServers(session, all);
    for (const OrkaRoles &server : all) {
        const QString problem = problems.value(server.path().base());
        if (!problem.isEmpty()) {
            findings.add(Findings::Warning, "media server",
                QStringLiteral("%1 is listed, but %2")
                    .arg(quoted(server.title().toString()), safeText(problem)));
            continue;
        }
        const QStringList kinds = searchKinds(session, server.path());
        const QString unknown = kinds.isEmpty() ? searchUnknown(session, server.path()) : QString();
        if (!unknown.isEmpty()) {
            findings.add(Findings::Warning, "media server", unknown);
            continue;
        }
        findings.add(Findings::Ok, "media server",
            QStringLiteral("%1 %2.").arg(quoted(server.title().toString()),
                kinds.isEmpty() ? QStringLiteral("can be browsed, not searched")
                                : QStringLiteral("can be searched by %1")
                                      .arg(kinds.join(QStringLiteral(", ")))));
    }
}

void checkNetwork(Findings &findings)
{
    const NetworkReport report = NetworkReport::read();
    if (!report.isTold)
        return;
    findings.add(report.listening.isEmpty() ? Findings::Warning : Findings::Ok, "network",
        report.listening.isEmpty()
            ? QStringLiteral("no interface of this machine carries multicast, by which media "
                             "servers are found. Connect one, or name a server by its address: "
                             "orka servers --add ADDRESS.")
            : QStringLiteral("media servers are listened for at %1.")
                  .arg(safeText(report.listening.join(QStringLiteral(", ")))));
    for (const QString &trouble : report.absent)
        findings.add(Findings::Warning, "media server", safeText(trouble));
    for (const QString &trouble : report.troubles)
        findings.add(Findings::Warning, "network", safeText(trouble));
}

void checkAddresses(Findings &findings)
{
    const QStringList addresses = NetworkPublisher::currentAddresses();
    findings.add(addresses.isEmpty() ? Findings::Warning : Findings::Ok, "addresses",
        addresses.isEmpty() ? QStringLiteral("this machine has none that others can reach.")
                            : addresses.join(QStringLiteral(", ")));
}

void checkPlayer(Findings &findings)
{
    const bool there = !QStandardPaths::findExecutable(QStringLiteral("mpv")).isEmpty();
    findings.add(there ? Findings::Ok : Findings::Warning, "player",
        there ? QStringLiteral("mpv is there.")
              : QStringLiteral("mpv isn't installed; \"orka play\" needs it, or --player."));
}

/// False where they can't be read; the others are looked at all the same.
bool checkKeptAddresses(Findings &findings)
{
    try {
        KeptAddresses::read();
        return true;
    } catch (const Failure &failure) {
        findings.add(Findings::Warning, "kept addresses", failure.sentence());
        return false;
    }
}

/// The part of the chain that is missing, as the failure names it.
const char *partOf(const Failure &failure)
{
    const QString name = failure.error().name();
    return name == QLatin1String("noBus")                                    ? "bus"
        : name == QLatin1String("noMediaService") || failure.isServiceLeft() ? "media service"
        : name == QLatin1String("noPlugin")                                  ? "plug-in"
                                                                             : "answer";
}

class Doctor : public Command
{
public:
    explicit Doctor(CLI::App &app)
        : Command(app, "doctor", "What is there and what is missing", "orka doctor")
    {
    }

    int run(const GlobalOptions &given) override
    {
        GlobalOptions options = given;
        Findings findings(options.json);
        findings.add(Findings::Ok, "settings",
            options.settings.isEmpty()
                ? QStringLiteral("every global option is as it is by default.")
                : safeText(options.settings.join(QStringLiteral(", "))));
        checkAddresses(findings);
        checkPlayer(findings);
        options.usesKept = checkKeptAddresses(findings);
        try {
            checkChain(findings, options);
        } catch (const Failure &failure) {
            if (failure.status() == WrongUsage || failure.status() == NoAnswer)
                throw;
            findings.add(Findings::Missing, partOf(failure), failure.sentence());
        }
        return findings.finish();
    }

private:
    static void checkChain(Findings &findings, const GlobalOptions &options)
    {
        auto service = std::make_unique<ServiceStarter>(options);
        try {
            if (!checkMediaService(findings, *service))
                return;
        } catch (const StuckBus &) {
            static_cast<void>(service.release()); // tidying up would wait for the bus as well
            throw;
        }
        Session session(options, std::move(service));
        findings.add(Findings::Ok, "plug-in", QStringLiteral("loaded."));
        checkServers(findings, session);
        checkNetwork(findings);
    }
};

} // namespace

CommandPointer makeDoctor(CLI::App &app)
{
    return std::make_unique<Doctor>(app);
}
