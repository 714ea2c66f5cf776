#include "chain/NamedServers.h"

#include "MediaServiceNames.h"
#include "chain/ServiceCalls.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

QString problemOf(const QString &address, const QDBusError &error)
{
    if (error.name() == QLatin1String(mediaService::errors::notReached))
        return safeText(error.message());
    const bool noReply = error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout;
    return noReply
        ? QStringLiteral("The media service has not said in time what is at %1. Try again with a "
                         "longer --timeout.")
              .arg(quoted(address))
        : QStringLiteral("This media service can't be told to look at %1: %2. The bridge can: "
                         "--media-service bridge.")
              .arg(quoted(address), safeText(error.message()));
}

} // namespace

NamedServers::NamedServers(const QStringList &addresses, std::chrono::milliseconds limit)
    : m_addresses(addresses)
{
    for (const QString &address : addresses)
        send(address, limit);
}

void NamedServers::send(const QString &address, std::chrono::milliseconds limit)
{
    const QDBusMessage call = ServiceCalls::bridgeCall(QStringLiteral("AddServer"), address);
    auto *watcher =
        new QDBusPendingCallWatcher(orkaDBusConnection().asyncCall(call, int(limit.count())), this);
    ++m_pending;
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, address, watcher] {
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        watcher->deleteLater();
        if (reply.isError())
            m_problems.insert(address, problemOf(address, reply.error()));
        --m_pending;
        emit changed();
    });
}

QStringList NamedServers::problems() const
{
    QStringList sentences;
    for (const QString &address : m_addresses) {
        if (m_problems.contains(address))
            sentences.append(m_problems.value(address));
    }
    return sentences;
}
