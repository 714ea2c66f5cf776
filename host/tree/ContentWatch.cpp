#include "tree/ContentWatch.h"

#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

#include <QDBusPendingReply>
#include <QDBusVariant>

namespace {

constexpr std::chrono::milliseconds questionLimit(1'000);
const QString updateId = QStringLiteral("SystemUpdateID");

} // namespace

ContentWatch::ContentWatch(const Session &session, const CMPath &path)
    : m_server(
        ServiceCalls(questionLimit)
            .objectOf(ServerList::serverBase(path), session.mediaService().servers().paths()))
{
    if (!m_server.isEmpty())
        m_before = std::make_unique<QDBusPendingCallWatcher>(
            orkaDBusConnection().asyncCall(ServiceCalls::propertyCall(m_server, updateId)));
}

QString ContentWatch::change() const
{
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
    return QStringLiteral(
        "The media server's content has changed while it was read: some of it may "
        "be out of date, missing or there twice. Run the command again.");
}
