#include "chain/Session.h"

#include "Failure.h"
#include "KnownSentences.h"
#include "Text.h"
#include "chain/PluginLoader.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <api/core/CMRoot.h>

#include <QRegularExpression>

namespace {

using Milliseconds = std::chrono::milliseconds;

/// The time that is left is too short for a question.
constexpr Milliseconds shortestQuestion(500);
constexpr Milliseconds rowLimit(1'000);
/// All that the plug-in says where a listing failed, or a node isn't there.
const QLatin1String unexplained("Failed to retrieve content");

QString withoutStop(QString text)
{
    while (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

/// A path in the error is the node's, whatever its parameters: people are told its name.
Failure errorAnswer(const CMError &error, const CMPath &path, const QString &node)
{
    const QString bare = CMPath(path.prefix(), path.base()).toEncoded();
    const QRegularExpression itsPath(
        QRegularExpression::escape(bare) + QStringLiteral("(\\?\\S*[^\\s.])?(?=\\.?$)"));
    QString text = translatedSentence(safeText(error.message().toString()));
    const QRegularExpressionMatch match = itsPath.match(text);
    if (match.hasMatch() && !path.base().isEmpty())
        text.replace(match.capturedStart(), match.capturedLength(), node);
    return Failure(
        error, Text::tr("%1 was answered with an error: %2.").arg(node, withoutStop(text)));
}

Failure noAnswer(const QString &node, Milliseconds limit)
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        Text::tr("No answer about %1 came in %2 s: the media server or the media service "
                 "hangs, or the work takes longer. Try again with a longer --timeout.")
            .arg(node, QLocale().toString(double(limit.count()) / 1000)));
}

} // namespace

Session::Session(const GlobalOptions &options, Errors errors)
    : Session(options, std::make_unique<ServiceStarter>(options))
{
    m_errors = errors;
}

Session::Session(const GlobalOptions &options, std::unique_ptr<ServiceStarter> mediaService)
    : m_options(options)
    , m_mediaService(std::move(mediaService))
{
    m_mediaService->requireAnswer();
    makeWorker();
}

void Session::makeWorker()
{
    m_worker.reset(); // first: two can't have the same prefix
    m_worker = loadWorker(m_options);
    m_silence.start();
    mount();
}

void Session::mount()
{
    if (!CMRoot()->mount(m_worker.get())) {
        throw missing(QStringLiteral("noPlugin"),
            Text::tr("The worker can't be mounted under the prefix %1: another has it. Choose "
                     "one with --prefix.")
                .arg(quoted(m_worker->prefix())));
    }
}

QString Session::nameOf(const CMPath &path) const
{
    const QString name = m_names.value(path.base());
    return name.isNull() ? safeText(path.toEncoded()) : quoted(name);
}

QString Session::serverNameOf(const CMPath &path) const
{
    const QString base = QLatin1Char('/') + path.base().section(QLatin1Char('/'), 1, 1);
    return m_names.contains(base) ? Text::tr("The media server %1").arg(quoted(m_names.value(base)))
                                  : Text::tr("The media server of %1").arg(nameOf(path));
}

Milliseconds Session::remaining() const
{
    return std::max(Milliseconds(0), m_options.timeout - Milliseconds(m_silence.elapsed()));
}

void Session::await(const CMVoidReply &reply, const CMPath &path, const QString &doing)
{
    if (!m_failed)
        m_silence.start(); // what passed between two requests is nobody's silence
    const CMReplyWatcherObject watcher(reply);
    Wait wait(remaining(), doing);
    QObject::connect(&watcher, &CMReplyWatcherObject::finishedSignal, &wait, &Wait::wake);
    QObject::connect(m_mediaService.get(), &ServiceStarter::gone, &wait, &Wait::wake);
    m_asked.start();
    const bool inTime =
        wait.until([&] { return reply.isFinished() || !m_mediaService->isThere(); });
    m_mediaService->requireThere();
    m_failed = !inTime || reply.error().isError();
    if (!inTime) {
        m_mediaService->requireSignOfLife();
        throw noAnswer(path.base().isEmpty() ? Text::tr("the list of media servers") : nameOf(path),
            m_options.timeout);
    }
}

Patient Session::patient(const CMPath &path) const
{
    return {nameOf(path), serverNameOf(path), path.hasParam(QStringLiteral("query")),
        Milliseconds(m_asked.elapsed())};
}

/// Asks the media service, which has what is left of the time, and a moment where that is nothing.
Diagnosis Session::diagnoseRow(const CMPath &path, int position) const
{
    return diagnose(
        path, position, std::min(remaining(), diagnosisLimit(Milliseconds(m_asked.elapsed()))));
}

void Session::requireAnswerOf(const CMPath &path)
{
    m_mediaService->requireSameOwner();
    m_asked.start();
    const Diagnosis diagnosis = diagnoseRow(path, 0);
    if (diagnosis.isTrouble())
        throw failureOf(diagnosis, patient(path));
}

void Session::requireSignOfLifeOf(const CMPath &path)
{
    m_mediaService->requireSameOwner();
    m_asked.start();
    const bool isHurried = remaining() < shortestQuestion;
    const Diagnosis diagnosis = diagnoseRow(path, 0);
    if (diagnosis.verdict != Diagnosis::ServerSilent
        && diagnosis.verdict != Diagnosis::ServiceSilent)
        return;
    throw isHurried ? noAnswer(nameOf(path), m_options.timeout)
                    : failureOf(diagnosis, patient(path));
}

bool Session::givesRow(const CMPath &path, int position)
{
    return m_mediaService->isThere()
        && diagnose(path, position, rowLimit).verdict == Diagnosis::Answers;
}

bool Session::hasTimeLeft() const
{
    return remaining() >= shortestQuestion;
}

Failure Session::silenceOf(const CMPath &path) const
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        Text::tr("%1 could not be read: its media server answers, but not about this in time.")
            .arg(nameOf(path)));
}

int Session::explain(const CMError &error, const CMPath &path, int position)
{
    m_mediaService->requireSameOwner();
    const QString text = error.message().sourceString();
    if (m_errors == Plain || !text.startsWith(unexplained))
        throw errorAnswer(error, path, nameOf(path));
    if (text == unexplained && remaining() < shortestQuestion)
        throw noAnswer(nameOf(path), m_options.timeout);
    const Diagnosis diagnosis = text == unexplained ? diagnoseRow(path, position)
                                                    : diagnosisOf(text.mid(unexplained.size() + 2));
    if (diagnosis.isTrouble() || (text == unexplained && diagnosis.verdict == Diagnosis::Answers))
        throw failureOf(diagnosis, patient(path));
    if (diagnosis.verdict != Diagnosis::Empty)
        throw errorAnswer(error, path, nameOf(path));
    return diagnosis.childCount;
}

CMReply<OrkaRowsRoles> Session::askRows(
    const CMPath &path, int first, int last, const QStringList &roles)
{
    CMReply<OrkaRowsRoles> reply;
    // Not through getRows(), which makes an error of one row that isn't there.
    CMRoot()->getRowsRequest(CMGetRowsRequest(path, first, last, -1, roles, reply));
    return reply;
}

OrkaRowsRoles Session::rowsOf(
    const CMReply<OrkaRowsRoles> &reply, const CMPath &path, int first, const QString &doing)
{
    await(reply, path, doing);
    if (!reply.error().isError())
        return reply.value();
    OrkaRowsRoles empty;
    empty.setRowsCount(explain(reply.error(), path, first));
    return empty;
}

OrkaRowsRoles Session::rows(const CMPath &path, int first, int last, const QStringList &roles)
{
    return rowsOf(askRows(path, first, last, roles), path, first,
        Text::tr("Reading rows from %1").arg(first));
}

OrkaRoles Session::data(const CMPath &path, const QStringList &roles)
{
    const CMReply<QVariantList> reply;
    CMRoot()->getDataRequest(CMGetDataRequest(path, roles, reply));
    await(reply, path, Text::tr("Reading a node"));
    requireNoError(reply.error(), path);
    return recordOf(roles, reply.value());
}

QVariant Session::set(const CMPath &path, const QVariant &value, const QString &doing)
{
    const CMReply<QVariant> reply;
    CMRoot()->setDataRequest(CMSetDataRequest(path, value, reply));
    await(reply, path, doing);
    requireNoError(reply.error(), path);
    return reply.value();
}

void Session::requireNoError(const CMError &error, const CMPath &path)
{
    if (!error.isError())
        return;
    explain(error, path, 0);
    throw errorAnswer(error, path, nameOf(path)); // nothing there is no answer about one node
}

OrkaRoles recordOf(const QStringList &roles, const QVariantList &values)
{
    OrkaRoles record;
    for (int i = 0; i < qMin(roles.size(), values.size()); ++i) {
        if (values.at(i).isValid())
            record.setValue(roles.at(i), values.at(i));
    }
    return record;
}
