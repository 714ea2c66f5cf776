#pragma once

#include "ObjectProperties.h"
#include "PropertyMapReader.h"
#include "SlicedWork.h"

#include <QHash>
#include <QQueue>
#include <QSet>

#include <deque>
#include <functional>
#include <optional>

class DBusBarrier;
class QDBusPendingCallWatcher;

/// The media objects of a barrier's replies, read when each arrives.
///
/// Work that looks at no reply before the last has come would otherwise keep them all, as they came
/// over the bus: a connection on which too many wait to be released stops receiving for good, and
/// all workers of a device share one. So each reply is read at once, in slices, and released;
/// the barrier is held until the last has been read. Calls that failed stay as they are. Lives on
/// the barrier's thread, and no longer.
class ArrivedObjects : public SlicedWork
{
public:
    using Objects = std::deque<ObjectProperties>;

    /// Turns to all calls of `barrier` that arrive from now on; `arrived` is called with each.
    ArrivedObjects(DBusBarrier *barrier, QObject *parent, std::function<void()> arrived);

    /// The objects of a finished call, in their order, once; none where it failed.
    std::optional<Objects> take(const QDBusPendingCallWatcher *call);

private:
    void enqueue(QDBusPendingCallWatcher *call);
    Next step() override;
    void share(ObjectProperties *object);

    DBusBarrier *m_barrier;
    std::function<void()> m_arrived;
    /// Those that arrived and have not been read to their end; the first one is in the reader.
    QQueue<QDBusPendingCallWatcher *> m_unread;
    PropertyMapReader m_reader;
    QHash<const QDBusPendingCallWatcher *, Objects> m_objects;
    /// Texts met, so that the tracks of an album hold its name once.
    QSet<QString> m_texts;
};
