#include "BusLimits.h"

#include "Wait.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>

#include <memory>
#include <vector>

namespace {

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

/// A connection of its own to the bus, closed at the end.
class OwnConnection
{
public:
    OwnConnection(const QString &bus, const QString &name)
        : m_name(name)
        , m_connection(open(bus, name))
    {
    }
    ~OwnConnection() { QDBusConnection::disconnectFromBus(m_name); }

    QDBusConnection &operator*() { return m_connection; }
    QDBusConnection *operator->() { return &m_connection; }

private:
    static QDBusConnection open(const QString &bus, const QString &name)
    {
        if (bus == QLatin1String("session")) {
            return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        }
        if (bus == QLatin1String("system")) {
            return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
        }
        return QDBusConnection::connectToBus(bus, name);
    }

    QString m_name;
    QDBusConnection m_connection;
};

using Calls = std::vector<std::unique_ptr<QDBusPendingCallWatcher>>;

Calls callSilentObject(OwnConnection &caller, const QString &callee, int count)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        callee, QStringLiteral("/"), QStringLiteral("orka.Probe"), QStringLiteral("Wait"));
    Calls calls;
    for (int i = 0; i < count; ++i) {
        calls.push_back(std::make_unique<QDBusPendingCallWatcher>(caller->asyncCall(call)));
    }
    return calls;
}

/// The bus answers in order: when this comes back, every refusal has come.
bool hearAll(OwnConnection &caller)
{
    const QDBusPendingCallWatcher last(
        caller->asyncCall(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
            QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    Wait wait(std::chrono::seconds(5), QStringLiteral("Measuring the bus"));
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

PendingReplies measurePendingReplies(const QString &bus, int most)
{
    SilentObject silent;
    OwnConnection callee(bus, QStringLiteral("orka-limits-callee"));
    OwnConnection caller(bus, QStringLiteral("orka-limits-caller"));
    PendingReplies failed;
    if (!caller->isConnected() || !callee->isConnected()) {
        failed.error = caller->lastError().message();
        return failed;
    }
    callee->registerVirtualObject(
        QStringLiteral("/"), &silent, QDBusConnection::VirtualObjectRegisterOption::SubPath);
    const Calls calls = callSilentObject(caller, callee->baseService(), most);
    if (!hearAll(caller)) {
        failed.error = QStringLiteral("the bus did not answer in 5 s");
        return failed;
    }
    return countRefusals(calls);
}
