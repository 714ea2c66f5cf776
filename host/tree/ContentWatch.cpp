#include "tree/ContentWatch.h"

#include "Text.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <QDBusPendingReply>
#include <QDBusVariant>

namespace {

constexpr std::chrono::milliseconds questionLimit(1'000);
const QString updateId = QStringLiteral("SystemUpdateID");

QString locationOf(const QString &server)
{
    return valueOf(ServiceCalls(questionLimit).property(server, QStringLiteral("Location")))
        .toString();
}

} // namespace

ContentWatch::ContentWatch(const Session &session, const CMPath &path)
    : m_server(
        ServiceCalls(questionLimit)
            .objectOf(ServerList::serverBase(path), session.mediaService().servers().paths()))
{
    if (m_server.isEmpty())
        return;
    m_location = locationOf(m_server);
    m_before = std::make_unique<QDBusPendingCallWatcher>(
        orkaDBusConnection().asyncCall(ServiceCalls::propertyCall(m_server, updateId)));
}

QString ContentWatch::change() const
{
    const QString location = m_location.isEmpty() ? QString() : locationOf(m_server);
    if (!location.isEmpty() && location != m_location) {
        return Text::tr("The media server has moved to another address while it was read, and "
                        "what came before has the old one. Run the command again.");
    }
    if (!m_before || !m_before->isFinished() || m_before->isError())
        return {};
    const QVariant before = QDBusPendingReply<QDBusVariant>(*m_before).value().variant();
    const ServiceCalls service(questionLimit);
    const QVariant now = valueOf(service.property(m_server, updateId));
    if (!now.isValid() || now == before)
        return {};
    // One that counts every question says nothing.
    if (valueOf(service.property(m_server, updateId)) != now)
        return {};
    return Text::tr("The media server's content has changed while it was read: some of it may "
                    "be out of date, missing or there twice. Run the command again.");
}
