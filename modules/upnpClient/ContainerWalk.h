#pragma once

#include "PropertyMapReader.h"
#include "ReplyContext.h"
#include "SlicedWork.h"

#include <QDBusObjectPath>
#include <QQueue>

class CMUPnPWorker;
class DBusBarrier;
class QDBusPendingCallWatcher;

/// Names of the calls of a walk for what its request names; a sub-container's name is its parent's
/// followed by its position.
namespace walk {
const QString &containerCall();
const QString &trackCall();
/// Children that are read of any one container.
constexpr uint maxChildren = 10000;
} // namespace walk

/// One round of a walk over containers: takes the finished calls of the walk's barrier in the order
/// of their names and turns their objects into playlist items, until a call has listed
/// sub-containers, whose listings it then sends, or none is left, when it answers the request and
/// disposes of the barrier. The barrier holds what the rounds share: the objects met and the items
/// so far. A child of the worker.
class ContainerWalk : public SlicedWork
{
public:
    ContainerWalk(CMUPnPWorker *worker, DBusBarrier *barrier);

private:
    struct SubContainer
    {
        QString callName;
        QDBusObjectPath path;
    };

    bool step() override;
    bool takeCall();
    void readCall(QDBusPendingCallWatcher *call);
    void visit(const ObjectProperties &object);
    void listSubContainer();
    void answer();

    CMUPnPWorker *m_worker;
    DBusBarrier *m_barrier;
    QString m_callName;
    /// Of the object in its listing, from 1.
    int m_position = 0;
    PropertyMapReader m_objects;
    QQueue<SubContainer> m_subContainers;
    ReplyContext m_context;
};
