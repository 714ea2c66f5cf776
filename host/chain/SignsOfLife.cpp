#include "chain/SignsOfLife.h"

#include "Text.h"
#include "chain/Diagnosis.h"
#include "chain/ServiceCalls.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <algorithm>

namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds answerLimit(2'000);
constexpr Milliseconds questionLimit(1'000);

QString problemOf(const QString &server, const Diagnosis &diagnosis)
{
    const QVariant name =
        valueOf(ServiceCalls(questionLimit).property(server, QStringLiteral("FriendlyName")));
    const QString title = quoted(name.isValid() ? name.toString() : server);
    return diagnosis.verdict == Diagnosis::Refused
        ? Text::tr("The media server %1 is listed, but can't be reached: %2.")
              .arg(title, diagnosis.reason())
        : Text::tr("The media server %1 is listed, but does not answer. It may be busy, "
                   "asleep or switched off.")
              .arg(title);
}

} // namespace

SignsOfLife::SignsOfLife(const QStringList &servers)
{
    for (const QString &server : servers) {
        const QDBusMessage call =
            ServiceCalls::propertyCall(server, QStringLiteral("SystemUpdateID"));
        m_questions.push_back({server,
            std::make_unique<QDBusPendingCallWatcher>(orkaDBusConnection().asyncCall(call))});
    }
}

QStringList SignsOfLife::problems()
{
    const auto isDone = [](const Question &question) {
        return question.call->isFinished();
    };
    const auto waited =
        std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - m_asked);
    Wait wait(
        std::max(answerLimit - waited, Milliseconds(0)), Text::tr("Asking the media servers"));
    for (const Question &question : m_questions)
        QObject::connect(
            question.call.get(), &QDBusPendingCallWatcher::finished, &wait, &Wait::wake);
    wait.until([&] { return std::all_of(m_questions.begin(), m_questions.end(), isDone); });
    QStringList sentences;
    for (const Question &question : m_questions) {
        if (!isDone(question)) {
            sentences.append(problemOf(question.server, {Diagnosis::ServerSilent}));
            continue;
        }
        const QDBusError error = question.call->error();
        const Diagnosis diagnosis =
            error.isValid() ? diagnosisOf(error.message()) : Diagnosis{Diagnosis::Answers};
        // A server that refuses the question, or doesn't know the number, answers, too.
        const bool isAlive = diagnosis.verdict == Diagnosis::Answers
            || (diagnosis.verdict == Diagnosis::Refused
                && !diagnosis.text.contains(QLatin1String("connect"), Qt::CaseInsensitive));
        if (!isAlive)
            sentences.append(problemOf(question.server, diagnosis));
    }
    return sentences;
}
