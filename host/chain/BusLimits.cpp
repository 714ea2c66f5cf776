#include "chain/BusLimits.h"

#include "Text.h"
#include "chain/StuckBus.h"
#include "chain/Wait.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>

#include <memory>
#include <vector>

namespace {

constexpr std::chrono::seconds answerLimit(5);

/// Takes every call and answers none.
class SilentObject : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return QString(); }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        message.setDelayedReply(true);
        return true;
    }
};

const QString calleeName = QStringLiteral("orka-limits-callee");
const QString callerName = QStringLiteral("orka-limits-caller");

void open(const QString &bus, const QString &name)
{
    if (bus == QLatin1String("session")) {
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    } else if (bus == QLatin1String("system")) {
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    } else {
        QDBusConnection::connectToBus(bus, name);
    }
}

/// Two connections of our own, closed at the end.
struct Connections
{
    ~Connections()
    {
        QDBusConnection::disconnectFromBus(callerName);
        QDBusConnection::disconnectFromBus(calleeName);
    }
    QDBusConnection callee{calleeName};
    QDBusConnection caller{callerName};
};

using Calls = std::vector<std::unique_ptr<QDBusPendingCallWatcher>>;

Calls callSilentObject(const QDBusConnection &caller, const QString &callee, int count)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        callee, QStringLiteral("/"), QStringLiteral("orka.Probe"), QStringLiteral("Wait"));
    Calls calls;
    for (int i = 0; i < count; ++i)
        calls.push_back(std::make_unique<QDBusPendingCallWatcher>(caller.asyncCall(call)));
    return calls;
}

/// The bus answers in order: when this comes back, every refusal has come.
bool hearAll(const QDBusConnection &caller)
{
    const QDBusPendingCallWatcher last(
        caller.asyncCall(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    Wait wait(answerLimit, Text::tr("Measuring the bus"));
    QObject::connect(&last, &QDBusPendingCallWatcher::finished, &wait, &Wait::wake);
    return wait.until([&last] { return last.isFinished(); });
}

PendingReplies countRefusals(const Calls &calls)
{
    PendingReplies result;
    for (const auto &call : calls) {
        if (!call->isFinished()) {
            ++result.taken;
        } else if (call->error().type() == QDBusError::LimitsExceeded) {
            result.limited = true;
        } else {
            result.error = call->error().message();
        }
    }
    return result;
}

} // namespace

PendingReplies measurePendingReplies(const QString &bus, const QString &description, int most)
{
    inTimeOnBus(description, answerLimit, [bus] {
        open(bus, calleeName);
        open(bus, callerName);
    });
    SilentObject silent;
    Connections opened;
    PendingReplies failed;
    if (!opened.caller.isConnected() || !opened.callee.isConnected()) {
        failed.error = opened.caller.lastError().message();
        return failed;
    }
    opened.callee.registerVirtualObject(
        QStringLiteral("/"), &silent, QDBusConnection::VirtualObjectRegisterOption::SubPath);
    const Calls calls = callSilentObject(opened.caller, opened.callee.baseService(), most);
    if (!hearAll(opened.caller))
        throw StuckBus(description);
    return countRefusals(calls);
}
