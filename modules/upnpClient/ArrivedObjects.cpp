#include "ArrivedObjects.h"

#include "DBusBarrier.h"

#include <QDBusPendingReply>

namespace {

/// What objects of one kind tend to have in common.
constexpr ObjectProperties::Name sharedTexts[] = {ObjectProperties::Album,
    ObjectProperties::AlbumArtURL, ObjectProperties::Artist, ObjectProperties::Creator,
    ObjectProperties::Date, ObjectProperties::Genre, ObjectProperties::MIMEType,
    ObjectProperties::Type};

} // namespace

ArrivedObjects::ArrivedObjects(DBusBarrier *barrier, QObject *parent, std::function<void()> arrived)
    : SlicedWork(parent)
    , m_barrier(barrier)
    , m_arrived(std::move(arrived))
{
    barrier->onArrival([this](QDBusPendingCallWatcher *call) { enqueue(call); });
}

std::optional<ArrivedObjects::Objects> ArrivedObjects::take(const QDBusPendingCallWatcher *call)
{
    if (!m_objects.contains(call))
        return std::nullopt;
    return m_objects.take(call);
}

void ArrivedObjects::enqueue(QDBusPendingCallWatcher *call)
{
    m_arrived();
    if (call->isError())
        return;
    m_objects.insert(call, {});
    m_unread.enqueue(call);
    if (m_unread.size() > 1)
        return;
    m_barrier->hold();
    m_reader.open(call->reply());
    start();
}

SlicedWork::Next ArrivedObjects::step()
{
    ObjectProperties object;
    QDBusPendingCallWatcher *const call = m_unread.head();
    if (m_reader.next(&object)) {
        share(&object);
        m_objects[call].push_back(std::move(object));
        return Next::Step;
    }
    DBusBarrier::release(*call);
    m_unread.dequeue();
    if (!m_unread.isEmpty()) {
        m_reader.open(m_unread.head()->reply());
        return Next::Step;
    }
    m_barrier->proceed();
    return Next::Rest;
}

void ArrivedObjects::share(ObjectProperties *object)
{
    for (const ObjectProperties::Name name : sharedTexts) {
        if (object->value(name).userType() == QMetaType::QString)
            object->set(name, *m_texts.insert(object->string(name)));
    }
}
