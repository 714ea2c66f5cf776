#include "chain/ServiceServers.h"

#include "chain/ServiceCalls.h"
#include "chain/ServiceStarter.h"

#include <api/core/orka.h>

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

ServiceServers::ServiceServers(std::chrono::milliseconds age, std::chrono::milliseconds searchTime)
    : m_ageAtStart(age)
    , m_leftAtStart(searchTime - age)
{
    m_clock.start();
    QDBusConnection bus = orkaDBusConnection();
    const QDBusMessage call = ServiceCalls::managerCall(QStringLiteral("GetServers"));
    // Before the question, so that nothing is announced between the two.
    bus.connect(call.service(), call.path(), call.interface(), QStringLiteral("FoundServer"), this,
        SLOT(found(QDBusObjectPath)));
    bus.connect(call.service(), call.path(), call.interface(), QStringLiteral("LostServer"), this,
        SLOT(lost(QDBusObjectPath)));
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
            found(path);
    }
    emit changed();
}

void ServiceServers::found(const QDBusObjectPath &path)
{
    if (!m_paths.contains(path.path()))
        m_paths.append(path.path());
    emit changed();
}

void ServiceServers::lost(const QDBusObjectPath &path)
{
    m_paths.removeAll(path.path());
    emit changed();
}
