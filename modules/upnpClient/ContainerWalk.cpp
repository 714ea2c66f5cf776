#include "ContainerWalk.h"

#include "DBusBarrier.h"
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

ContainerWalk::ContainerWalk(
    DBusBarrier *barrier, const ObjectMapping &mapping, const QStringList &filter)
    : SlicedWork(barrier)
    , m_barrier(barrier)
    , m_arrived(barrier, this, [this] { m_mapping.replyArrived(); })
    , m_mapping(mapping)
    , m_filter(filter)
{
}

SlicedWork::Next ContainerWalk::step()
{
    if (!m_objects.empty()) {
        visit(m_objects.front());
        m_objects.pop_front();
        return Next::Step;
    }
    return m_subContainers.isEmpty() ? takeCall() : listSubContainer();
}

SlicedWork::Next ContainerWalk::takeCall()
{
    QDBusPendingCallWatcher *call = m_barrier->takeFinishedCall(&m_callName);
    if (!call) {
        if (m_barrier->isFinished())
            answer();
        return Next::Rest;
    }
    auto objects = m_arrived.take(call);
    if (!objects) {
        LOG4CPLUS_ERROR(
            upnpLog(), "Fetching children failed: " << logText(call->error().message()));
        return Next::Step;
    }
    LOG4CPLUS_DEBUG(upnpLog(), "browse finished call: " << logText(m_callName));
    m_position = 0;
    m_objects = std::move(*objects);
    return Next::Step;
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
        LOG4CPLUS_DEBUG(upnpLog(), "browse container: " << logText(name));
        m_subContainers.enqueue({name, path});
        return;
    }
    const OrkaPlayListItem item = m_mapping.playListItem(object);
    const bool isEmpty = sdk::isEmpty(item);
    LOG4CPLUS_DEBUG(upnpLog(),
        "browse add: " << logText(
            isEmpty ? QString() : object.string(ObjectProperties::DisplayName)));
    if (!isEmpty)
        m_barrier->results.append(sdk::variantOf(item));
}

SlicedWork::Next ContainerWalk::listSubContainer()
{
    const SubContainer container = m_subContainers.dequeue();
    // What comes before the last one has been sent is no end of the round.
    if (!m_isSending)
        m_barrier->hold();
    m_isSending = true;
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), container.path.path(), orkaDBusConnection());
    m_barrier->addCall(container.callName, proxy.ListChildren(0, walk::maxChildren, m_filter));
    if (!m_subContainers.isEmpty())
        return Next::Step;
    m_isSending = false;
    m_barrier->proceed();
    return Next::Rest;
}

void ContainerWalk::answer()
{
    LOG4CPLUS_DEBUG(upnpLog(), "browse finished");
    const auto request = m_barrier->takeUserData<CMSetDataRequest>();
    sdk::answer(*request, QVariant(m_barrier->results));
    m_barrier->deleteInSlices();
}
