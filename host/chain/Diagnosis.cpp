#include "chain/Diagnosis.h"

#include "KnownSentences.h"
#include "Text.h"
#include "chain/ServiceCalls.h"
#include "output/SafeText.h"

#include <api/core/CMPath.h>

#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int longestText = 300;

bool contains(const QString &text, const char *part)
{
    return text.contains(QLatin1String(part), Qt::CaseInsensitive);
}

/// Without the service's own heading and whatever XML it was given.
QString reasonIn(const QString &error)
{
    static const QRegularExpression heading(QStringLiteral("^\\w+ operation failed: "));
    QString text = error.section(QLatin1Char('<'), 0, 0).remove(heading).simplified();
    while (text.endsWith(QLatin1Char('.')) || text.endsWith(QLatin1Char(':')))
        text.chop(1);
    return text.size() > longestText ? text.left(longestText) + QStringLiteral("…") : text;
}

QString secondsText(std::chrono::milliseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
    return Text::tr("%Ln seconds", "within", std::max(1, int(seconds)));
}

/// A node that says nothing for so long doesn't answer.
constexpr std::chrono::milliseconds answerLimit(10'000);
/// However long a worker has waited, the node is given this to answer a question of ours.
constexpr std::chrono::milliseconds shortestQuestion(500);

} // namespace

QString Diagnosis::reason() const
{
    return translatedSentence(safeText(text));
}

std::chrono::milliseconds diagnosisLimit(std::chrono::milliseconds waited)
{
    return std::max(shortestQuestion, answerLimit - waited);
}

Diagnosis diagnosisOf(const ServiceAnswer &answer)
{
    if (!answer.came)
        return {Diagnosis::ServerSilent};
    if (!answer.isError())
        return {Diagnosis::Answers};
    if (answer.errorName.endsWith(QLatin1String(".Cancelled")))
        return {Diagnosis::ServerGone};
    return diagnosisOf(answer.error);
}

Diagnosis diagnosisOfChild(const ServiceAnswer &answer)
{
    Diagnosis diagnosis = diagnosisOf(answer);
    // Others answer with an empty list.
    if (listsObjects(answer) && childrenOf(answer).isEmpty())
        diagnosis.verdict = Diagnosis::Empty;
    return diagnosis;
}

Diagnosis diagnose(const CMPath &path, int position, std::chrono::milliseconds limit)
{
    const ServiceCalls service(limit);
    const ServiceAnswer servers = service.servers();
    if (!servers.came)
        return {Diagnosis::ServiceSilent};
    if (servers.isError())
        return {Diagnosis::Unknown};
    const QString object = service.objectOf(path.base(), objectPaths(servers));
    if (object.isEmpty())
        return {Diagnosis::ServerGone};
    if (path.param(QStringLiteral("itemType")) == QLatin1String("track"))
        return diagnosisOf(service.everything(object));
    Diagnosis diagnosis = diagnosisOfChild(service.child(object, uint(position)));
    if (diagnosis.isTrouble())
        return diagnosis;
    // A worker gives no rows without their number.
    const ServiceAnswer count = service.childCount(object);
    if (diagnosis.verdict == Diagnosis::Answers)
        return diagnosisOf(count);
    diagnosis.childCount = position > 0 ? valueOf(count).toInt() : 0;
    return diagnosis;
}

Diagnosis diagnosisOf(const QString &error)
{
    if (contains(error, "Empty 'DIDL-Lite'") || contains(error, "empty DIDL-Lite"))
        return {Diagnosis::Empty};
    for (const char *sign : {"did not answer within", "did not receive a reply", "timed out",
             "time-out", "timeout was reached"}) {
        if (contains(error, sign))
            return {Diagnosis::ServerSilent, reasonIn(error)};
    }
    if (contains(error, "Operation cancelled") || contains(error, "Operation was cancelled"))
        return {Diagnosis::ServerGone, reasonIn(error)};
    return {Diagnosis::Refused, reasonIn(error)};
}

Failure failureOf(const Diagnosis &diagnosis, const Patient &patient)
{
    const QString seconds = secondsText(patient.waited);
    switch (diagnosis.verdict) {
    case Diagnosis::ServerSilent:
        return Failure(NoAnswer, QStringLiteral("noAnswer"),
            Text::tr("%1 did not answer within %2. It may be busy, asleep or "
                     "switched off; try again, or restart it.")
                .arg(patient.server, seconds));
    case Diagnosis::ServiceSilent:
        return Failure(NoAnswer, QStringLiteral("noAnswer"),
            Text::tr("The media service did not answer within %1. End it, or start "
                     "it again; \"orka doctor\" tells which program it is.")
                .arg(seconds));
    case Diagnosis::ServerGone:
        return missing(QStringLiteral("serverGone"),
            Text::tr("%1 is not there any more. \"orka servers\" lists those that are there.")
                .arg(patient.server));
    case Diagnosis::Answers:
        return Failure(AnsweredWithError, QStringLiteral("refused"),
            Text::tr("%1 failed once, but answers now. Try again.").arg(patient.server));
    default:
        return Failure(AnsweredWithError, QStringLiteral("refused"),
            (patient.isSearched ? Text::tr("%1 could not be searched: %2.")
                                : Text::tr("%1 could not be read: %2."))
                .arg(patient.node, diagnosis.reason()));
    }
}
