#include "CMError.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(CMError, Name, "name")
ORKA_RECORD_KEY(CMError, Title, "title")
ORKA_RECORD_KEY(CMError, Message, "message")

CMError::CMError(const TrString &message)
    : CMError(DefaultName(), DefaultTitle(), message)
{
}

CMError::CMError(const QString &name, const TrString &title, const TrString &message)
{
    setValue(Name(), name);
    setValue(Title(), QVariant::fromValue(title));
    setValue(Message(), QVariant::fromValue(message));
}

QString CMError::DefaultName()
{
    return QStringLiteral("error");
}

TrString CMError::DefaultTitle()
{
    return ORKA_TR("Error");
}

QString CMError::name() const
{
    return value(Name()).toString();
}

TrString CMError::title() const
{
    return value(Title()).value<TrString>();
}

TrString CMError::message() const
{
    return value(Message()).value<TrString>();
}

CMError createErrorInternal(const QString &message)
{
    return CMError(QStringLiteral("internal"), CMError::DefaultTitle(), TrString(message));
}
