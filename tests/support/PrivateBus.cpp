#include "PrivateBus.h"

#include <api/core/orka.h>

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <dbus/dbus.h>

namespace {

QDBusPendingCall askForId(const QDBusConnection &connection)
{
    return connection.asyncCall(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
}

/// Messages keep their order, so the answer comes after everything that was under way before it.
void roundTrip(const QDBusConnection &connection)
{
    QEventLoop loop;
    QDBusPendingCallWatcher watcher(askForId(connection));
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    if (connection.isConnected())
        loop.exec();
}

bool handleEvents()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return QEventLoop().processEvents(QEventLoop::AllEvents);
}

} // namespace

PrivateBus::PrivateBus(const QString &configuration)
{
    m_daemon.setStandardErrorFile(QProcess::nullDevice());
    m_address = m_daemon.startAndReadLine("dbus-daemon",
        {"--nofork", "--nosyslog", "--print-address", "--config-file=" + configuration});
    if (m_address.isEmpty() || !orkaOpenDBusConnection(m_address))
        qFatal("The test's own dbus-daemon did not start; the package dbus-daemon brings it.");
}

PrivateBus::~PrivateBus()
{
    m_daemon.terminate(); // killed, it would leave its socket behind
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::open(const QString &name) const
{
    return QDBusConnection::connectToBus(m_address, name);
}

void PrivateBus::close(const QString &name)
{
    QDBusConnection::disconnectFromBus(name);
}

void PrivateBus::limitUnreleasedReplies(long bytes)
{
    auto *connection = static_cast<DBusConnection *>(orkaDBusConnection().internalPointer());
    dbus_connection_set_max_received_size(connection, bytes);
}

void PrivateBus::settle(const QDBusConnection &service, const std::function<int()> &activity)
{
    const QDeadlineTimer deadline(45000);
    for (int quietRounds = 0; quietRounds < 2; ++quietRounds) {
        const int before = activity();
        roundTrip(orkaDBusConnection());
        roundTrip(service);
        while (handleEvents() && !deadline.hasExpired()) {
        }
        if (activity() != before)
            quietRounds = -1;
        if (deadline.hasExpired())
            qFatal("The program never came to rest.");
    }
}
