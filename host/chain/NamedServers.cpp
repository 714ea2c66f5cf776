#include "chain/NamedServers.h"

#include "KnownSentences.h"
#include "MediaServiceNames.h"
#include "Text.h"
#include "chain/KeptAddresses.h"
#include "chain/ServiceCalls.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

constexpr int mostShown = 5;

Failure notSaid(const QString &address)
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        Text::tr("The media service has not said in time what is at %1. Try again with a "
                 "longer --timeout.")
            .arg(KeptAddresses::shown(address)));
}

Failure problemOf(const QString &address, const QDBusError &error)
{
    const QString name = QStringLiteral("notReached");
    if (error.name() == QLatin1String(mediaService::errors::notReached))
        return Failure(AnsweredWithError, name, translatedSentence(safeText(error.message())));
    const bool noReply = error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout;
    if (noReply)
        return notSaid(address);
    const bool hasLeft = error.type() == QDBusError::Disconnected
        || error.type() == QDBusError::ServiceUnknown
        || error.name().endsWith(QLatin1String(".NameHasNoOwner"));
    if (hasLeft) {
        return serviceLeft(Text::tr("The media service left before it had looked at %1. Run "
                                    "the command again.")
                               .arg(KeptAddresses::shown(address)));
    }
    return Failure(AnsweredWithError, name,
        Text::tr("This media service can't be told to look at %1: %2. The bridge can: "
                 "--media-service bridge.")
            .arg(KeptAddresses::shown(address), translatedSentence(safeText(error.message()))));
}

} // namespace

NamedServers::NamedServers(const QStringList &addresses, std::chrono::milliseconds limit)
    : m_addresses(addresses.mid(0, most))
    , m_others(addresses.mid(most))
{
    for (const QString &address : m_addresses)
        send(address, limit);
}

void NamedServers::send(const QString &address, std::chrono::milliseconds limit)
{
    const QDBusMessage call = ServiceCalls::bridgeCall(QStringLiteral("AddServer"), address);
    auto *watcher =
        new QDBusPendingCallWatcher(orkaDBusConnection().asyncCall(call, int(limit.count())), this);
    m_pending.insert(address);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, address, watcher] {
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        watcher->deleteLater();
        if (reply.isError())
            m_problems.insert(address, problemOf(address, reply.error()));
        m_pending.remove(address);
        emit changed();
    });
}

bool NamedServers::hasAnswered(const QString &address) const
{
    const auto problem = m_problems.find(address);
    return !isPending(address) && (problem == m_problems.end() || problem->status() != NoAnswer);
}

QStringList NamedServers::problems() const
{
    QStringList sentences;
    for (const QString &address : m_addresses) {
        const auto problem = m_problems.find(address);
        if (problem != m_problems.end())
            sentences.append(problem->sentence());
    }
    if (!m_others.isEmpty()) {
        QStringList shown;
        for (const QString &address : m_others.mid(0, mostShown))
            shown.append(KeptAddresses::shown(address));
        if (m_others.size() > mostShown)
            shown.append(QStringLiteral("…"));
        sentences.append(
            Text::tr("No more than %1 addresses are looked at; these are left out: %2. \"orka "
                     "servers --forget ADDRESS\" takes one away.")
                .arg(Text::number(most), shown.join(QStringLiteral(", "))));
    }
    return sentences;
}

void NamedServers::requireFound(const QString &address) const
{
    const auto problem = m_problems.find(address);
    if (problem != m_problems.end())
        throw Failure(*problem);
    if (isPending(address))
        throw notSaid(address);
}
