#include "chain/ServiceServers.h"

#include "chain/ServiceCalls.h"
#include "chain/ServiceStarter.h"

#include <api/core/orka.h>

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

ServiceServers::ServiceServers(
    const QString &owner, std::chrono::milliseconds age, std::chrono::milliseconds searchTime)
    : m_owner(owner)
    , m_ageAtStart(age)
    , m_leftAtStart(searchTime - age)
{
    m_clock.start();
    QDBusConnection bus = orkaDBusConnection();
    const QDBusMessage call = ServiceCalls::managerCall(QStringLiteral("GetServers"));
    // Before the question, so that nothing is announced between the two. From whomever: given a
    // service's name, Qt waits for the bus to tell its owner, and aborts where that has just ended.
    for (const char *signal : {"FoundServer", "LostServer"}) {
        bus.connect(QString(), call.path(), call.interface(), QString::fromLatin1(signal), this,
            SLOT(announced(QDBusMessage)));
    }
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &ServiceServers::listed);
}

std::chrono::milliseconds ServiceServers::untilSettled() const
{
    return m_leftAtStart - std::chrono::milliseconds(m_clock.elapsed());
}

std::chrono::milliseconds ServiceServers::age() const
{
    return m_ageAtStart + std::chrono::milliseconds(m_clock.elapsed());
}

void ServiceServers::listed(QDBusPendingCallWatcher *call)
{
    const QDBusPendingReply<QList<QDBusObjectPath>> reply = *call;
    call->deleteLater();
    m_state = reply.isError() ? Refused : Listed;
    if (!reply.isError()) {
        for (const QDBusObjectPath &path : reply.value())
            add(path.path());
    }
    emit changed();
}

void ServiceServers::announced(const QDBusMessage &signal)
{
    if (signal.service() != m_owner || signal.signature() != QLatin1String("o"))
        return;
    const QString path = signal.arguments().constFirst().value<QDBusObjectPath>().path();
    if (signal.member() == QLatin1String("FoundServer"))
        add(path);
    else
        m_paths.removeAll(path);
    emit changed();
}

void ServiceServers::add(const QString &path)
{
    if (!m_paths.contains(path))
        m_paths.append(path);
}
