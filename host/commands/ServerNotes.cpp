#include "commands/ServerNotes.h"

#include "Text.h"
#include "chain/NetworkReport.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "output/JsonOutput.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "tree/SearchKinds.h"
#include "tree/ServerList.h"

namespace {

constexpr std::chrono::milliseconds questionLimit(1000);

QString leftOut(const Session &session, const QString &server)
{
    const ServiceCalls service(std::min(session.options().timeout, questionLimit));
    const QString name =
        valueOf(service.property(server, QStringLiteral("FriendlyName"))).toString();
    return Text::tr("The media server %1 is left out: the media service lists it, but does "
                    "not tell all about it. It may not answer; try again with a longer "
                    "--wait.")
        .arg(quoted(name.isEmpty() ? server : name));
}

QStringList unknownSearches(const Session &session, ServerList &servers)
{
    QStringList sentences;
    for (const OrkaRoles &server : servers.servers()) {
        if (server.search().isEmpty())
            sentences.append(searchUnknown(session, server.path()));
    }
    sentences.removeAll(QString());
    return sentences;
}

} // namespace

QStringList lackingServers(const Session &session, ServerList &servers, const NetworkReport &report)
{
    QStringList problems;
    if (servers.servers().isEmpty() && report.isCutOff())
        problems.append(noServersSentence(report));
    problems += session.mediaService().namedServers().problems();
    const QStringList missing = servers.missing();
    for (const QString &path : missing)
        problems.append(leftOut(session, path));
    return problems;
}

ServerNotes::ServerNotes(Session &session, const CMPath &path)
    : m_session(session)
{
    if (path == session.root())
        m_signs = std::make_unique<SignsOfLife>(session.mediaService().servers().paths());
}

ServerNotes::~ServerNotes() = default;

CMError ServerNotes::lacking()
{
    if (!m_signs)
        return CMError();
    m_servers = std::make_unique<ServerList>(m_session);
    if (!m_servers->isOfServers()) {
        m_signs.reset();
        return CMError();
    }
    const NetworkReport report = NetworkReport::read();
    m_lacking = lackingServers(m_session, *m_servers, report);
    m_others = report.absent;
    if (m_servers->servers().isEmpty() && m_lacking.isEmpty() && !m_session.options().json)
        m_others.prepend(noServersSentence(report));
    return incompleteError(m_lacking);
}

int ServerNotes::tell()
{
    if (!m_signs)
        return Answered;
    for (const QString &problem :
        m_lacking + m_others + unknownSearches(m_session, *m_servers) + m_signs->problems())
        ::tell(problem);
    return m_lacking.isEmpty() ? Answered : AnsweredWithError;
}
