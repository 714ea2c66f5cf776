#include "ServiceCounters.h"

#include "dleyna.h"

#include <api/core/orka.h>

#include <QDBusReply>

ServiceCounters ServiceCounters::read()
{
    const QDBusMessage answer = orkaDBusConnection().call(
        QDBusMessage::createMethodCall(dleyna::service(), QStringLiteral("/"),
            QStringLiteral("org.orka.FastService"), QStringLiteral("Counters")));
    ServiceCounters counters;
    counters.calls = answer.arguments().value(0).toUInt();
    counters.lastProperty = double(answer.arguments().value(1).toULongLong()) * 1e-9;
    return counters;
}
