#include "Failure.h"
#include "Text.h"
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

    void add(Verdict verdict, const QString &what, const QString &message)
    {
        const QString words[] = {Text::tr("ok"), Text::tr("warning"), Text::tr("missing")};
        m_anythingMissing = m_anythingMissing || verdict == Missing;
        if (!m_json) {
            using Terminal::Style;
            static const Style styles[] = {Style::Good, Style::Doubtful, Style::Bad};
            const QString word = padded(words[verdict], 7);
            writeLine(Terminal::styled(word, styles[verdict])
                + QStringLiteral("  %1: %2").arg(what, message));
        }
        OrkaHash check;
        check.setValue(QStringLiteral("what"), what);
        check.setValue(QStringLiteral("status"), words[verdict]);
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
        findings.add(Findings::Warning, Text::tr("bus limits"),
            Text::tr("could not be measured (%1); a bus with the daemon's built-in limit "
                     "takes 128 calls at once, which is too few.")
                .arg(safeText(replies.error)));
    } else if (replies.limited && replies.taken < neededPendingReplies) {
        findings.add(Findings::Warning, Text::tr("bus limits"),
            Text::tr("the bus takes only %1 unanswered calls of one program "
                     "(max_replies_per_connection). When 200 tracks are played at once most "
                     "of them lose their URL, and big folders are read in part. Set the "
                     "limit to 50000 in the bus's configuration, as session buses have it.")
                .arg(Text::number(replies.taken)));
    } else {
        findings.add(Findings::Ok, Text::tr("bus limits"),
            (replies.limited ? Text::tr("takes %1 unanswered calls of one program.")
                             : Text::tr("takes more than %1 unanswered calls of one program."))
                .arg(Text::number(replies.taken)));
    }
}

QString lifeOf(const ServiceStarter &service, bool answers)
{
    const QString program = safeText(service.program());
    const QString name = ServiceStarter::busName();
    if (!answers)
        return Text::tr("%1 has the name %2 but doesn't answer. End it, or start it again.")
            .arg(program, name);
    if (service.isForThisRun())
        return Text::tr("%1 has the name %2, started for this run.").arg(program, name);
    const QString since = service.startedAt().toString(
        Text::tr("yyyy-MM-dd HH:mm:ss", "as QDateTime::toString() writes it"));
    return (service.isLasting()
            ? Text::tr("%1 has the name %2, there since %3; it ends when nobody has used it for a "
                       "while, or by \"orka stop\".")
            : Text::tr("%1 has the name %2, there since %3."))
        .arg(program, name, since);
}

/// Whether it can be asked.
bool checkMediaService(Findings &findings, ServiceStarter &service)
{
    findings.add(Findings::Ok, Text::tr("bus"), service.busDescription() + QLatin1Char('.'));
    checkBusLimits(findings, service);
    const bool answers = service.answers();
    findings.add(answers ? Findings::Ok : Findings::Missing, Text::tr("media service"),
        lifeOf(service, answers));
    return answers;
}

/// Asks each media server for its first row, all at once; returns why each doesn't answer, by the
/// base of its path.
QHash<QString, QString> askServers(Session &session, const ServerList::Servers &servers)
{
    const QStringList objects = session.mediaService().servers().paths();
    const ServiceCalls service(lookLimit);
    std::map<QString, std::unique_ptr<QDBusPendingCallWatcher>> calls;
    QHash<QString, QString> names;
    Wait wait(lookLimit, Text::tr("Asking the media servers"));
    for (const OrkaRoles &server : servers) {
        const QString object = service.objectOf(server.path().base(), objects);
        names[server.path().base()] = quoted(server.title().toString());
        if (object.isEmpty())
            continue;
        auto call = std::make_unique<QDBusPendingCallWatcher>(
            orkaDBusConnection().asyncCall(ServiceCalls::childrenCall(object, 0, 1)));
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
            problems[base] = Text::tr("%1 is listed, but does not answer within %2 seconds. It may "
                                      "be busy, asleep or switched off.")
                                 .arg(names.value(base), Text::number(lookLimit.count() / 1000));
            continue;
        }
        const Diagnosis diagnosis = diagnosisOf(call->error().message());
        if (call->isError() && diagnosis.isTrouble()) {
            problems[base] = Text::tr("%1 is listed, but can't be read: %2.")
                                 .arg(names.value(base), diagnosis.reason());
        }
    }
    return problems;
}

void checkServers(Findings &findings, Session &session)
{
    ServerList servers(session);
    servers.settle();
    if (servers.servers().isEmpty() && servers.isWhole()) {
        findings.add(Findings::Warning, Text::tr("media servers"),
            Text::tr("none has shown up. Start one on this network; a firewall may keep UDP "
                     "port 1900 closed."));
    }
    for (const QString &problem : session.mediaService().namedServers().problems())
        findings.add(Findings::Warning, Text::tr("media server"), problem);
    for (const QString &server : servers.missing()) {
        findings.add(Findings::Warning, Text::tr("media server"),
            Text::tr("the media service lists %1, but does not tell all about it.")
                .arg(safeText(server)));
    }
    const ServerList::Servers all = servers.servers();
    const QHash<QString, QString> problems = askServers(session, all);
    for (const OrkaRoles &server : all) {
        const QString title = quoted(server.title().toString());
        const QString problem = problems.value(server.path().base());
        if (!problem.isEmpty()) {
            findings.add(Findings::Warning, Text::tr("media server"), problem);
            continue;
        }
        const QStringList kinds = searchKinds(session, server.path());
        const QString unknown = kinds.isEmpty() ? searchUnknown(session, server.path()) : QString();
        if (!unknown.isEmpty()) {
            findings.add(Findings::Warning, Text::tr("media server"), unknown);
            continue;
        }
        findings.add(Findings::Ok, Text::tr("media server"),
            kinds.isEmpty() ? Text::tr("%1 can be browsed, not searched.").arg(title)
                            : Text::tr("%1 can be searched by %2.")
                                  .arg(title, kindNames(kinds).join(QStringLiteral(", "))));
    }
}

void checkNetwork(Findings &findings)
{
    const NetworkReport report = NetworkReport::read();
    if (!report.isTold)
        return;
    findings.add(report.listening.isEmpty() ? Findings::Warning : Findings::Ok, Text::tr("network"),
        report.listening.isEmpty()
            ? Text::tr("no interface of this machine carries multicast, by which media "
                       "servers are found. Connect one, or name a server by its address: "
                       "orka servers --add ADDRESS.")
            : Text::tr("media servers are listened for at %1.")
                  .arg(safeText(report.listening.join(QStringLiteral(", ")))));
    for (const QString &trouble : report.absent)
        findings.add(Findings::Warning, Text::tr("media server"), safeText(trouble));
    for (const QString &trouble : report.troubles)
        findings.add(Findings::Warning, Text::tr("network"), safeText(trouble));
}

void checkAddresses(Findings &findings)
{
    const QStringList addresses = NetworkPublisher::currentAddresses();
    findings.add(addresses.isEmpty() ? Findings::Warning : Findings::Ok, Text::tr("addresses"),
        addresses.isEmpty() ? Text::tr("this machine has none that others can reach.")
                            : addresses.join(QStringLiteral(", ")));
}

void checkPlayer(Findings &findings)
{
    const bool there = !QStandardPaths::findExecutable(QStringLiteral("mpv")).isEmpty();
    findings.add(there ? Findings::Ok : Findings::Warning, Text::tr("player"),
        there ? Text::tr("mpv is there.")
              : Text::tr("mpv isn't installed; \"orka play\" needs it, or --player."));
}

/// False where they can't be read; the others are looked at all the same.
bool checkKeptAddresses(Findings &findings)
{
    try {
        KeptAddresses::read();
        return true;
    } catch (const Failure &failure) {
        findings.add(Findings::Warning, Text::tr("kept addresses"), failure.sentence());
        return false;
    }
}

/// The part of the chain that is missing, as the failure names it.
QString partOf(const Failure &failure)
{
    const QString name = failure.error().name();
    if (name == QLatin1String("noBus") || name == QLatin1String("busLeft"))
        return Text::tr("bus");
    if (name == QLatin1String("noMediaService") || failure.isServiceLeft())
        return Text::tr("media service");
    return name == QLatin1String("noPlugin") ? Text::tr("plug-in") : Text::tr("answer");
}

class Doctor : public Command
{
public:
    explicit Doctor(CLI::App &app)
        : Command(app, "doctor", Text::mark("What is there and what is missing"), "orka doctor")
    {
    }

    int run(const GlobalOptions &given) override
    {
        GlobalOptions options = given;
        Findings findings(options.json);
        findings.add(Findings::Ok, Text::tr("settings"),
            options.settings.isEmpty() ? Text::tr("every global option is as it is by default.")
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
        findings.add(Findings::Ok, Text::tr("plug-in"), Text::tr("loaded."));
        checkServers(findings, session);
        checkNetwork(findings);
    }
};

} // namespace

CommandPointer makeDoctor(CLI::App &app)
{
    return std::make_unique<Doctor>(app);
}
