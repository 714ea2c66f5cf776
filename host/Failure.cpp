#include "Failure.h"

namespace {
const QString leftName = QStringLiteral("serviceLeft");
/// The service's bus ended, which another run may find again.
const QString busLeftName = QStringLiteral("busLeft");
} // namespace

Failure::Failure(int status, const QString &name, const QString &sentence)
    : m_status(status)
    , m_sentence(sentence)
    , m_error(name, CMError::DefaultTitle(), TrString(sentence))
    , m_what(sentence.toUtf8())
{
}

Failure::Failure(const CMError &answer, const QString &sentence)
    : m_status(AnsweredWithError)
    , m_sentence(sentence)
    , m_error(answer)
    , m_what(sentence.toUtf8())
{
}

Failure wrongUsage(const QString &sentence)
{
    return Failure(WrongUsage, QStringLiteral("wrongUsage"), sentence);
}

Failure missing(const QString &name, const QString &sentence)
{
    return Failure(Missing, name, sentence);
}

Failure serviceLeft(const QString &sentence)
{
    return missing(leftName, sentence);
}

bool Failure::isServiceLeft() const
{
    return m_error.name() == leftName || m_error.name() == busLeftName;
}

bool Failure::isServiceMissing() const
{
    return m_error.name() == QLatin1String("noMediaService")
        || m_error.name() == QLatin1String("noBus");
}
