#include "CMValueItem.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHash>
#include <QMultiHash>

#include <mutex>

namespace {
class ChangeEvent : public QEvent
{
public:
    ChangeEvent(const OrkaValue &value, const OrkaValue &before)
        : QEvent(eventType())
        , newValue(value)
        , oldValue(before)
    {
    }
    static Type eventType()
    {
        static const auto type = Type(registerEventType());
        return type;
    }

    const OrkaValue newValue;
    const OrkaValue oldValue;
};

struct Store
{
    std::mutex mutex;
    QHash<CMPath, OrkaValue> values;
    QMultiHash<CMPath, CMValueItem *> items;
};

// Never destroyed: items may still go while the program ends.
Store &store()
{
    static auto *const values = new Store;
    return *values;
}
} // namespace

CMValueItem::CMValueItem(QObject *parent, const CMPath &path)
    : QObject(parent)
    , m_path(path)
{
    Store &s = store();
    const std::lock_guard lock(s.mutex);
    s.items.insert(path, this);
    const auto found = s.values.find(path);
    if (found != s.values.end())
        QCoreApplication::postEvent(this, new ChangeEvent(*found, OrkaValue()));
}

CMValueItem::~CMValueItem()
{
    Store &s = store();
    const std::lock_guard lock(s.mutex);
    s.items.remove(m_path, this);
}

bool CMValueItem::event(QEvent *event)
{
    if (event->type() != ChangeEvent::eventType())
        return QObject::event(event);
    const auto *const change = static_cast<ChangeEvent *>(event);
    emit changed(change->newValue, change->oldValue);
    return true;
}

OrkaValue CMValueStore::value(const CMPath &path)
{
    Store &s = store();
    const std::lock_guard lock(s.mutex);
    return s.values.value(path);
}

void CMValueStore::setValue(const CMPath &path, const OrkaValue &value)
{
    Store &s = store();
    const std::lock_guard lock(s.mutex);
    const OrkaValue old = s.values.value(path);
    if (old == value)
        return;
    // The empty value is what a path has that nobody published.
    if (value.isEmpty())
        s.values.remove(path);
    else
        s.values.insert(path, value);
    // Posted with the lock held: no item goes in between, and all hear the changes in one order.
    for (CMValueItem *item : s.items.values(path))
        QCoreApplication::postEvent(item, new ChangeEvent(value, old));
}
