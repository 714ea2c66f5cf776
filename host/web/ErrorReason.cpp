#include "web/ErrorReason.h"

#include "chain/ServiceCalls.h"
#include "output/SafeText.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <algorithm>

namespace {

const QLatin1String unexplained("Failed to retrieve content");

bool isSearch(const CMPath &path)
{
    return path.hasParam(QStringLiteral("query"));
}

bool isTrack(const CMPath &path)
{
    return path.param(QStringLiteral("itemType")) == QLatin1String("track");
}

} // namespace

ErrorReason::ErrorReason(const CMError &error, Question question, const QStringList &servers,
    std::chrono::milliseconds timeout, Done done, QObject *parent)
    : QObject(parent)
    , m_error(error)
    , m_question(std::move(question))
    , m_done(std::move(done))
{
    const QString udn = ServerList::serverBase(m_question.path).mid(1);
    const auto server = std::find_if(
        servers.begin(), servers.end(), [&](const QString &path) { return isPathOf(path, udn); });
    if (!error.message().sourceString().startsWith(unexplained) || udn.isEmpty()) {
        tell({Diagnosis::Unknown}, QString());
    } else if (server == servers.end()) {
        tell({Diagnosis::ServerGone}, QString());
    } else {
        ask(*server, std::min(timeout, diagnosisLimit(m_question.waited)));
    }
}

void ErrorReason::ask(const QString &server, std::chrono::milliseconds limit)
{
    const QString below = m_question.path.base().section(QLatin1Char('/'), 2);
    const QString object = below.isEmpty() ? server : server + QLatin1Char('/') + below;
    const QDBusMessage node = isTrack(m_question.path)
        ? ServiceCalls::everythingCall(object)
        : ServiceCalls::childrenCall(object, uint(m_question.first), uint(m_question.count));
    const auto send = [&](const QDBusMessage &call) {
        auto watcher = std::make_unique<QDBusPendingCallWatcher>(
            orkaDBusConnection().asyncCall(call, int(limit.count())));
        connect(
            watcher.get(), &QDBusPendingCallWatcher::finished, this, &ErrorReason::lookAtAnswers);
        return watcher;
    };
    m_node = send(node);
    if (!isTrack(m_question.path))
        m_count = send(ServiceCalls::childCountCall(object));
    m_name = send(ServiceCalls::propertyCall(server, QStringLiteral("FriendlyName")));
}

void ErrorReason::lookAtAnswers()
{
    if (!m_node->isFinished() || !m_name->isFinished() || (m_count && !m_count->isFinished()))
        return;
    const ServiceAnswer name = ServiceCalls::answerOf(m_name->reply());
    const QString text = m_error.message().sourceString().mid(unexplained.size() + 2);
    const ServiceAnswer node = ServiceCalls::answerOf(m_node->reply());
    Diagnosis diagnosis = !text.isEmpty() ? diagnosisOf(text)
        : isTrack(m_question.path)        ? diagnosisOf(node)
                                          : diagnosisOfChild(node);
    if (m_count && text.isEmpty() && diagnosis.verdict == Diagnosis::Answers)
        diagnosis = diagnosisOf(ServiceCalls::answerOf(m_count->reply()));
    if (!name.came)
        diagnosis.verdict = Diagnosis::ServiceSilent;
    tell(diagnosis, valueOf(name).toString());
}

void ErrorReason::tell(const Diagnosis &diagnosis, const QString &server)
{
    deleteLater();
    const Done done = std::exchange(m_done, nullptr);
    if (!done)
        return;
    const bool isSearched = isSearch(m_question.path);
    const bool isEmpty = diagnosis.verdict == Diagnosis::Empty && m_question.first == 0;
    const QString title = server.isEmpty() ? QString() : quoted(server);
    const QString named = title.isEmpty() ? QStringLiteral("The media server")
                                          : QStringLiteral("The media server %1").arg(title);
    if (isEmpty && !isTrack(m_question.path)) {
        done(CMError());
    } else if (diagnosis.isTrouble()) {
        const QString node = isSearched ? title : QStringLiteral("This part of %1").arg(title);
        done(failureOf(diagnosis, {node, named, isSearched, m_question.waited}).error());
    } else if (diagnosis.verdict == Diagnosis::Answers) {
        done(CMError(m_error.name(), m_error.title(),
            TrString(QStringLiteral("%1 failed once, but answers now. Try again.").arg(named))));
    } else {
        done(m_error);
    }
}
