#include "ContainerWalk.h"

#include "DBusBarrier.h"
#include "cb_upnp.h"
#include "dleyna.h"
#include "log.h"

namespace walk {

const QString &containerCall()
{
    static const QString name = QStringLiteral("browse");
    return name;
}

const QString &trackCall()
{
    static const QString name = QStringLiteral("GetAll");
    return name;
}

} // namespace walk

ContainerWalk::ContainerWalk(CMUPnPWorker *worker, DBusBarrier *barrier)
    : SlicedWork(worker)
    , m_worker(worker)
    , m_barrier(barrier)
{
}

bool ContainerWalk::step()
{
    ObjectProperties object;
    if (m_objects.next(&object)) {
        visit(object);
        return true;
    }
    if (m_subContainers.isEmpty())
        return takeCall();
    listSubContainer();
    // When all have come, the barrier tells, and the next round goes on from there.
    return !m_subContainers.isEmpty();
}

bool ContainerWalk::takeCall()
{
    QDBusPendingCallWatcher *call = m_barrier->takeFinishedCall(&m_callName);
    if (!call) {
        if (m_barrier->isFinished())
            answer();
        return false;
    }
    if (call->isError()) {
        LOG4CPLUS_ERROR(upnpLog(), "Fetching children failed: " << call->error().message());
    } else {
        readCall(call);
    }
    // The barrier keeps the watcher to the end of the walk; the reply mustn't stay that long.
    DBusBarrier::release(*call);
    return true;
}

void ContainerWalk::readCall(QDBusPendingCallWatcher *call)
{
    m_position = 0;
    m_context = ReplyContext();
    LOG4CPLUS_DEBUG(upnpLog(), "browse finished call: " << m_callName);
    if (m_callName == walk::trackCall()) {
        visit(ObjectProperties(QDBusPendingReply<QVariantMap>(*call).value()));
    } else {
        m_objects.open(QDBusPendingReply<PropertyMaps>(*call).reply());
    }
}

void ContainerWalk::visit(const ObjectProperties &object)
{
    ++m_position;
    const auto path = object.value(ObjectProperties::Path).value<QDBusObjectPath>();
    if (m_barrier->visited.contains(path.path()))
        return;
    m_barrier->visited.insert(path.path());

    if (object.string(ObjectProperties::Type) == QLatin1String("container")) {
        // '_' sorts after the digits, so containers at larger positions are visited first.
        const QString name =
            m_callName + QStringLiteral("%1").arg(m_position, 5, 10, QLatin1Char('_'));
        LOG4CPLUS_DEBUG(upnpLog(), "browse container: " << name);
        m_subContainers.enqueue({name, path});
        return;
    }
    const OrkaPlayListItem item = m_worker->fillin_playlistItem(object, &m_context);
    LOG4CPLUS_DEBUG(upnpLog(), "browse add: " << item.title());
    if (!item.isEmpty())
        m_barrier->results.append(item.toVariant());
}

void ContainerWalk::listSubContainer()
{
    const SubContainer container = m_subContainers.dequeue();
    // What comes before the last one has been sent is no end of the round.
    m_barrier->hold();
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), container.path.path(), orkaDBusConnection());
    m_barrier->addCall(
        container.callName, proxy.ListChildren(0, walk::maxChildren, m_worker->propertyFilter()));
    if (m_subContainers.isEmpty())
        m_barrier->proceed();
}

void ContainerWalk::answer()
{
    LOG4CPLUS_DEBUG(upnpLog(), "browse finished");
    const auto request = m_barrier->takeUserData<CMSetDataRequest>();
    request->reply().setValue(m_barrier->results);
    m_barrier->deleteInSlices();
}
